// A group of words is a bit. For each pair of units of a word a table tells the groups that may have
// it there, and what the tables have in common for four pairs in a row is left of the groups. Pairs
// are much sharper than units: a group of a hundred words has nearly all letters at some place.
//
// AVX2 looks up in tables of 16 bytes, so there the halves of a pair's number are looked up, and what
// both have in common may be more than was put in: enough for some dozens of words. AVX-512 looks up in tables of 128 bytes (VBMI),
// with a third of the steps; on machines that have it, it more than doubles the speed.
#include "text/TripleScan.h"

#include <algorithm>
#include <array>

#include "platform/Machine.h"
#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

constexpr std::size_t BlockSize = 64;
/// Units behind the last place of a block that are looked at.
constexpr std::size_t Ahead = TripleSieve::Ahead;

using FirstUnits = std::array<char16_t, Ahead>;

/// Puts down the blocks in which a place passes. Sieve::placesOf(units) tells those of 64, and reads
/// the four units behind them; it is asked for one block after the other, and told the first four
/// units ahead. Becomes part of its caller, which may be made for other machines than it is.
template <class Sieve>
__attribute__((always_inline)) inline std::size_t sieved(std::u16string_view text, std::size_t base,
                                                         std::span<SievedBlock> found,
                                                         Sieve&& sieve) {
    const auto unitAt = [&](std::size_t i) { return i < text.size() ? text[i] : u'\0'; };
    sieve.begin({unitAt(base), unitAt(base + 1), unitAt(base + 2), unitAt(base + 3)});
    std::size_t count = 0;
    for (; base + BlockSize + Ahead <= text.size() && count < found.size(); base += BlockSize)
        if (const std::uint64_t places = sieve.placesOf(text.data() + base))
            found[count++] = {base, places};
    for (; base < text.size() && count < found.size(); base += BlockSize) {
        char16_t rest[BlockSize + Ahead] = {};
        const std::size_t units = std::min(text.size() - base, std::size(rest));
        std::copy_n(text.data() + base, units, rest);
        const std::uint64_t inText =
            units < BlockSize ? (std::uint64_t{1} << units) - 1 : ~std::uint64_t{0};
        if (const std::uint64_t places = sieve.placesOf(rest) & inText)
            found[count++] = {base, places};
    }
    return count;
}

unsigned groupsOfPair(const TripleSieve& sieve, unsigned place, unsigned first, unsigned second) {
    return sieve.pairs[place][TripleSieve::pairOf(first, second)];
}
unsigned groupsOfHalves(const TripleSieve& sieve, unsigned place, unsigned first, unsigned second) {
    constexpr unsigned Skipped = 2;  // the third pair: it makes no difference to the few words
    if (place == Skipped) return TripleSieve::AllGroups;
    return sieve.low[place][TripleSieve::lowOf(first, second)] &
           sieve.high[place][TripleSieve::highOf(first, second)];
}

/// What a function of these gives for the pair that begins at a unit.
template <unsigned (*GroupsOf)(const TripleSieve&, unsigned, unsigned, unsigned)>
unsigned groupsAt(const TripleSieve& sieve, unsigned place, const char16_t* units) {
    return GroupsOf(sieve, place, TripleSieve::bitsOf(units[0]), TripleSieve::bitsOf(units[1]));
}

template <unsigned (*GroupsOf)(const TripleSieve&, unsigned, unsigned, unsigned)>
struct OneByOne {
    const TripleSieve& sieve;
    unsigned wanted;

    void begin(const FirstUnits&) noexcept {}
    std::uint64_t placesOf(const char16_t* units) const noexcept {
        const auto groups = [&](unsigned place, std::size_t i) {
            return groupsAt<GroupsOf>(sieve, place, units + i + place);
        };
        std::uint64_t places = 0;
        for (std::size_t i = 0; i < BlockSize; ++i) {
            const unsigned left =
                wanted & groups(0, i) & groups(1, i) & groups(2, i) & groups(3, i);
            places |= static_cast<std::uint64_t>(left != 0) << i;
        }
        return places;
    }
};

