// Half a byte is what a shuffle looks up, for 32 bytes at once; so two shuffles tell for 32 units
// the groups of words that may have them at a place, and six do so for three places. A group is a
// bit: what the three places have in common is left after shifting the first two along.
#include "text/TripleScan.h"

#include <algorithm>

#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

constexpr std::size_t BlockSize = 64;
/// Behind the last place of a block.
constexpr std::size_t Ahead = TripleSieve::Places - 1;

bool isWhole(std::u16string_view text, std::size_t base) {
    return text.size() >= BlockSize + Ahead && base <= text.size() - BlockSize - Ahead;
}

#if defined(__SSE2__)

/// What is known of 32 units: by place, the groups that may have them.
struct Groups {
    __m256i first, second, third;
};

/// Looks units up. For machines that have AVX2.
class Lookup {
public:
    __attribute__((target("avx2"))) explicit Lookup(const TripleSieve& sieve) noexcept {
        for (unsigned place = 0; place < TripleSieve::Places; ++place) {
            low_[place] = table(sieve.low[place]);
            high_[place] = table(sieve.high[place]);
        }
    }

    __attribute__((target("avx2"))) Groups groupsOf(const char16_t* units) const noexcept {
        const auto* block = reinterpret_cast<const __m256i*>(units);
        const __m256i inByte = _mm256_set1_epi16(0xFF), inHalf = _mm256_set1_epi8(0x0F);
        // Packing keeps the 128-bit lanes apart; the permutation brings them in order.
        const __m256i bytes = _mm256_permute4x64_epi64(
            _mm256_packus_epi16(_mm256_and_si256(_mm256_loadu_si256(block), inByte),
                                _mm256_and_si256(_mm256_loadu_si256(block + 1), inByte)),
            0xD8);
        const __m256i low = _mm256_and_si256(bytes, inHalf);
        const __m256i high = _mm256_and_si256(_mm256_srli_epi16(bytes, 4), inHalf);
        return {at(0, low, high), at(1, low, high), at(2, low, high)};
    }

private:
    __attribute__((target("avx2"))) static __m256i table(const std::uint8_t* halves) noexcept {
        return _mm256_broadcastsi128_si256(
            _mm_load_si128(reinterpret_cast<const __m128i*>(halves)));
    }
    __attribute__((target("avx2"))) __m256i at(unsigned place, __m256i low,
                                               __m256i high) const noexcept {
        return _mm256_and_si256(_mm256_shuffle_epi8(low_[place], low),
                                _mm256_shuffle_epi8(high_[place], high));
    }

    __m256i low_[TripleSieve::Places], high_[TripleSieve::Places];
};

/// The bytes moved on by some places, behind the last ones of those before.
template <int Places>
__attribute__((target("avx2"))) __m256i movedOn(__m256i before, __m256i bytes) noexcept {
    return _mm256_alignr_epi8(bytes, _mm256_permute2x128_si256(before, bytes, 0x21), 16 - Places);
}

/// The groups of two units, as they stand at the end of those before a block.
__attribute__((target("avx2"))) Groups groupsBefore(const char16_t* units,
                                                    const TripleSieve& sieve) noexcept {
    alignas(32) std::uint8_t first[32] = {}, second[32] = {};
    for (unsigned i = 0; i < Ahead; ++i) {
        first[30 + i] = static_cast<std::uint8_t>(sieve.groupsOf(0, units[i]));
        second[30 + i] = static_cast<std::uint8_t>(sieve.groupsOf(1, units[i]));
    }
    return {_mm256_load_si256(reinterpret_cast<const __m256i*>(first)),
            _mm256_load_si256(reinterpret_cast<const __m256i*>(second)), _mm256_setzero_si256()};
}

__attribute__((target("avx2"))) __m256i inCommon(const Groups& before, const Groups& now) noexcept {
    return _mm256_and_si256(_mm256_and_si256(movedOn<2>(before.first, now.first),
                                             movedOn<1>(before.second, now.second)),
                            now.third);
}

__attribute__((target("avx2"))) std::uint64_t placesOf(__m256i groups) noexcept {
    const __m256i none = _mm256_cmpeq_epi8(groups, _mm256_setzero_si256());
    return static_cast<std::uint32_t>(~_mm256_movemask_epi8(none));
}

__attribute__((target("avx2"))) SievedBlock nextAvx2(std::u16string_view text, std::size_t base,
                                                     const TripleSieve& sieve) noexcept {
    if (!isWhole(text, base)) return {base, 0};
    const Lookup lookup(sieve);
    Groups before = groupsBefore(text.data() + base, sieve);
    for (; isWhole(text, base); base += BlockSize) {
        // The third units of the places.
        const Groups left = lookup.groupsOf(text.data() + base + Ahead);
        const Groups right = lookup.groupsOf(text.data() + base + Ahead + 32);
        const __m256i low = inCommon(before, left), high = inCommon(left, right);
        const __m256i any = _mm256_or_si256(low, high);
        if (!_mm256_testz_si256(any, any)) return {base, placesOf(low) | placesOf(high) << 32};
        before = right;
    }
    return {base, 0};
}

#endif

}  // namespace

SievedBlock nextSievedOneByOne(std::u16string_view text, std::size_t base,
                               const TripleSieve& sieve) noexcept {
    for (; isWhole(text, base); base += BlockSize)
        // Two more units make the last places of the block whole; as places they are cut off.
        if (const std::uint64_t places = sievedRest(text.substr(base, BlockSize + Ahead), sieve))
            return {base, places};
    return {base, 0};
}

std::uint64_t sievedRest(std::u16string_view rest, const TripleSieve& sieve) noexcept {
    constexpr unsigned All = (1u << TripleSieve::Groups) - 1;
    const std::size_t count = std::min(rest.size(), BlockSize);
    std::uint64_t places = 0;
    for (std::size_t i = 0; i < count; ++i) {
        unsigned groups = All;
        for (unsigned place = 0; place < TripleSieve::Places && i + place < rest.size(); ++place)
            groups &= sieve.groupsOf(place, rest[i + place]);
        places |= static_cast<std::uint64_t>(groups != 0) << i;
    }
    return places;
}

SievedBlock nextSieved(std::u16string_view text, std::size_t base,
                       const TripleSieve& sieve) noexcept {
#if defined(__SSE2__)
    if (scan::hasAvx2()) return nextAvx2(text, base, sieve);
#endif
    return nextSievedOneByOne(text, base, sieve);
}

bool sievesManyAtOnce() noexcept {
#if defined(__SSE2__)
    return scan::hasAvx2();
#else
    return false;
#endif
}

}  // namespace velmo::detail
