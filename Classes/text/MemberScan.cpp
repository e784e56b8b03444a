#include "text/MemberScan.h"

#include <bit>

#include "platform/Machine.h"
#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

#if defined(__SSE2__)

// A set has a bit for each of 65,536 units, 16 bytes for each row of 128 of them, and so many bytes
// are what a shuffle looks up in. A text rarely has units of more than a few rows at a time: those
// of ASCII, of its script, and of its punctuation. So 32 units are looked up in one row after the
// other, as long as that pays; Chinese, with its hundreds of rows, is done unit by unit.

constexpr unsigned RowSize = 128;
/// A row pays if it answers for so many units.
constexpr int FewestInRow = 4;

/// 32 units, to be looked up in rows. For machines that have AVX2.
class RowLookup {
public:
    __attribute__((target("avx2"))) explicit RowLookup(const char16_t* units) noexcept {
        const auto* block = reinterpret_cast<const __m256i*>(units);
        a_ = _mm256_loadu_si256(block);
        b_ = _mm256_loadu_si256(block + 1);
        const __m256i inRow = _mm256_set1_epi16(RowSize - 1);
        const __m256i places =
            packed(_mm256_packus_epi16(_mm256_and_si256(a_, inRow), _mm256_and_si256(b_, inRow)));
        byte_ = _mm256_and_si256(_mm256_srli_epi16(places, 3), _mm256_set1_epi8(0x0F));
        const __m256i bits = _mm256_broadcastsi128_si256(
            _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128));
        bit_ = _mm256_shuffle_epi8(bits, _mm256_and_si256(places, _mm256_set1_epi8(0x07)));
        a_ = _mm256_srli_epi16(a_, 7);
        b_ = _mm256_srli_epi16(b_, 7);
    }

    /// Which units are in a row.
    __attribute__((target("avx2"))) std::uint32_t inRow(unsigned row) const noexcept {
        const __m256i wanted = _mm256_set1_epi16(static_cast<short>(row));
        return maskOf(packed(
            _mm256_packs_epi16(_mm256_cmpeq_epi16(a_, wanted), _mm256_cmpeq_epi16(b_, wanted))));
    }

    /// Which units would be members, were they all in a row of the set.
    __attribute__((target("avx2"))) std::uint32_t members(const std::uint8_t* row) const noexcept {
        const __m256i bytes =
            _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(row)));
        const __m256i found = _mm256_and_si256(_mm256_shuffle_epi8(bytes, byte_), bit_);
        return ~maskOf(_mm256_cmpeq_epi8(found, _mm256_setzero_si256()));
    }

private:
    /// Packing keeps the 128-bit lanes apart; this brings them in order.
    __attribute__((target("avx2"))) static __m256i packed(__m256i bytes) noexcept {
        return _mm256_permute4x64_epi64(bytes, 0xD8);
    }
    __attribute__((target("avx2"))) static std::uint32_t maskOf(__m256i marks) noexcept {
        return static_cast<std::uint32_t>(_mm256_movemask_epi8(marks));
    }

    __m256i a_, b_;       // the rows of the units
    __m256i byte_, bit_;  // their places in them
};

/// The units in other rows than that of ASCII.
__attribute__((target("avx2"))) std::uint32_t membersOfRest(const char16_t* units,
                                                            std::uint32_t rest,
                                                            const RowLookup& lookup,
                                                            const CharacterSetRep& set) noexcept {
    std::uint32_t members = 0;
    while (rest) {
        const unsigned row = units[std::countr_zero(rest)] / RowSize;
        const std::uint32_t own = lookup.inRow(row);
        if (std::popcount(own) < FewestInRow) break;
        members |= own & lookup.members(set.bits + row * (RowSize / 8));
        rest &= ~own;
    }
    for (; rest; rest &= rest - 1) {
        const auto i = static_cast<unsigned>(std::countr_zero(rest));
        members |= static_cast<std::uint32_t>(set.contains(units[i])) << i;
    }
    return members;
}

__attribute__((target("avx2"))) std::uint64_t membersOf64(const char16_t* units,
                                                          const CharacterSetRep& set) noexcept {
    std::uint64_t members = 0;
    for (unsigned half = 0; half < 64; half += 32) {
        const RowLookup lookup(units + half);
        const std::uint32_t ascii = lookup.inRow(0);
        std::uint32_t own = ascii & lookup.members(set.bits);
        if (~ascii) own |= membersOfRest(units + half, ~ascii, lookup, set);
        members |= std::uint64_t{own} << half;
    }
    return members;
}

/// The same in one step for each row, for machines that have AVX-512.
__attribute__((target("avx512bw,avx512vbmi"))) std::uint64_t membersOf64InOneStep(
    const char16_t* units, const CharacterSetRep& set) noexcept {
    const __m512i a = _mm512_loadu_si512(units), b = _mm512_loadu_si512(units + 32);
    const __m512i inRow = _mm512_set1_epi16(RowSize - 1);
    // The forms with a mask, as g++ warns of the others.
    const __m512i places = _mm512_maskz_permutexvar_epi64(
        0xFF, _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7),
        _mm512_packus_epi16(_mm512_and_si512(a, inRow), _mm512_and_si512(b, inRow)));
    const __m512i byte = _mm512_and_si512(_mm512_srli_epi16(places, 3), _mm512_set1_epi8(0x0F));
    const __m512i bit = _mm512_shuffle_epi8(
        _mm512_maskz_broadcast_i32x4(
            0xFFFF, _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128)),
        _mm512_and_si512(places, _mm512_set1_epi8(0x07)));
    std::uint64_t members = 0;
    unsigned row = 0;  // that of ASCII first
    for (std::uint64_t rest = ~std::uint64_t{0}; rest;
         row = rest ? units[std::countr_zero(rest)] / RowSize : 0) {
        const __m512i wanted = _mm512_set1_epi16(static_cast<short>(row));
        const std::uint64_t own =
            _mm512_cmpeq_epi16_mask(_mm512_srli_epi16(a, 7), wanted) |
            static_cast<std::uint64_t>(_mm512_cmpeq_epi16_mask(_mm512_srli_epi16(b, 7), wanted))
                << 32;
        if (row > 0 && std::popcount(own) < FewestInRow) {
            for (; rest; rest &= rest - 1) {
                const auto i = static_cast<unsigned>(std::countr_zero(rest));
                members |= static_cast<std::uint64_t>(set.contains(units[i])) << i;
            }
            break;
        }
        const __m512i bytes = _mm512_maskz_broadcast_i32x4(
            0xFFFF,
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(set.bits + row * (RowSize / 8))));
        members |= own & _mm512_test_epi8_mask(_mm512_shuffle_epi8(bytes, byte), bit);
        rest &= ~own;
    }
    return members;
}

#endif

}  // namespace

std::uint64_t membersOf(const char16_t* units, std::size_t count,
                        const CharacterSetRep& set) noexcept {
#if defined(__SSE2__)
    if (count == 64 && machine::hasAvx512()) return membersOf64InOneStep(units, set);
    if (count == 64 && machine::hasAvx2()) return membersOf64(units, set);
#endif
    return membersOneByOne(units, count, set);
}

}  // namespace velmo::detail
