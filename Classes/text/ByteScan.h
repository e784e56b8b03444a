// The scanning kernels of text/UnitScan.h on bytes: sixteen of them a step. None reads outside
// [from, to).
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <string_view>

#include "text/UnitScan.h"

namespace velmo::detail::scan {

#if defined(__SSE2__)

inline constexpr std::ptrdiff_t BlockBytes = 16;

inline __m128i loadBlock(const char* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

/// Index of the first byte that a comparison marked; 16 or more if none.
inline int firstByteOf(int mask) { return std::countr_zero(static_cast<unsigned>(mask)); }

/// The first position that Mark, on sixteen bytes, or Test, on one, finds; else to.
template <class Mark, class Test>
inline const char* findWhere(const char* from, const char* to, Mark mark, Test test) {
    while (to - from >= BlockBytes) {
        if (const int hits = _mm_movemask_epi8(mark(loadBlock(from))))
            return from + firstByteOf(hits);
        from += BlockBytes;
    }
    while (from < to && !test(*from)) ++from;
    return from;
}

/// The same of units or bytes behind which there are more that may be read: what is left of a text
/// needs no loop over single ones. Most tags and values are hardly longer than a block.
template <class Unit, class Mark, class Test>
inline const Unit* findWhere(const Unit* from, const Unit* to, const Unit* readable, Mark mark,
                             Test test) {
    constexpr std::ptrdiff_t Block = sizeof(__m128i) / sizeof(Unit);
    for (; from < to && readable - from >= Block; from += Block)
        if (const int hits = _mm_movemask_epi8(mark(loadBlock(from))))
            return std::min(from + firstByteOf(hits) / static_cast<int>(sizeof(Unit)), to);
    return findWhere(std::min(from, to), to, mark, test);
}

inline __m128i equalTo(__m128i block, char byte) {
    return _mm_cmpeq_epi8(block, _mm_set1_epi8(byte));
}

#endif

/// The first position that holds the byte; to if there is none.
inline const char* find(const char* from, const char* to, char byte) {
#if defined(__SSE2__)
    return findWhere(
        from, to, [byte](__m128i block) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(byte)); },
        [byte](char b) { return b == byte; });
#else
    while (from < to && *from != byte) ++from;
    return from;
#endif
}

/// The first position that holds one of two bytes; to if there is none.
inline const char* findEither(const char* from, const char* to, char a, char b) {
#if defined(__SSE2__)
    return findWhere(
        from, to,
        [=](__m128i block) {
            return _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8(a)),
                                _mm_cmpeq_epi8(block, _mm_set1_epi8(b)));
        },
        [=](char byte) { return byte == a || byte == b; });
#else
    while (from < to && *from != a && *from != b) ++from;
    return from;
#endif
}

/// The first position that holds one byte and is followed by the other; to if there is none.
inline const char* findPair(const char* from, const char* to, char first, char second) {
#if defined(__SSE2__)
    while (to - from > BlockBytes) {
        const __m128i both =
            _mm_and_si128(_mm_cmpeq_epi8(loadBlock(from), _mm_set1_epi8(first)),
                          _mm_cmpeq_epi8(loadBlock(from + 1), _mm_set1_epi8(second)));
        if (const int hits = _mm_movemask_epi8(both)) return from + firstByteOf(hits);
        from += BlockBytes;
    }
#endif
    while (to - from > 1 && (from[0] != first || from[1] != second)) ++from;
    return to - from > 1 ? from : to;
}

// The first position that holds a unit, or one of two, where more may be read behind the text.

template <class Unit>
inline const Unit* findWithin(const Unit* from, const Unit* to, const Unit* readable, Unit unit) {
#if defined(__SSE2__)
    return findWhere(
        from, to, readable, [unit](__m128i block) { return equalTo(block, unit); },
        [unit](Unit u) { return u == unit; });
#else
    static_cast<void>(readable);
    return find(from, to, unit);
#endif
}

template <class Unit>
inline const Unit* findEitherWithin(const Unit* from, const Unit* to, const Unit* readable, Unit a,
                                    Unit b) {
#if defined(__SSE2__)
    return findWhere(
        from, to, readable,
        [=](__m128i block) { return _mm_or_si128(equalTo(block, a), equalTo(block, b)); },
        [=](Unit u) { return u == a || u == b; });
#else
    static_cast<void>(readable);
    return findEither(from, to, a, b);
#endif
}

/// The first position of a byte outside ASCII; to if there is none.
inline const char* findNonAscii(const char* from, const char* to) {
    const auto isOther = [](char byte) { return static_cast<unsigned char>(byte) > 127; };
#if defined(__SSE2__)
    return findWhere(
        from, to, [](__m128i block) { return block; }, isOther);
#else
    while (from < to && !isOther(*from)) ++from;
    return from;
#endif
}

inline bool isAscii(std::string_view bytes) {
    const char* const end = bytes.data() + bytes.size();
    return findNonAscii(bytes.data(), end) == end;
}

#if defined(__SSE2__)

inline void widenBlock(const char* ascii, char16_t* out) {
    const __m128i block = loadBlock(ascii), zero = _mm_setzero_si128();
    auto* const to = reinterpret_cast<__m128i*>(out);
    _mm_storeu_si128(to, _mm_unpacklo_epi8(block, zero));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi8(block, zero));
}
inline void widenHalfBlock(const char* ascii, char16_t* out) {
    const __m128i half = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(ascii));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(half, _mm_setzero_si128()));
}

#endif

/// Widens ASCII; there must be room for as many units as there are bytes.
inline void widen(std::string_view ascii, char16_t* out) {
    const std::size_t size = ascii.size();
    std::size_t i = 0;
#if defined(__SSE2__)
    for (; size - i >= 16; i += 16) widenBlock(ascii.data() + i, out + i);
    // The last ones with some that were widened before.
    if (size >= 16) return widenBlock(ascii.data() + size - 16, out + size - 16);
    if (size >= 8) {
        widenHalfBlock(ascii.data(), out);
        return widenHalfBlock(ascii.data() + size - 8, out + size - 8);
    }
#endif
    for (; i < size; ++i) out[i] = static_cast<unsigned char>(ascii[i]);
}

/// Whether the units, of which there are as many, are those of ASCII.
inline bool equalsWidened(const char16_t* units, std::string_view ascii) {
    std::size_t i = 0;
#if defined(__SSE2__)
    for (; ascii.size() - i >= 16; i += 16) {
        const __m128i block = loadBlock(ascii.data() + i), zero = _mm_setzero_si128();
        const __m128i low = _mm_cmpeq_epi16(_mm_unpacklo_epi8(block, zero), loadBlock(units + i));
        const __m128i high =
            _mm_cmpeq_epi16(_mm_unpackhi_epi8(block, zero), loadBlock(units + i + 8));
        if (_mm_movemask_epi8(_mm_and_si128(low, high)) != 0xFFFF) return false;
    }
#endif
    for (; i < ascii.size(); ++i)
        if (units[i] != static_cast<unsigned char>(ascii[i])) return false;
    return true;
}

}  // namespace velmo::detail::scan
