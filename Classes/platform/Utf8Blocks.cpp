// Bits for the bytes of a block tell where sequences start, and whether what stands behind each start is
// what belongs there: one comparison of two masks. Of each start its byte and the two behind it are
// then gathered, so that what makes a unit stands at the same place of three vectors, and is put
// together without asking how long a sequence is.
#include "platform/Utf8Blocks.h"

#if defined(__x86_64__)

#include <immintrin.h>

#include <algorithm>
#include <bit>

#include "platform/Machine.h"

#define VELMO_UTF8_BLOCKS __attribute__((target("avx512bw,avx512vbmi2")))

namespace velmo::detail {
namespace {

using Byte = std::uint8_t;

/// A sequence that starts in a block may end behind it.
constexpr std::ptrdiff_t BlockReach = Utf8Block + 2;

constexpr std::uint64_t lowBits(std::ptrdiff_t count) {
    return count >= 64 ? ~std::uint64_t(0) : count <= 0 ? 0 : (std::uint64_t(1) << count) - 1;
}

/// A block with the text going on behind it.
struct WholeBlock {
    const Byte* bytes;

    VELMO_UTF8_BLOCKS __m512i from(int offset) const noexcept {
        return _mm512_loadu_si512(bytes + offset);
    }
    std::uint64_t present() const noexcept { return lowBits(Utf8Block); }
    std::ptrdiff_t upTo(std::ptrdiff_t place) const noexcept { return place; }
    VELMO_UTF8_BLOCKS void write(char16_t* out, __m512i units, int) const noexcept {
        _mm512_storeu_si512(out, units);
    }
};

/// The last bytes of a text: what is behind them counts as ASCII, and is left out in the end.
struct LastBlock {
    const Byte* bytes;
    std::ptrdiff_t length;

