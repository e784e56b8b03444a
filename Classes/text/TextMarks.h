// What 32 units in a row are to a text of ASCII: letters and signs, blanks, or other white space.
// Most spans between two tags are shorter than that, so that one look tells where their text begins
// and ends and whether it may be copied as it stands. For 16-bit units and for bytes alike.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "text/UnitScan.h"

namespace velmo::detail {

/// A byte or a unit as a number.
constexpr char16_t valueOfUnit(char16_t unit) { return unit; }
constexpr char16_t valueOfUnit(char byte) { return static_cast<unsigned char>(byte); }

/// Bit i stands for unit i. What is neither plain nor white has no bit: an &, a control, and all
/// outside ASCII.
struct TextMarks {
    static constexpr std::ptrdiff_t Units = 32;

    std::uint32_t plain = 0;  ///< what is no white space and begins no reference
    std::uint32_t blank = 0;  ///< white space that stays as it is where it stands by itself
    std::uint32_t white = 0;  ///< blanks, tabs and line ends
};

/// One unit after the other.
template <class Unit>
TextMarks textMarksByUnit(const Unit* units) {
    TextMarks marks;
    for (std::ptrdiff_t i = 0; i < TextMarks::Units; ++i) {
        const char16_t unit = valueOfUnit(units[i]);
        const std::uint32_t bit = std::uint32_t{1} << i;
        if (unit > u' ' && unit < 128 && unit != u'&') marks.plain |= bit;
        if (unit == u' ') marks.blank |= bit;
        if (unit == u' ' || (unit >= u'\t' && unit <= u'\r')) marks.white |= bit;
    }
    return marks;
}

#if defined(__SSE2__)

/// Sixteen units as bytes. Units outside ASCII become bytes outside ASCII, or NUL.
inline __m128i loadAsBytes(const char* units) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
}
inline __m128i loadAsBytes(const char16_t* units) {
    return _mm_packus_epi16(scan::loadBlock(units), scan::loadBlock(units + scan::BlockUnits));
}

/// Writes 32 units of which those that are wanted are ASCII as 16-bit units.
inline void copyWidened(const char* from, char16_t* out) {
    for (int half = 0; half < 2; ++half) {
        const __m128i block = loadAsBytes(from + 16 * half), zero = _mm_setzero_si128();
        auto* const to = reinterpret_cast<__m128i*>(out + 16 * half);
        _mm_storeu_si128(to, _mm_unpacklo_epi8(block, zero));
        _mm_storeu_si128(to + 1, _mm_unpackhi_epi8(block, zero));
    }
}

/// Which of 32 bytes are not ASCII.
inline std::uint32_t nonAscii(const char* bytes) {
    return static_cast<std::uint32_t>(_mm_movemask_epi8(loadAsBytes(bytes))) |
           static_cast<std::uint32_t>(_mm_movemask_epi8(loadAsBytes(bytes + 16))) << 16;
}

template <class Unit>
[[gnu::always_inline]] inline TextMarks textMarks(const Unit* units) {
    TextMarks marks;
    for (int half = 0; half < 2; ++half) {
        const __m128i block = loadAsBytes(units + 16 * half);
        const auto add = [half](std::uint32_t& bits, __m128i hits) {
            bits |= static_cast<std::uint32_t>(_mm_movemask_epi8(hits)) << (16 * half);
        };
        const __m128i blank = _mm_cmpeq_epi8(block, _mm_set1_epi8(' '));
        // Bytes outside ASCII are below 0 here.
        const __m128i above = _mm_cmpgt_epi8(block, _mm_set1_epi8(' '));
        const __m128i offset = _mm_sub_epi8(block, _mm_set1_epi8('\t'));
        const __m128i feed =
            _mm_cmpeq_epi8(_mm_min_epu8(offset, _mm_set1_epi8('\r' - '\t')), offset);
        add(marks.plain, _mm_andnot_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8('&')), above));
        add(marks.blank, blank);
        add(marks.white, _mm_or_si128(blank, feed));
    }
    return marks;
}

/// Whether so many units, up to sixteen, are blanks, tabs and line ends. Sixteen are read.
template <class Unit>
[[gnu::always_inline]] inline bool areWhite(const Unit* units, std::size_t count) {
    const __m128i block = loadAsBytes(units);
    const __m128i offset = _mm_sub_epi8(block, _mm_set1_epi8('\t'));
    const __m128i feed = _mm_cmpeq_epi8(_mm_min_epu8(offset, _mm_set1_epi8('\r' - '\t')), offset);
    const __m128i white = _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8(' ')), feed);
    const auto others = ~static_cast<std::uint32_t>(_mm_movemask_epi8(white));
    return std::countr_zero(others) >= static_cast<int>(count);
}

#else

template <class Unit>
bool areWhite(const Unit* units, std::size_t count) {
    return std::countr_one(textMarksByUnit(units).white) >= static_cast<int>(count);
}

inline std::uint32_t nonAscii(const char* bytes) {
    std::uint32_t bits = 0;
    for (std::ptrdiff_t i = 0; i < TextMarks::Units; ++i)
        bits |= std::uint32_t{static_cast<unsigned char>(bytes[i])} >> 7 << i;
    return bits;
}

template <class Unit>
TextMarks textMarks(const Unit* units) {
    return textMarksByUnit(units);
}

inline void copyWidened(const char* from, char16_t* out) {
    for (std::ptrdiff_t i = 0; i < TextMarks::Units; ++i)
        out[i] = static_cast<unsigned char>(from[i]);
}

#endif

inline void copyWidened(const char16_t* from, char16_t* out) {
    std::memcpy(out, from, TextMarks::Units * sizeof(char16_t));
}

}  // namespace velmo::detail
