// Words of ASCII as numbers: up to sixteen units, one byte each, in lower case. Two such words are
// the same if their numbers are, so that a look-up compares no units. Nearly all words of most
// European languages are short enough.
//
// What parts no words in ASCII are letters and digits, and nothing else is told apart here: all
// that a letter needs is its bit 6, and all that a capital lacks its bit 5.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmo::detail {

inline constexpr std::size_t MostPackedUnits = 16;

struct PackedWord {
    std::uint64_t low = 0, high = 0;  ///< of the first eight units and the next ones

    friend bool operator==(const PackedWord&, const PackedWord&) = default;
};

/// A word without a number has units outside ASCII, NULs, none at all or more than these, or does
/// not begin and end with a letter.
struct PackedReading {
    PackedWord word;  // anything if it has none
    bool hasNumber = false;
};

/// Packs unit by unit: the reference for the other.
constexpr PackedReading packedOneByOne(std::u16string_view word) noexcept {
    constexpr char16_t LetterBit = 0x40, LowerBit = 0x20;
    if (word.empty() || word.size() > MostPackedUnits) return {};
    if (!(word.front() & word.back() & LetterBit)) return {};
    std::uint64_t halves[2] = {};
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (word[i] == 0 || word[i] >= 128) return {};
        halves[i / 8] |= std::uint64_t{word[i]} << i % 8 * 8 | std::uint64_t{LowerBit} << i % 8 * 8;
    }
    return {{halves[0], halves[1]}, true};
}

/// The same without a jump. Sixteen units must be there to be read, however long the word is.
inline PackedReading packedWord(const char16_t* units, std::size_t size) noexcept {
#if defined(__SSE2__)
    static constexpr std::int8_t Within[2 * MostPackedUnits] = {-1, -1, -1, -1, -1, -1, -1, -1,
                                                                -1, -1, -1, -1, -1, -1, -1, -1};
    const auto load = [](const void* from) {
        return _mm_loadu_si128(static_cast<const __m128i*>(from));
    };
    const std::size_t read = std::min(size, MostPackedUnits);
    const __m128i within = load(Within + MostPackedUnits - read);
    // What does not fit becomes 255, or 0 if it seems to be negative: both are no positive byte.
    const __m128i bytes = _mm_packus_epi16(load(units), load(units + 8));
    const __m128i positive = _mm_cmpgt_epi8(bytes, _mm_setzero_si128());
    const bool isAscii = _mm_movemask_epi8(_mm_andnot_si128(positive, within)) == 0;
    // Bit 6 as that of the sign. Without units nothing stands at the end.
    const auto letters = static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_slli_epi16(bytes, 1)));
    const bool isEdged = letters & letters << 1 >> read & 1;
    const bool hasNumber = isAscii & isEdged & (size <= MostPackedUnits);
    const __m128i packed = _mm_and_si128(_mm_or_si128(bytes, _mm_set1_epi8(0x20)), within);
    return {{static_cast<std::uint64_t>(_mm_cvtsi128_si64(packed)),
             static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(packed, packed)))},
            hasNumber};
#else
    return packedOneByOne({units, size});
#endif
}

/// The same for a word with anything behind it.
inline PackedReading packedWord(std::u16string_view word) noexcept {
    char16_t units[MostPackedUnits] = {};
    std::copy_n(word.data(), std::min(word.size(), MostPackedUnits), units);
    return packedWord(units, word.size());
}

}  // namespace velmo::detail
