#include "text/PatternScan.h"

#include <bit>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmo::detail {
namespace {

template <bool Cases>
bool matches(char16_t unit, const Anchor& anchor) noexcept {
    const auto& v = anchor.variants;
    if constexpr (Cases) return unit == v[0] || unit == v[1] || unit == v[2];
    return unit == v[0];
}

#if defined(__SSE2__)
template <bool Cases>
struct Needle {
    explicit Needle(const Anchor& anchor) noexcept {
        for (int i = 0; i < 3; ++i)
            variants[i] = _mm_set1_epi16(static_cast<short>(anchor.variants[i]));
    }
    /// All bits of the units that match are set.
    __m128i hits(const char16_t* units) const noexcept {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(units));
        __m128i result = _mm_cmpeq_epi16(block, variants[0]);
        if constexpr (Cases) {
            result = _mm_or_si128(result, _mm_cmpeq_epi16(block, variants[1]));
            result = _mm_or_si128(result, _mm_cmpeq_epi16(block, variants[2]));
        }
        return result;
    }
    __m128i variants[3];
};
#endif

template <bool Cases>
std::size_t next(const char16_t* text, std::size_t start, std::size_t starts, const Anchor& first,
                 const Anchor& second) noexcept {
#if defined(__SSE2__)
    if (starts >= 8) {
        const Needle<Cases> a(first), b(second);
        for (; start <= starts - 8; start += 8) {
            const __m128i both = _mm_and_si128(a.hits(text + start + first.offset),
                                               b.hits(text + start + second.offset));
            if (const auto mask = static_cast<unsigned>(_mm_movemask_epi8(both)))
                return start + static_cast<unsigned>(std::countr_zero(mask)) / 2;
        }
    }
#endif
    for (; start < starts; ++start)
        if (matches<Cases>(text[start + first.offset], first) &&
            matches<Cases>(text[start + second.offset], second))
            return start;
    return starts;
}

}  // namespace

std::size_t nextCandidate(const char16_t* text, std::size_t start, std::size_t starts,
                          const Anchor& first, const Anchor& second, bool cases) noexcept {
    return cases ? next<true>(text, start, starts, first, second)
                 : next<false>(text, start, starts, first, second);
}

}  // namespace velmo::detail
