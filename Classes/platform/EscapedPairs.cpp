#include "platform/EscapedPairs.h"

#include <array>
#include <atomic>
#include <cstring>
#include <string_view>

#include "platform/AsciiRun.h"
#include "platform/IcuConverter.h"
#include "platform/RowCache.h"

namespace velmo::detail {
namespace {

using Byte = std::uint8_t;

constexpr Byte Escape = 0x1B;
constexpr std::string_view ToPairs = "\x1B$B", ToAscii = "\x1B(B";

bool isInPair(Byte byte) { return byte >= 0x21 && byte <= 0x7E; }

/// The units of pairs. The entries are filled by any number of threads, all with the same answers.
class PairTable {
public:
    /// Not one unit: ICU decides.
    static constexpr char16_t Other = 0xFFFF;

    explicit PairTable(const EncodingRow& row) : row_(row) {}

    char16_t unit(Byte first, Byte second) {
        std::atomic<char16_t>& entry = units_[first << 7 | second];
        char16_t unit = entry.load(std::memory_order_relaxed);
        if (unit == Unasked) {
            unit = ask(first, second);
            entry.store(unit, std::memory_order_relaxed);
        }
        return unit;
    }

private:
    static constexpr char16_t Unasked = 0;

    char16_t ask(Byte first, Byte second) const {
        const Byte bytes[] = {Escape, '$', 'B', first, second};
        char16_t units[8];
        const Decoding answer = decodeWithIcu(row_, bytes, units);
        return answer.written == 1 && units[0] != ReplacementUnit ? units[0] : Other;
    }

    const EncodingRow& row_;
    std::array<std::atomic<char16_t>, 128 * 128> units_{};
};

/// The two gears of such a text.
class EscapedPairsReader {
public:
    EscapedPairsReader(PairTable& table, Bytes bytes, char16_t* out)
        : table_(table), in_(bytes.data()), end_(in_ + bytes.size()), out_(out), begin_(out) {}

    std::optional<Decoding> read() {
        // The bytes that shift to other sets without an escape.
        const auto length = static_cast<std::size_t>(end_ - in_);
        if (std::memchr(in_, 0x0E, length) || std::memchr(in_, 0x0F, length)) return std::nullopt;
        while (in_ < end_)
            if (!readAscii() || (in_ < end_ && !readPairs())) return std::nullopt;
        return Decoding{static_cast<std::size_t>(out_ - begin_)};
    }

private:
    /// Up to the escape behind it, or the end.
    bool readAscii() {
        const auto left = static_cast<std::size_t>(end_ - in_);
        const void* const escape = std::memchr(in_, Escape, left);
        const Byte* const stop = escape ? static_cast<const Byte*>(escape) : end_;
        widenAscii(in_, stop, out_);
        return in_ == stop;
    }

    /// From the escape to them to behind that to ASCII, or to the end.
    bool readPairs() {
        if (!take(ToPairs)) return false;
        while (end_ - in_ >= 2 && isInPair(in_[0]) && isInPair(in_[1])) {
            const char16_t unit = table_.unit(in_[0], in_[1]);
            if (unit == PairTable::Other) return false;
            *out_++ = unit;
            in_ += 2;
        }
        return in_ == end_ || take(ToAscii);
    }

    bool take(std::string_view escape) {
        const std::string_view left(reinterpret_cast<const char*>(in_),
                                    static_cast<std::size_t>(end_ - in_));
        if (!left.starts_with(escape)) return false;
        in_ += escape.size();
        return true;
    }

    PairTable& table_;
    const Byte* in_;
    const Byte* const end_;
    char16_t* out_;
    char16_t* const begin_;
};

}  // namespace

bool hasEscapedPairs(const EncodingRow& row) noexcept {
    return row.kind == EncodingKind::Streamed &&
           std::string_view(row.iana).starts_with("iso-2022-jp");
}

std::optional<Decoding> decodeEscapedPairs(const EncodingRow& row, Bytes bytes,
                                           std::span<char16_t> out) {
    static RowCache<PairTable> cache;
    if (bytes.empty() || out.size() < bytes.size()) return std::nullopt;
    return EscapedPairsReader(cache.get(row), bytes, out.data()).read();
}

}  // namespace velmo::detail
