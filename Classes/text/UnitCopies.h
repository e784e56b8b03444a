// Copies of texts that are mostly so short that a call would cost more than the copy. Blocks that
// overlap are written twice instead of unit by unit.
#pragma once

#include <cstdint>
#include <cstring>

#include "platform/Ascii.h"
#include "text/UnitScan.h"

namespace velmo::detail {

/// Copies units of one text to another.
inline void copyFew(char16_t* to, const char16_t* from, std::size_t count) {
    constexpr std::size_t Half = 4, Many = 48;
    if (count < Half) {
        for (std::size_t i = 0; i < count; ++i) to[i] = from[i];
    } else if (count <= 2 * Half) {
        std::uint64_t first, last;
        std::memcpy(&first, from, sizeof first);
        std::memcpy(&last, from + count - Half, sizeof last);
        std::memcpy(to, &first, sizeof first);
        std::memcpy(to + count - Half, &last, sizeof last);
    } else {
#if defined(__SSE2__)
        constexpr std::size_t Block = scan::BlockUnits;
        if (count <= Many) {
            const auto copy = [&](std::size_t i) {
                _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), scan::loadBlock(from + i));
            };
            for (std::size_t i = 0; i + Block < count; i += Block) copy(i);
            return copy(count - Block);
        }
#endif
        std::memcpy(to, from, count * sizeof(char16_t));
    }
}

/// The same in lower case, of units in ASCII.
inline void copyLower(char16_t* to, const char16_t* from, std::size_t count) {
    std::size_t i = 0;
#if defined(__SSE2__)
    constexpr std::size_t Block = scan::BlockUnits;
    const auto copy = [&](std::size_t at) {
        const __m128i units = scan::loadBlock(from + at);
        const __m128i bit = _mm_and_si128(scan::inRange(units, u'A', u'Z'), _mm_set1_epi16(0x20));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), _mm_or_si128(units, bit));
    };
    if (count >= Block) {
        for (; i + Block < count; i += Block) copy(i);
        return copy(count - Block);
    }
#endif
    for (; i < count; ++i) to[i] = ascii::toLower(from[i]);
}

}  // namespace velmo::detail
