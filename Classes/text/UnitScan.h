// Scanning kernels: long skips over units go through these few functions. Each is a plain
// loop; where SSE2 is there, which is every 64-bit x86 machine, eight units are looked at
// in one step. None reads outside [from, to).
#pragma once

#include <bit>
#include <cstddef>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace velmo::detail::scan {

#if defined(__SSE2__)

inline constexpr std::ptrdiff_t BlockUnits = 8;

inline __m128i loadBlock(const char16_t* units) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
}

inline __m128i equalTo(__m128i block, char16_t unit) {
    return _mm_cmpeq_epi16(block, _mm_set1_epi16(static_cast<short>(unit)));
}

/// Marks the units of [low, high].
inline __m128i inRange(__m128i block, char16_t low, char16_t high) {
    const __m128i offset = _mm_sub_epi16(block, _mm_set1_epi16(static_cast<short>(low)));
    const __m128i beyond = _mm_subs_epu16(offset, _mm_set1_epi16(static_cast<short>(high - low)));
    return _mm_cmpeq_epi16(beyond, _mm_setzero_si128());
}

/// Marks the units outside ASCII.
inline __m128i aboveAscii(__m128i block) { return inRange(block, 0x80, 0xFFFF); }

/// Index of the first unit that a comparison marked; 8 or more if the low 16 bits of its
/// mask are 0.
inline int firstOf(int mask) { return std::countr_zero(static_cast<unsigned>(mask)) / 2; }

/// The first position that Mark, on eight units, or Test, on one, finds; else to.
template <class Mark, class Test>
inline const char16_t* findWhere(const char16_t* from, const char16_t* to, Mark mark, Test test) {
    while (to - from >= BlockUnits) {
        if (const int mask = _mm_movemask_epi8(mark(loadBlock(from)))) return from + firstOf(mask);
        from += BlockUnits;
    }
    while (from < to && !test(*from)) ++from;
    return from;
}

#endif

/// The first position that holds the unit; to if there is none.
inline const char16_t* find(const char16_t* from, const char16_t* to, char16_t unit) {
#if defined(__SSE2__)
    return findWhere(
        from, to, [unit](__m128i block) { return equalTo(block, unit); },
        [unit](char16_t u) { return u == unit; });
#else
    while (from < to && *from != unit) ++from;
    return from;
#endif
}

/// Whether the unit is there. Of short texts this is told sooner than where it stands.
inline bool contains(const char16_t* from, const char16_t* to, char16_t unit) {
#if defined(__SSE2__)
    if (to - from >= BlockUnits) {
        __m128i found = equalTo(loadBlock(to - BlockUnits), unit);
        for (; to - from > BlockUnits; from += BlockUnits)
            found = _mm_or_si128(found, equalTo(loadBlock(from), unit));
        return _mm_movemask_epi8(found) != 0;
    }
#endif
    while (from < to && *from != unit) ++from;
    return from < to;
}

/// The first position that holds one of two units; to if there is none.
inline const char16_t* findEither(const char16_t* from, const char16_t* to, char16_t a,
                                  char16_t b) {
#if defined(__SSE2__)
    return findWhere(
        from, to, [=](__m128i block) { return _mm_or_si128(equalTo(block, a), equalTo(block, b)); },
        [=](char16_t u) { return u == a || u == b; });
#else
    while (from < to && *from != a && *from != b) ++from;
    return from;
#endif
}

/// The first position that holds the unit and is followed by another of it; to if there is none.
inline const char16_t* findDoubled(const char16_t* from, const char16_t* to, char16_t unit) {
#if defined(__SSE2__)
    while (to - from > BlockUnits) {
        const __m128i both =
            _mm_and_si128(equalTo(loadBlock(from), unit), equalTo(loadBlock(from + 1), unit));
        if (const int mask = _mm_movemask_epi8(both)) return from + firstOf(mask);
        from += BlockUnits;
    }
#endif
    while (to - from > 1 && (from[0] != unit || from[1] != unit)) ++from;
    return to - from > 1 ? from : to;
}

/// The first position that holds one of the units; to if there is none.
template <char16_t... Units>
inline const char16_t* findAnyOf(const char16_t* from, const char16_t* to) {
#if defined(__SSE2__)
    return findWhere(
        from, to,
        [](__m128i block) {
            __m128i mask = _mm_setzero_si128();
            ((mask = _mm_or_si128(mask, equalTo(block, Units))), ...);
            return mask;
        },
        [](char16_t u) { return ((u == Units) || ...); });
#else
    while (from < to && !((*from == Units) || ...)) ++from;
    return from;
#endif
}

/// The first position of a unit outside ASCII; to if there is none.
inline const char16_t* findNonAscii(const char16_t* from, const char16_t* to) {
#if defined(__SSE2__)
    return findWhere(
        from, to, [](__m128i block) { return aboveAscii(block); },
        [](char16_t u) { return u > 127; });
#else
    while (from < to && *from <= 127) ++from;
    return from;
#endif
}

/// How many of the units are the given one.
inline std::size_t count(const char16_t* from, const char16_t* to, char16_t unit) {
    std::size_t n = 0;
    for (; from < to; ++from) n += *from == unit;
    return n;
}

}  // namespace velmo::detail::scan