#if defined(__SSE2__)

// Both look at the fourth pairs of a block's places; what the pairs before may be has then been
// looked up with the block before, but for the first block.

/// 64 places by two vectors, for machines that have AVX2.
class HalvesSieve {
public:
    __attribute__((target("avx2"))) HalvesSieve(const TripleSieve& sieve, unsigned groups) noexcept
        : sieve_(sieve) {
        for (unsigned place = 0; place < TripleSieve::Places; ++place) {
            low_[place] = table(sieve.low[place]);
            high_[place] = table(sieve.high[place]);
        }
        // What is left of the groups here is all that passes.
        __m256i& last = low_[TripleSieve::Places - 1];
        last = _mm256_and_si256(last, _mm256_set1_epi8(static_cast<char>(groups)));
    }

    __attribute__((target("avx2"))) void begin(const FirstUnits& units) noexcept {
        const auto groups = [&](unsigned place, std::size_t i) {
            return static_cast<char>(groupsAt<groupsOfHalves>(sieve_, place, &units[i]));
        };
        const __m256i none = _mm256_setzero_si256();
        bits_ = _mm256_insert_epi8(none, static_cast<char>(units[3] & InHalf), 31);
        second_ = _mm256_insert_epi8(none, groups(1, 1), 30);
        second_ = _mm256_insert_epi8(second_, groups(1, 2), 31);
        first_ = _mm256_insert_epi8(none, groups(0, 0), 29);
        first_ = _mm256_insert_epi8(first_, groups(0, 1), 30);
        first_ = _mm256_insert_epi8(first_, groups(0, 2), 31);
    }

    __attribute__((target("avx2"))) std::uint64_t placesOf(const char16_t* units) noexcept {
        const Block bits = bitsOf(units + Ahead), before = movedOn<1>(bits_, bits);
        const Halves a = halvesOf(before.a, bits.a), b = halvesOf(before.b, bits.b);
        const Block first = {lookUp(0, a), lookUp(0, b)}, second = {lookUp(1, a), lookUp(1, b)};
        const Block byFirst = movedOn<3>(first_, first), bySecond = movedOn<2>(second_, second);
        const __m256i left =
            _mm256_and_si256(_mm256_and_si256(byFirst.a, bySecond.a), lookUp(3, a));
        const __m256i right =
            _mm256_and_si256(_mm256_and_si256(byFirst.b, bySecond.b), lookUp(3, b));
        bits_ = bits.b;
        first_ = first.b;
        second_ = second.b;
        const __m256i any = _mm256_or_si256(left, right);
        if (_mm256_testz_si256(any, any)) return 0;
        const std::uint64_t ofA = marked(left), ofB = marked(right);
        return (ofA & 0xFFFF) | (ofB & 0xFFFF) << 16 | ofA >> 16 << 32 | ofB >> 16 << 48;
    }

private:
    /// The bits of a unit that reach into halves of pairs.
    static constexpr short InHalf = TripleSieve::Halves - 1;

    /// Bytes of 64 units: the first and third sixteen of them, and the second and fourth. So the bytes
    /// before those of b stand in the same lanes of a.
    struct Block {
        __m256i a, b;
    };
    struct Halves {
        __m256i low, high;
    };

    __attribute__((target("avx2"))) static __m256i table(const std::uint8_t* halves) noexcept {
        return _mm256_broadcastsi128_si256(
            _mm_load_si128(reinterpret_cast<const __m128i*>(halves)));
    }
    __attribute__((target("avx2"))) static std::uint32_t marked(__m256i groups) noexcept {
        const __m256i none = _mm256_cmpeq_epi8(groups, _mm256_setzero_si256());
        return static_cast<std::uint32_t>(~_mm256_movemask_epi8(none));
    }
    __attribute__((target("avx2"))) __m256i lookUp(unsigned place, Halves halves) const noexcept {
        return _mm256_and_si256(_mm256_shuffle_epi8(low_[place], halves.low),
                                _mm256_shuffle_epi8(high_[place], halves.high));
    }
    /// The bytes moved on by some places, behind the last ones of the b before.
    template <int By>
    __attribute__((target("avx2"))) static Block movedOn(__m256i before, Block bytes) noexcept {
        return {
            _mm256_alignr_epi8(bytes.a, _mm256_permute2x128_si256(before, bytes.b, 0x21), 16 - By),
            _mm256_alignr_epi8(bytes.b, bytes.a, 16 - By)};
    }

