// The five marks of a tag scan in 64 units, or bytes of UTF-8, as bits. All kernels give the same; the
// widest that the machine has is taken.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/Machine.h"
#include "text/ByteScan.h"

namespace velmo::detail {

/// Bit i stands for unit i of a block.
struct Marks {
    std::uint64_t less = 0, greater = 0, equal = 0, doubleQuote = 0, singleQuote = 0;

    bool operator==(const Marks&) const = default;
};

namespace markKernels {

inline constexpr std::ptrdiff_t BlockUnits = 64;

// Each mark goes to its place at once: made elsewhere and copied as a whole, they would have to wait
// for each other.

/// Sets each to what bitsOf() gives for its unit.
template <class BitsOf>
void setAll(Marks& marks, BitsOf bitsOf) {
    marks.less = bitsOf('<');
    marks.greater = bitsOf('>');
    marks.equal = bitsOf('=');
    marks.doubleQuote = bitsOf('"');
    marks.singleQuote = bitsOf('\'');
}

template <class Unit>
void markScalar(const Unit* units, Marks& marks) {
    setAll(marks, [units](char mark) {
        std::uint64_t bits = 0;
        for (int i = 0; i < BlockUnits; ++i) bits |= std::uint64_t{units[i] == mark} << i;
        return bits;
    });
}

#if defined(__SSE2__)

// Units are packed to bytes first: those above 255 become 255 or 0, which no mark is.

inline __m128i bytes16(const char16_t* units) {
    return _mm_packus_epi16(scan::loadBlock(units), scan::loadBlock(units + 8));
}
inline __m128i bytes16(const char* bytes) { return scan::loadBlock(bytes); }

template <class Unit>
void markSse2(const Unit* units, Marks& marks) {
    const __m128i bytes[] = {bytes16(units), bytes16(units + 16), bytes16(units + 32),
                             bytes16(units + 48)};
    setAll(marks, [&](char mark) {
        std::uint64_t bits = 0;
        for (int i = 0; i < 4; ++i) {
            const int hits = _mm_movemask_epi8(scan::equalTo(bytes[i], mark));
            bits |= static_cast<std::uint64_t>(hits) << (16 * i);
        }
        return bits;
    });
}

__attribute__((target("avx2"))) inline __m256i bytes32(const char16_t* units) {
    const auto* block = reinterpret_cast<const __m256i*>(units);
    // The pack works on each half of the register; the permutation mends the order.
    return _mm256_permute4x64_epi64(
        _mm256_packus_epi16(_mm256_loadu_si256(block), _mm256_loadu_si256(block + 1)), 0xD8);
}
__attribute__((target("avx2"))) inline __m256i bytes32(const char* bytes) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes));
}

__attribute__((target("avx2"))) inline std::uint64_t bitsOf(__m256i low, __m256i high, char mark) {
    const __m256i marks = _mm256_set1_epi8(mark);
    const auto lowHits =
        static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(low, marks)));
    const auto highHits =
        static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(high, marks)));
    return lowHits | static_cast<std::uint64_t>(highHits) << 32;
}

template <class Unit>
__attribute__((target("avx2"))) void markAvx2(const Unit* units, Marks& marks) {
    const __m256i low = bytes32(units), high = bytes32(units + 32);
    marks.less = bitsOf(low, high, '<');
    marks.greater = bitsOf(low, high, '>');
    marks.equal = bitsOf(low, high, '=');
    marks.doubleQuote = bitsOf(low, high, '"');
    marks.singleQuote = bitsOf(low, high, '\'');
}

__attribute__((target("avx512bw"))) inline std::uint64_t bitsOf64(const char16_t* units,
                                                                  char mark) {
    const __m512i marks = _mm512_set1_epi16(mark);
    const std::uint64_t low = _mm512_cmpeq_epi16_mask(_mm512_loadu_si512(units), marks);
    const std::uint64_t high = _mm512_cmpeq_epi16_mask(_mm512_loadu_si512(units + 32), marks);
    return low | high << 32;
}
__attribute__((target("avx512bw"))) inline std::uint64_t bitsOf64(const char* bytes, char mark) {
    return _mm512_cmpeq_epi8_mask(_mm512_loadu_si512(bytes), _mm512_set1_epi8(mark));
}

template <class Unit>
__attribute__((target("avx512bw"))) void markAvx512(const Unit* units, Marks& marks) {
    marks.less = bitsOf64(units, '<');
    marks.greater = bitsOf64(units, '>');
    marks.equal = bitsOf64(units, '=');
    marks.doubleQuote = bitsOf64(units, '"');
    marks.singleQuote = bitsOf64(units, '\'');
}

#endif

}  // namespace markKernels

/// Finds the marks of 64 units, all of which are read.
template <class Unit>
using MarkKernel = void (*)(const Unit* units, Marks& marks);

/// The widest one that the machine has.
template <class Unit>
MarkKernel<Unit> markKernel() {
#if defined(__SSE2__)
    if (machine::hasAvx512()) return markKernels::markAvx512;
    return machine::hasAvx2() ? markKernels::markAvx2<Unit> : markKernels::markSse2<Unit>;
#else
    return markKernels::markScalar;
#endif
}

}  // namespace velmo::detail