    VELMO_UTF8_BLOCKS __m512i from(int offset) const noexcept {
        return _mm512_maskz_loadu_epi8(lowBits(length - offset), bytes + offset);
    }
    std::uint64_t present() const noexcept { return lowBits(length); }
    std::ptrdiff_t upTo(std::ptrdiff_t place) const noexcept { return std::min(place, length); }
    VELMO_UTF8_BLOCKS void write(char16_t* out, __m512i units, int count) const noexcept {
        _mm512_mask_storeu_epi16(out, static_cast<__mmask32>(lowBits(count)), units);
    }
};

VELMO_UTF8_BLOCKS inline __m512i lowHalf(__m512i bytes) noexcept {
    return _mm512_cvtepu8_epi16(__builtin_shufflevector(bytes, bytes, 0, 1, 2, 3));
}
VELMO_UTF8_BLOCKS inline __m512i highHalf(__m512i bytes) noexcept {
    return _mm512_cvtepu8_epi16(__builtin_shufflevector(bytes, bytes, 4, 5, 6, 7));
}

VELMO_UTF8_BLOCKS inline __m512i all(int unit) noexcept {
    return _mm512_set1_epi16(static_cast<short>(unit));
}

/// Marks the bytes of [low, low + count).
VELMO_UTF8_BLOCKS inline std::uint64_t inRange(__m512i bytes, int low, int count) noexcept {
    const __m512i offset = _mm512_sub_epi8(bytes, _mm512_set1_epi8(static_cast<char>(low)));
    return _mm512_cmplt_epu8_mask(offset, _mm512_set1_epi8(static_cast<char>(count)));
}

/// Where the units of a block start, and up to where its sequences are whole.
struct Starts {
    std::uint64_t starts = 0;
    int length = 0;   ///< 0 if a sequence is broken
    int longest = 1;  ///< bytes of a sequence
};

/// The bytes of a block by what they may be: behind the first of a sequence, or that of two, three, four.
struct Kinds {
    std::uint64_t behind, pairs, triples, fours;
};

/// A sequence of four bytes is a pair of units, the second of which starts at its third byte. These are
/// rare: what they cost is kept away from blocks without.
[[gnu::noinline]] VELMO_UTF8_BLOCKS Starts startsWithFours(__m512i bytes,
                                                           const Kinds& kinds) noexcept {
    const auto [behind, pairs, triples, fours] = kinds;
    const std::uint64_t expected =
        (pairs | triples | fours) << 1 | (triples | fours) << 2 | fours << 3;
    if (fours != inRange(bytes, 0xF0, 5) || behind != expected) return {};
    const std::uint64_t open = fours >> 61 | triples >> 62 << 1 | pairs >> 63 << 2;
    const int length = open ? 61 + std::countr_zero(open) : Utf8Block;
    return {(~behind | fours << 2) & lowBits(length), length, 4};
}

/// What is too long for its value or beyond the last character is found by its units, but for two bytes.
VELMO_UTF8_BLOCKS inline Starts startsOf(__m512i bytes, std::uint64_t high) noexcept {
    const std::uint64_t behind = inRange(bytes, 0x80, 0x40);
    const std::uint64_t pairs = inRange(bytes, 0xC2, 0x1E);
    const std::uint64_t triples = inRange(bytes, 0xE0, 0x10);
    const std::uint64_t others = high & ~(behind | pairs | triples);
    if (others) return startsWithFours(bytes, {behind, pairs, triples, others});
    const std::uint64_t expected = (pairs | triples) << 1 | triples << 2;
    if (behind != expected) return {};
    // What starts in the last bytes and is longer than they are is left to the next block.
    const std::uint64_t open = triples >> 62 | pairs >> 63 << 1;
    const int length = open ? 62 + std::countr_zero(open) : Utf8Block;
    return {~behind & lowBits(length), length, triples ? 3 : 2};
}

/// The bytes that 64 units start with, one beside the other. What is not there does no harm.
struct Sequences {
    __m512i first, second, third;
};

/// The units of 32 sequences of at most three bytes, which are widened. False if one is not well-formed.
VELMO_UTF8_BLOCKS inline bool makeTriples(__mmask32 isTriple, __m512i triples,
                                          __m512i& units) noexcept {
    const __m512i fromSurrogates = _mm512_sub_epi16(triples, all(0xD800));
    units = _mm512_mask_mov_epi16(units, isTriple, triples);
    return !(_mm512_mask_cmplt_epu16_mask(isTriple, triples, all(0x800)) |
             _mm512_mask_cmplt_epu16_mask(isTriple, fromSurrogates, all(0x800)));
}

/// The same for pairs of units. Of the first one's bytes the highest three bits, six bits and two make
/// the character without its last ten bits.
VELMO_UTF8_BLOCKS inline bool makeSurrogates(const Sequences& bytes, __mmask32 isFirst,
                                             __m512i pairs, __m512i& units) noexcept {
    const __mmask32 isSecond =
        _mm512_cmplt_epu16_mask(_mm512_sub_epi16(bytes.first, all(0x80)), all(0x40));
    const __m512i low = _mm512_or_si512(_mm512_and_si512(pairs, all(0x3FF)), all(0xDC00));
    const __m512i ofThird = _mm512_and_si512(_mm512_srli_epi16(bytes.third, 4), all(3));
    const __m512i upper =
        _mm512_or_si512(_mm512_slli_epi16(_mm512_and_si512(pairs, all(0x1FF)), 2), ofThird);
    const __m512i fromPairs = _mm512_sub_epi16(upper, all(0x40));
    units = _mm512_mask_mov_epi16(units, isSecond, low);
    units = _mm512_mask_mov_epi16(units, isFirst, _mm512_add_epi16(fromPairs, all(0xD800)));
    return !_mm512_mask_cmpge_epu16_mask(isFirst, fromPairs, all(0x400));
}

template <int Longest>
VELMO_UTF8_BLOCKS inline bool makeUnits(const Sequences& bytes, __m512i& units) noexcept {
    const __m512i ofFirst = _mm512_slli_epi16(_mm512_and_si512(bytes.first, all(0x1F)), 6);
    const __m512i pairs = _mm512_or_si512(ofFirst, _mm512_and_si512(bytes.second, all(0x3F)));
    const __mmask32 isLong = _mm512_cmpge_epu16_mask(bytes.first, all(0x80));
    units = _mm512_mask_mov_epi16(bytes.first, isLong, pairs);
    if constexpr (Longest == 2) return true;
    const __m512i triples =
        _mm512_or_si512(_mm512_slli_epi16(pairs, 6), _mm512_and_si512(bytes.third, all(0x3F)));
    const __mmask32 isTriple = _mm512_cmpge_epu16_mask(bytes.first, all(0xE0));
    if constexpr (Longest == 3) return makeTriples(isTriple, triples, units);
    const __mmask32 isFour = _mm512_cmpge_epu16_mask(bytes.first, all(0xF0));
    return makeTriples(isTriple & ~isFour, triples, units) &&
           makeSurrogates(bytes, isFour, pairs, units);
}

template <int Longest, class Block>
VELMO_UTF8_BLOCKS inline bool writeUnits(const Block& block, const Sequences& bytes, int count,
                                         char16_t* out) noexcept {
    __m512i units;
    if (!makeUnits<Longest>({lowHalf(bytes.first), lowHalf(bytes.second), lowHalf(bytes.third)},
                            units))
        return false;
    block.write(out, units, count);
    if (count <= 32) return true;
    if (!makeUnits<Longest>({highHalf(bytes.first), highHalf(bytes.second), highHalf(bytes.third)},
                            units))
        return false;
    block.write(out + 32, units, count - 32);
    return true;
}

template <class Block>
VELMO_UTF8_BLOCKS inline bool writeLongUnits(const Block& block, __m512i bytes, const Starts& found,
                                             std::uint64_t starts, int count,
                                             char16_t* out) noexcept {
    Sequences gathered;
    gathered.first = _mm512_maskz_compress_epi8(starts, bytes);
    gathered.second = _mm512_maskz_compress_epi8(starts, block.from(1));
    gathered.third = gathered.second;
    if (found.longest == 2) return writeUnits<2>(block, gathered, count, out);
    gathered.third = _mm512_maskz_compress_epi8(starts, block.from(2));
    return found.longest == 3 ? writeUnits<3>(block, gathered, count, out)
                              : writeUnits<4>(block, gathered, count, out);
}

template <class Block>
VELMO_UTF8_BLOCKS inline bool decodeBlock(const Block& block, const Byte*& in,
                                          char16_t*& out) noexcept {
    const __m512i bytes = block.from(0);
    const std::uint64_t high = _mm512_movepi8_mask(bytes);
    const Starts found = high ? startsOf(bytes, high) : Starts{lowBits(Utf8Block), Utf8Block};
    if (found.length == 0) return false;
    const std::uint64_t starts = found.starts & block.present();
    const int count = std::popcount(starts);
    if (high == 0) {
        block.write(out, lowHalf(bytes), count);
        if (count > 32) block.write(out + 32, highHalf(bytes), count - 32);
    } else if (!writeLongUnits(block, bytes, found, starts, count, out)) {
        return false;
    }
    in += block.upTo(found.length);
    out += count;
    return true;
}

}  // namespace

bool canDecodeUtf8Blocks() noexcept { return machine::hasAvx512(); }

VELMO_UTF8_BLOCKS void decodeUtf8Blocks(const Byte*& in, const Byte* end, char16_t*& out) noexcept {
    while (in < end) {
        const bool isDecoded = end - in >= BlockReach
                                   ? decodeBlock(WholeBlock{in}, in, out)
                                   : decodeBlock(LastBlock{in, end - in}, in, out);
        if (!isDecoded) return;
    }
}

}  // namespace velmo::detail

#else

namespace velmo::detail {

bool canDecodeUtf8Blocks() noexcept { return false; }
void decodeUtf8Blocks(const std::uint8_t*&, const std::uint8_t*, char16_t*&) noexcept {}

}  // namespace velmo::detail

#endif
