// Pages are mostly ASCII with islands of longer sequences. The decoder therefore has
// two gears: sixteen bytes at a time while all are ASCII, and a scalar loop that stays
// in charge from the first other byte on until some ASCII stands in a row again. Where the machine has
// the means, whole blocks are decoded at once, and the gears serve what is rare.
#include "platform/Utf8.h"

#include <cstdint>

#include "platform/AsciiRun.h"
#include "platform/Surrogates.h"
#include "platform/Utf8Blocks.h"

namespace velmo::detail {
namespace {

using Byte = std::uint8_t;

constexpr char16_t Replacement = 0xFFFD;

bool isContinuation(Byte byte) { return (byte & 0xC0) == 0x80; }

/// Decodes the sequence that starts with a byte above 127.
inline void decodeSequence(const Byte*& in, const Byte* end, char16_t*& out) {
    const Byte lead = *in++;
    if (lead >= 0xC2 && lead <= 0xDF) {
        if (in < end && isContinuation(*in)) {
            *out++ = static_cast<char16_t>(((lead & 0x1F) << 6) | (*in++ & 0x3F));
            return;
        }
    } else if ((lead & 0xF0) == 0xE0) {
        // The second byte's bounds keep out overlong forms and surrogates.
        const Byte low = lead == 0xE0 ? 0xA0 : 0x80;
        const Byte high = lead == 0xED ? 0x9F : 0xBF;
        if (in < end && *in >= low && *in <= high) {
            const Byte second = *in++;
            if (in < end && isContinuation(*in)) {
                *out++ = static_cast<char16_t>(((lead & 0x0F) << 12) | ((second & 0x3F) << 6) |
                                               (*in++ & 0x3F));
                return;
            }
        }
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        const Byte low = lead == 0xF0 ? 0x90 : 0x80;
        const Byte high = lead == 0xF4 ? 0x8F : 0xBF;
        if (in < end && *in >= low && *in <= high) {
            const Byte second = *in++;
            if (in < end && isContinuation(*in)) {
                const Byte third = *in++;
                if (in < end && isContinuation(*in)) {
                    const std::uint32_t point =
                        (std::uint32_t(lead & 0x07) << 18) | (std::uint32_t(second & 0x3F) << 12) |
                        (std::uint32_t(third & 0x3F) << 6) | (*in++ & 0x3Fu);
                    *out++ = static_cast<char16_t>(0xD7C0 + (point >> 10));
                    *out++ = static_cast<char16_t>(0xDC00 + (point & 0x3FF));
                    return;
                }
            }
        }
    }
    *out++ = Replacement;
}

bool isOverlongOrSurrogate(std::uint32_t unit) { return unit < 0x800 || isSurrogate(unit); }

/// The slow gear: decodes sequences and stray ASCII, with one look at four bytes for the
/// two common lengths, which come in runs. Ends where four bytes of ASCII stand in a row.
inline void decodeMixed(const Byte*& in, const Byte* end, char16_t*& out) {
    while (end - in >= 4) {
        std::uint32_t four = nextFour(in);
        if ((four & 0x80) == 0) {
            if ((four & 0x80808080) == 0) return;
            *out++ = static_cast<char16_t>(four & 0x7F);
            ++in;
        } else if (isUtf8Triple(four)) {
            do {
                const char16_t unit = unitOfUtf8Triple(four);
                if (isOverlongOrSurrogate(unit)) {
                    decodeSequence(in, end, out);
                    break;
                }
                *out++ = unit;
                in += 3;
            } while (end - in >= 4 && isUtf8Triple(four = nextFour(in)));
        } else if (isUtf8Pair(four)) {
            do {
                *out++ = unitOfUtf8Pair(four);
                in += 2;
            } while (end - in >= 4 && isUtf8Pair(four = nextFour(in)));
        } else {
            decodeSequence(in, end, out);
        }
    }
    while (in < end) {
        if (*in < 0x80)
            *out++ = *in++;
        else
            decodeSequence(in, end, out);
    }
}

void decodeInGears(const Byte*& in, const Byte* end, char16_t*& out) {
    while (in < end) {
        widenAscii(in, end, out);
        decodeMixed(in, end, out);
    }
}

/// By blocks where the machine can, and in gears through those that are not taken, up to where no sequence
/// goes on: none has more than three bytes behind its first.
void decodeBlocks(const Byte*& in, const Byte* end, char16_t*& out) {
    while (true) {
        decodeUtf8Blocks(in, end, out);
        if (in == end) return;
        const Byte* behind = end - in > Utf8Block ? in + Utf8Block : end;
        for (int i = 0; i < 3 && behind < end && isContinuation(*behind); ++i) ++behind;
        decodeInGears(in, behind, out);
    }
}

}  // namespace

std::size_t decodeUtf8(std::string_view bytes, char16_t* const out) noexcept {
    const Byte* in = reinterpret_cast<const Byte*>(bytes.data());
    const Byte* const end = in + bytes.size();
    char16_t* write = out;
    canDecodeUtf8Blocks() ? decodeBlocks(in, end, write) : decodeInGears(in, end, write);
    return static_cast<std::size_t>(write - out);
}

FirstOfUtf8 firstOfUtf8(std::string_view bytes) noexcept {
    const Byte* const begin = reinterpret_cast<const Byte*>(bytes.data());
    if (*begin < 0x80) return {*begin, 1};
    const Byte* in = begin;
    char16_t units[2];
    char16_t* out = units;
    decodeSequence(in, begin + bytes.size(), out);
    return {units[0], static_cast<std::size_t>(in - begin)};
}

bool isValidUtf8(std::string_view bytes) noexcept {
    const Byte* in = reinterpret_cast<const Byte*>(bytes.data());
    const Byte* const end = in + bytes.size();
    while (in < end) {
        while (asciiAhead(in, end)) in += 8;
        if (in == end) break;
        const std::string_view left(reinterpret_cast<const char*>(in),
                                    static_cast<std::size_t>(end - in));
        const FirstOfUtf8 first = firstOfUtf8(left);
        if (first.unit == Replacement && !left.starts_with("\xEF\xBF\xBD")) return false;
        in += first.length;
    }
    return true;
}

std::size_t encodeUtf8(std::u16string_view units, char* const out) noexcept {
    char* write = out;
    const auto put = [&write](std::uint32_t byte) { *write++ = static_cast<char>(byte); };
    for (std::size_t i = 0; i < units.size(); ++i) {
        std::uint32_t point = units[i];
        if (point < 0x80) {
            put(point);
            continue;
        }
        if (point < 0x800) {
            put(0xC0 | (point >> 6));
            put(0x80 | (point & 0x3F));
            continue;
        }
        if (isSurrogate(point)) {
            if (isPairAt(units, i)) {
                point = characterOfPair(units[i], units[i + 1]);
                ++i;
                put(0xF0 | (point >> 18));
                put(0x80 | ((point >> 12) & 0x3F));
                put(0x80 | ((point >> 6) & 0x3F));
                put(0x80 | (point & 0x3F));
                continue;
            }
            point = Replacement;
        }
        put(0xE0 | (point >> 12));
        put(0x80 | ((point >> 6) & 0x3F));
        put(0x80 | (point & 0x3F));
    }
    return static_cast<std::size_t>(write - out);
}

}  // namespace velmo::detail