    __attribute__((target("avx2"))) static Block bitsOf(const char16_t* units) noexcept {
        return {_mm256_packus_epi16(eights(units), eights(units + 8)),
                _mm256_packus_epi16(eights(units + 16), eights(units + 24))};
    }
    /// The lower bits of eight units, and of those 32 behind them.
    __attribute__((target("avx2"))) static __m256i eights(const char16_t* units) noexcept {
        const auto* block = reinterpret_cast<const __m128i*>(units);
        return _mm256_and_si256(
            _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(block)),
                                    _mm_loadu_si128(block + 4), 1),
            _mm256_set1_epi16(InHalf));
    }
    /// A shuffle looks at the four lower bits of an index, if the highest one is not set.
    __attribute__((target("avx2"))) static Halves halvesOf(__m256i first, __m256i second) noexcept {
        return {_mm256_xor_si256(first, _mm256_add_epi8(second, second)),
                _mm256_xor_si256(second, _mm256_slli_epi16(first, 3))};
    }

    const TripleSieve& sieve_;
    __m256i low_[TripleSieve::Places], high_[TripleSieve::Places];
    __m256i bits_, first_, second_;  // of the units before: their bits, and the groups by pairs
};

__attribute__((target("avx2"))) std::size_t nextByHalves(std::u16string_view text, std::size_t base,
                                                         const TripleSieve& sieve,
                                                         std::span<SievedBlock> found,
                                                         unsigned groups) noexcept {
    return sieved(text, base, found, HalvesSieve(sieve, groups));
}

/// 64 places in one step, for machines that have AVX-512 with its shuffles of bytes (VBMI).
class PairsSieve {
public:
    __attribute__((target("avx512bw,avx512vbmi")))
    PairsSieve(const TripleSieve& sieve, unsigned groups) noexcept
        : sieve_(sieve) {
        for (unsigned place = 0; place < TripleSieve::Places; ++place)
            for (unsigned half = 0; half < 2; ++half)
                tables_[place][half] = _mm512_load_si512(sieve.pairs[place] + 64 * half);
        // What is left of the groups here is all that passes.
        for (__m512i& last : tables_[TripleSieve::Places - 1])
            last = _mm512_and_si512(last, _mm512_set1_epi8(static_cast<char>(groups)));
        alignas(64) std::uint8_t counted[64], turned[TripleSieve::Pairs];
        for (unsigned i = 0; i < 64; ++i) counted[i] = static_cast<std::uint8_t>(i);
        const __m512i places = _mm512_load_si512(counted);
        evenBytes_ = _mm512_add_epi8(places, places);
        // The last bytes of those before, and then the first ones of the others.
        byOne_ = _mm512_add_epi8(places, _mm512_set1_epi8(63));
        byTwo_ = _mm512_add_epi8(places, _mm512_set1_epi8(62));
        byThree_ = _mm512_add_epi8(places, _mm512_set1_epi8(61));
        for (unsigned i = 0; i < TripleSieve::Pairs; ++i)
            turned[i] = static_cast<std::uint8_t>(
                TripleSieve::turned(TripleSieve::bitsOf(static_cast<char16_t>(i))));
        for (unsigned half = 0; half < 2; ++half)
            turned_[half] = _mm512_load_si512(turned + 64 * half);
    }

