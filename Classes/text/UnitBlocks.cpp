#include "text/UnitBlocks.h"

#include <algorithm>
#include <bit>

#include "text/MemberScan.h"
#include "text/UnitScan.h"
#include "text/WideUnits.h"

namespace velmo::detail {
namespace {

/// Calls put(units, bytes) for each block, which gives its members. Becomes part of its caller,
/// which may be made for other machines than it is.
template <class Put>
__attribute__((always_inline)) inline void putEach(std::u16string_view text,
                                                   std::span<const std::size_t> bases,
                                                   UnitBlocks blocks, Put put) noexcept {
    for (std::size_t i = 0; i < bases.size(); ++i) {
        const std::size_t rest = text.size() - bases[i];
        const char16_t* units = text.data() + bases[i];
        if (rest >= UnitsInBlock) [[likely]] {
            blocks.members[i] = put(units, blocks.bytes + i * UnitsInBlock);
            continue;
        }
        char16_t last[UnitsInBlock] = {};
        std::copy_n(units, rest, last);
        blocks.members[i] =
            put(last, blocks.bytes + i * UnitsInBlock) & ((std::uint64_t{1} << rest) - 1);
    }
}

#if defined(__SSE2__)

__attribute__((target("avx2"))) void putWide(std::u16string_view text,
                                             std::span<const std::size_t> bases,
                                             const CharacterSetRep& set, Case letterCase,
                                             UnitBlocks blocks) noexcept {
    putEach(
        text, bases, blocks,
        [&](const char16_t* units, std::uint8_t* __restrict bytes) __attribute__((target("avx2"))) {
            for (std::size_t i = 0; i < UnitsInBlock; ++i)
                bytes[i] = byteOfUnit(units[i], letterCase);
            return membersOf(units, UnitsInBlock, set);
        });
}

/// What is looked up for 64 units in one step, for machines that have AVX-512.
class WideBlock {
public:
    __attribute__((target("avx512bw,avx512vbmi")))
    WideBlock(const CharacterSetRep& set, Case letterCase) noexcept
        : set_(set), folds_(letterCase == Case::Insensitive) {
        std::uint64_t ofAscii[2];
        std::copy_n(set.bits, sizeof ofAscii, reinterpret_cast<std::uint8_t*>(ofAscii));
        low_ = _mm512_movm_epi8(ofAscii[0]);
        high_ = _mm512_movm_epi8(ofAscii[1]);
        alignas(64) std::uint8_t even[64];
        for (unsigned i = 0; i < 64; ++i) even[i] = static_cast<std::uint8_t>(2 * i);
        evenBytes_ = _mm512_load_si512(even);
        change_ = _mm512_set1_epi8(folds_ ? 'a' - 'A' : 0);
    }

    __attribute__((target("avx512bw,avx512vbmi"))) std::uint64_t put(
        const char16_t* units, std::uint8_t* bytes) const noexcept {
        const __m512i a = _mm512_loadu_si512(units), b = _mm512_loadu_si512(units + 32);
        const __m512i outside = _mm512_set1_epi16(static_cast<short>(0xFF80));
        const std::uint64_t others = _mm512_test_epi16_mask(a, outside) |
                                     static_cast<std::uint64_t>(_mm512_test_epi16_mask(b, outside))
                                         << 32;
        const __m512i own = _mm512_permutex2var_epi8(a, evenBytes_, b);
        const std::uint64_t lower = _mm512_cmplt_epu8_mask(
            _mm512_sub_epi8(own, _mm512_set1_epi8('a')), _mm512_set1_epi8(26));
        const __m512i folded = _mm512_mask_sub_epi8(own, lower, own, change_);
        const __m512i members = _mm512_permutex2var_epi8(low_, own, high_);
        const std::uint64_t ascii = _mm512_test_epi8_mask(members, members) & ~others;
        if (others) return ascii | putOthers(units, a, b, others, folded, bytes);
        _mm512_storeu_si512(bytes, folded);
        return ascii;
    }

private:
    /// So few units outside ASCII are looked up one by one.
    static constexpr int FewOthers = 4;

    __attribute__((target("avx512bw,avx512vbmi,popcnt"))) std::uint64_t putOthers(
        const char16_t* units, __m512i a, __m512i b, std::uint64_t others, __m512i folded,
        std::uint8_t* bytes) const noexcept {
        __m512i all = _mm512_mask_set1_epi8(folded, others, static_cast<char>(OtherByte));
        if (folds_) all = withLetter(a, b, LongS, 'S', withLetter(a, b, DotlessI, 'I', all));
        _mm512_storeu_si512(bytes, all);
        if (std::popcount(others) > FewOthers) return membersOf(units, UnitsInBlock, set_);
        std::uint64_t members = 0;
        for (; others; others &= others - 1) {
            const auto i = static_cast<unsigned>(std::countr_zero(others));
            members |= static_cast<std::uint64_t>(set_.contains(units[i])) << i;
        }
        return members;
    }

    /// With a letter where a unit outside ASCII stands.
    __attribute__((target("avx512bw,avx512vbmi"))) static __m512i withLetter(
        __m512i a, __m512i b, char16_t unit, char letter, __m512i bytes) noexcept {
        const __m512i wanted = _mm512_set1_epi16(static_cast<short>(unit));
        const std::uint64_t places = _mm512_cmpeq_epi16_mask(a, wanted) |
                                     static_cast<std::uint64_t>(_mm512_cmpeq_epi16_mask(b, wanted))
                                         << 32;
        return _mm512_mask_set1_epi8(bytes, places, letter);
    }

    const CharacterSetRep& set_;
    const bool folds_;
    __m512i low_, high_;  // the members in ASCII
    __m512i evenBytes_, change_;
};

__attribute__((target("avx512bw,avx512vbmi"))) void putWidest(std::u16string_view text,
                                                              std::span<const std::size_t> bases,
                                                              const CharacterSetRep& set,
                                                              Case letterCase,
                                                              UnitBlocks blocks) noexcept {
    const WideBlock block(set, letterCase);
    putEach(
        text, bases, blocks,
        [&](const char16_t* units, std::uint8_t* bytes)
            __attribute__((target("avx512bw,avx512vbmi"))) { return block.put(units, bytes); });
}

#endif

}  // namespace

void putUnitBlocksOneByOne(std::u16string_view text, std::span<const std::size_t> bases,
                           const CharacterSetRep& set, Case letterCase,
                           UnitBlocks blocks) noexcept {
    putEach(text, bases, blocks, [&](const char16_t* units, std::uint8_t* bytes) {
        for (std::size_t i = 0; i < UnitsInBlock; ++i) bytes[i] = byteOfUnit(units[i], letterCase);
        return membersOneByOne(units, UnitsInBlock, set);
    });
}

void putUnitBlocks(std::u16string_view text, std::span<const std::size_t> bases,
                   const CharacterSetRep& set, Case letterCase, UnitBlocks blocks) noexcept {
#if defined(__SSE2__)
    if (scan::hasAvx512()) return putWidest(text, bases, set, letterCase, blocks);
    if (scan::hasAvx2()) return putWide(text, bases, set, letterCase, blocks);
#endif
    putUnitBlocksOneByOne(text, bases, set, letterCase, blocks);
}

}  // namespace velmo::detail
