#include "platform/PairDecoder.h"

#include <algorithm>
#include <array>
#include <atomic>

#include "platform/AsciiRun.h"
#include "platform/IcuConverter.h"
#include "platform/RowCache.h"

namespace velmo::detail {
namespace {

using Byte = std::uint8_t;

/// What bytes from 80 up stand for. The entries are filled by any number of threads at once,
/// all with the same answers.
class PairTable {
public:
    /// Not one unit: ICU decides.
    static constexpr char16_t Other = 0xFFFF;

    explicit PairTable(const EncodingRow& row) : row_(row) {
        for (unsigned byte = 0x80; byte < 0x100; ++byte)
            singles_[byte & 0x7F] = ask({static_cast<Byte>(byte)}, 1);
    }

    /// The unit of a byte that is a character by itself; else Other.
    char16_t single(Byte byte) const { return singles_[byte & 0x7F]; }

    /// The unit of two bytes.
    char16_t pair(Byte lead, Byte second) {
        std::atomic<char16_t>& entry = pairs_[(lead & 0x7F) << 8 | second];
        char16_t unit = entry.load(std::memory_order_relaxed);
        if (unit == Unasked) {
            unit = ask({lead, second}, 2);
            entry.store(unit, std::memory_order_relaxed);
        }
        return unit;
    }

private:
    static constexpr char16_t Unasked = 0;

    char16_t ask(std::array<Byte, 2> bytes, std::size_t count) const {
        char16_t units[8];
        const Decoding answer = decodeWithIcu(row_, Bytes(bytes).first(count), units);
        return answer.written == 1 && units[0] != ReplacementUnit ? units[0] : Other;
    }

    const EncodingRow& row_;
    std::array<char16_t, 128> singles_;
    std::array<std::atomic<char16_t>, 128 * 256> pairs_{};
};

PairTable& pairTable(const EncodingRow& row) {
    static RowCache<PairTable> cache;
    return cache.get(row);
}

/// Behind the next two bytes of ASCII in a row, where a character surely ends, whether the
/// first of them is the last byte of one, a part of a broken one or by itself.
const Byte* safeEnd(const Byte* in, const Byte* end) {
    for (; end - in > 2; ++in)
        if (in[1] < 0x80 && in[2] < 0x80) return in + 3;
    return end;
}

}  // namespace

Decoding decodePairs(const EncodingRow& row, Bytes bytes, std::span<char16_t> out) {
    PairTable& table = pairTable(row);
    const Byte* in = bytes.data();
    const Byte* const end = in + bytes.size();
    char16_t* to = out.data();
    char16_t* const limit = to + out.size();
    bool broken = false;
    while (in < end && to < limit) {
        if (*in < 0x80) {
            const Byte* const room = in + std::min(end - in, limit - to);
            if (asciiAhead(in, room))
                widenAscii(in, room, to);
            else
                *to++ = *in++;
            continue;
        }
        std::size_t taken = 1;
        char16_t unit = table.single(*in);
        if (unit == PairTable::Other && end - in > 1) {
            unit = table.pair(in[0], in[1]);
            taken = 2;
        }
        if (unit != PairTable::Other) {
            *to++ = unit;
            in += taken;
            continue;
        }
        const Byte* const next = safeEnd(in, end);
        const Decoding part = decodeWithIcu(row, std::span(in, next), {to, limit});
        to += part.written;
        broken |= part.broken;
        if (!part.complete) break;
        in = next;
    }
    return {static_cast<std::size_t>(to - out.data()), in == end, broken};
}

}  // namespace velmo::detail