    __attribute__((target("avx512bw,avx512vbmi"))) void begin(const FirstUnits& units) noexcept {
        const auto groups = [&](unsigned place, std::size_t i) {
            return static_cast<char>(groupsAt<groupsOfPair>(sieve_, place, &units[i]));
        };
        constexpr std::uint64_t Last = std::uint64_t{1} << 63, BeforeLast = Last >> 1;
        bits_ = _mm512_set1_epi8(static_cast<char>(TripleSieve::bitsOf(units[3])));
        third_ = _mm512_set1_epi8(groups(2, 2));
        second_ = _mm512_mask_set1_epi8(_mm512_set1_epi8(groups(1, 1)), Last, groups(1, 2));
        first_ = _mm512_mask_set1_epi8(_mm512_set1_epi8(groups(0, 0)), BeforeLast, groups(0, 1));
        first_ = _mm512_mask_set1_epi8(first_, Last, groups(0, 2));
    }

    __attribute__((target("avx512bw,avx512vbmi"))) std::uint64_t placesOf(
        const char16_t* units) noexcept {
        const __m512i bytes =
            _mm512_permutex2var_epi8(_mm512_loadu_si512(units + Ahead), evenBytes_,
                                     _mm512_loadu_si512(units + Ahead + BlockSize / 2));
        const __m512i bits = _mm512_and_si512(bytes, _mm512_set1_epi8(0x5F));
        // Of a byte, an index is the lower seven bits.
        const __m512i pairs =
            _mm512_xor_si512(_mm512_permutex2var_epi8(bits_, byOne_, bits),
                             _mm512_permutex2var_epi8(turned_[0], bytes, turned_[1]));
        const __m512i first = lookUp(0, pairs), second = lookUp(1, pairs), third = lookUp(2, pairs);
        const __m512i some = _mm512_and_si512(_mm512_permutex2var_epi8(first_, byThree_, first),
                                              _mm512_permutex2var_epi8(second_, byTwo_, second));
        const __m512i others =
            _mm512_and_si512(_mm512_permutex2var_epi8(third_, byOne_, third), lookUp(3, pairs));
        bits_ = bits;
        first_ = first;
        second_ = second;
        third_ = third;
        return _mm512_test_epi8_mask(some, others);
    }

private:
    __attribute__((target("avx512bw,avx512vbmi"))) __m512i lookUp(unsigned place,
                                                                  __m512i pairs) const noexcept {
        return _mm512_permutex2var_epi8(tables_[place][0], pairs, tables_[place][1]);
    }

    const TripleSieve& sieve_;
    __m512i tables_[TripleSieve::Places][2], turned_[2];
    __m512i evenBytes_, byOne_, byTwo_, byThree_;
    __m512i bits_, first_, second_,
        third_;  // of the units before: their bits, and the groups by pairs
};

__attribute__((target("avx512bw,avx512vbmi"))) std::size_t nextByPairs(std::u16string_view text,
                                                                       std::size_t base,
                                                                       const TripleSieve& sieve,
                                                                       std::span<SievedBlock> found,
                                                                       unsigned groups) noexcept {
    return sieved(text, base, found, PairsSieve(sieve, groups));
}

#endif

}  // namespace

SieveWay sieveWay() noexcept {
#if defined(__SSE2__)
    if (machine::hasAvx512()) return SieveWay::Pairs;
    if (machine::hasAvx2()) return SieveWay::Halves;
#endif
    return SieveWay::OneByOne;
}

std::size_t nextSieved(std::u16string_view text, std::size_t base, const TripleSieve& sieve,
                       std::span<SievedBlock> found, unsigned groups, SieveWay way) noexcept {
    switch (way) {
#if defined(__SSE2__)
        case SieveWay::Pairs:
            return nextByPairs(text, base, sieve, found, groups);
        case SieveWay::Halves:
            return nextByHalves(text, base, sieve, found, groups);
#endif
        case SieveWay::HalvesOneByOne:
            return sieved(text, base, found, OneByOne<groupsOfHalves>{sieve, groups});
        default:
            return sieved(text, base, found, OneByOne<groupsOfPair>{sieve, groups});
    }
}

std::size_t nextSieved(std::u16string_view text, std::size_t base, const TripleSieve& sieve,
                       std::span<SievedBlock> found, unsigned groups) noexcept {
    return nextSieved(text, base, sieve, found, groups, sieveWay());
}

}  // namespace velmo::detail
