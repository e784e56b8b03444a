// Words of ASCII as numbers: up to sixteen units, one byte each, in lower case. Two such words are
// the same if their numbers are, so that a look-up compares no units. Nearly all words of most
// European languages are short enough.
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

/// Both are 0 for what is no such word: without units, with more than these, or with one that is
/// NUL or outside ASCII.
struct PackedWord {
    std::uint64_t low = 0, high = 0;  ///< of the first eight units and the next ones

    explicit operator bool() const noexcept { return low != 0; }
    friend bool operator==(const PackedWord&, const PackedWord&) = default;

    /// Whether it begins and ends with a letter. The word has as many units as given.
    bool isEdgedByLetters(std::size_t size) const noexcept {
        const std::uint64_t tail = size <= 8 ? low : high;
        const auto isLetter = [](std::uint64_t unit) { return (unit & 0xFF) - 'a' < 26; };
        return isLetter(low) & isLetter(tail >> 8 * ((size - 1) % 8));
    }
};

/// Packs unit by unit: the reference for the other.
constexpr PackedWord packedOneByOne(std::u16string_view word) noexcept {
    if (word.size() > MostPackedUnits) return {};
    std::uint64_t halves[2] = {};
    for (std::size_t i = 0; i < word.size(); ++i) {
        const char16_t unit = word[i];
        if (unit == 0 || unit >= 128) return {};
        const bool isUpper = unit >= u'A' && unit <= u'Z';
        halves[i / 8] |= static_cast<std::uint64_t>(isUpper ? unit | 0x20 : unit) << i % 8 * 8;
    }
    return {halves[0], halves[1]};
}

/// The same without a jump. Sixteen units must be there to be read, however long the word is.
inline PackedWord packedWord(const char16_t* units, std::size_t size) noexcept {
#if defined(__SSE2__)
    static constexpr std::int8_t Within[2 * MostPackedUnits] = {
        -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1};
    const auto load = [](const void* from) {
        return _mm_loadu_si128(static_cast<const __m128i*>(from));
    };
    const __m128i within = load(Within + MostPackedUnits - std::min(size, MostPackedUnits));
    // What does not fit becomes 255, or 0 if it seems to be negative: both are no positive byte.
    const __m128i bytes = _mm_packus_epi16(load(units), load(units + 8));
    const auto beyond = [&](char limit) { return _mm_cmpgt_epi8(bytes, _mm_set1_epi8(limit)); };
    const bool isPacked = size <= MostPackedUnits &&
                          _mm_movemask_epi8(_mm_andnot_si128(beyond(0), within)) == 0;
    const __m128i upper = _mm_andnot_si128(beyond('Z'), beyond('@'));
    const __m128i lower = _mm_or_si128(bytes, _mm_and_si128(upper, _mm_set1_epi8(0x20)));
    const __m128i packed = _mm_and_si128(lower, within);
    const std::uint64_t mask = isPacked ? ~std::uint64_t{0} : 0;
    return {static_cast<std::uint64_t>(_mm_cvtsi128_si64(packed)) & mask,
            static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(packed, packed))) &
                mask};
#else
    return packedOneByOne({units, size});
#endif
}

/// The same for a word with anything behind it.
inline PackedWord packedWord(std::u16string_view word) noexcept {
    char16_t units[MostPackedUnits] = {};
    std::copy_n(word.data(), std::min(word.size(), MostPackedUnits), units);
    return packedWord(units, word.size());
}

}  // namespace velmo::detail
