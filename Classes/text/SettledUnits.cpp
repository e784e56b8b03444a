#include "text/SettledUnits.h"
#include "platform/Machine.h"

#include <bit>
#include <cstdint>

#include "text/UnitScan.h"

namespace velmo::detail {

#if defined(__SSE2__)

namespace {

// Two bits a unit, as the machine gives them.

__attribute__((target("avx2"))) inline std::uint32_t bitsOf(__m256i marks) noexcept {
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(marks));
}

__attribute__((target("avx2"))) inline __m256i inRange(__m256i block, char16_t low,
                                                       char16_t high) noexcept {
    const __m256i offset = _mm256_sub_epi16(block, _mm256_set1_epi16(static_cast<short>(low)));
    const __m256i beyond =
        _mm256_subs_epu16(offset, _mm256_set1_epi16(static_cast<short>(high - low)));
    return _mm256_cmpeq_epi16(beyond, _mm256_setzero_si256());
}

/// The stretches that inPlainStretch() of WhiteRuns.h tells of.
__attribute__((target("avx2"))) inline __m256i inPlainStretchWide(__m256i block) noexcept {
    return _mm256_or_si256(
        inRange(block, 0x21, 0x7F),
        _mm256_or_si256(inRange(block, 0xA1, 0x167F), inRange(block, 0x3001, 0xFEFE)));
}

}  // namespace

bool canSettleWide() noexcept { return machine::hasAvx2(); }

__attribute__((target("avx2"))) std::ptrdiff_t settleWide(const char16_t* from, const char16_t* to,
                                                          char16_t* out, char16_t stop,
                                                          bool blanksStay) noexcept {
    const __m256i stops = _mm256_set1_epi16(static_cast<short>(stop));
    const __m256i blanks = _mm256_set1_epi16(blanksStay ? u' ' : stop);
    std::ptrdiff_t settled = 0;
    while (to - from - settled >= WideUnits) {
        const __m256i block = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + settled));
        if (out) _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + settled), block);
        const __m256i isStop = _mm256_cmpeq_epi16(block, stops);
        const std::uint32_t plain = bitsOf(_mm256_andnot_si256(isStop, inPlainStretchWide(block)));
        const std::uint32_t blank = bitsOf(_mm256_cmpeq_epi16(block, blanks));
        // The unit to stop at is no blank, whatever stands behind it.
        const std::uint32_t stays = plain | (blank & plain >> 2 & ~bitsOf(isStop));
        const int count = std::countr_one(stays) / 2;
        settled += count;
        // What stands behind a blank at the end of the block, the next block tells.
        if (count < WideUnits - 1) break;
    }
    return settled;
}

#else

bool canSettleWide() noexcept { return false; }

std::ptrdiff_t settleWide(const char16_t*, const char16_t*, char16_t*, char16_t, bool) noexcept {
    return 0;
}

#endif

}  // namespace velmo::detail
