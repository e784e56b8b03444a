#include "text/MemberScan.h"

#include <bit>

#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

#if defined(__SSE2__)

/// Units of ASCII are looked up 32 at a time in the 16 bytes that the set has for them; all
/// others one by one. For machines that have AVX2.
__attribute__((target("avx2"))) std::uint64_t membersOf64(const char16_t* units,
                                                          const CharacterSetRep& set) noexcept {
    const __m256i rows =
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(set.bits)));
    const __m256i bits = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128));
    std::uint64_t members = 0, others = 0;
    for (unsigned half = 0; half < 64; half += 32) {
        const auto* block = reinterpret_cast<const __m256i*>(units + half);
        const __m256i a = _mm256_loadu_si256(block), b = _mm256_loadu_si256(block + 1);
        // Packing keeps the 128-bit lanes apart; the permutation brings them in order.
        const __m256i bytes = _mm256_permute4x64_epi64(
            _mm256_packus_epi16(_mm256_and_si256(a, _mm256_set1_epi16(0x7F)),
                                _mm256_and_si256(b, _mm256_set1_epi16(0x7F))),
            0xD8);
        const __m256i row = _mm256_shuffle_epi8(
            rows, _mm256_and_si256(_mm256_srli_epi16(bytes, 3), _mm256_set1_epi8(0x0F)));
        const __m256i bit =
            _mm256_shuffle_epi8(bits, _mm256_and_si256(bytes, _mm256_set1_epi8(0x07)));
        const __m256i misses =
            _mm256_cmpeq_epi8(_mm256_and_si256(row, bit), _mm256_setzero_si256());
        const __m256i zero = _mm256_setzero_si256();
        const __m256i isAscii = _mm256_permute4x64_epi64(
            _mm256_packs_epi16(_mm256_cmpeq_epi16(_mm256_srli_epi16(a, 7), zero),
                               _mm256_cmpeq_epi16(_mm256_srli_epi16(b, 7), zero)),
            0xD8);
        const auto mask = [](__m256i marks) __attribute__((target("avx2"))) {
            return static_cast<std::uint64_t>(
                static_cast<std::uint32_t>(_mm256_movemask_epi8(marks)));
        };
        members |= mask(_mm256_andnot_si256(misses, isAscii)) << half;
        others |= (~mask(isAscii) & 0xFFFFFFFF) << half;
    }
    for (; others; others &= others - 1) {
        const auto i = static_cast<unsigned>(std::countr_zero(others));
        members |= static_cast<std::uint64_t>(set.contains(units[i])) << i;
    }
    return members;
}

#endif

}  // namespace

std::uint64_t membersOf(const char16_t* units, std::size_t count,
                        const CharacterSetRep& set) noexcept {
#if defined(__SSE2__)
    if (count == 64 && scan::hasAvx2()) return membersOf64(units, set);
#endif
    return membersOneByOne(units, count, set);
}

}  // namespace velmo::detail
