// The run of ASCII at a place of 8-bit text, widened to UTF-16.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmo::detail {

/// Widens ASCII from the read position on, sixteen bytes at a time while that many
/// are left. Stops at the first other byte. There must be room for all units up to the end.
inline void widenAscii(const std::uint8_t*& in, const std::uint8_t* end, char16_t*& out) {
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    while (end - in >= 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
        const unsigned high = static_cast<unsigned>(_mm_movemask_epi8(block));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(block, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(block, zero));
        if (high) {
            const int ascii = std::countr_zero(high);
            in += ascii;
            out += ascii;
            return;
        }
        in += 16;
        out += 16;
    }
#endif
    while (in < end && *in < 0x80) *out++ = *in++;
}

/// Whether the next eight bytes are all ASCII, so that the vector loop pays.
inline bool asciiAhead(const std::uint8_t* in, const std::uint8_t* end) {
    if (end - in < 8) return false;
    std::uint64_t block;
    std::memcpy(&block, in, 8);
    return (block & 0x8080808080808080u) == 0;
}

}  // namespace velmo::detail
