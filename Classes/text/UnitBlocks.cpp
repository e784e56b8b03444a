#include "text/UnitBlocks.h"

#include <algorithm>
#include <bit>

#include "platform/Machine.h"
#include "text/MemberScan.h"
#include "text/UnitScan.h"

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
        std::uint8_t* bytes = blocks.bytes + i * UnitsInBlock;
        blocks.members[i] = put(last, bytes) & ((std::uint64_t{1} << rest) - 1);
        std::fill(bytes + rest, bytes + UnitsInBlock, std::uint8_t{0});
    }
}

#if defined(__SSE2__)

/// So few units outside ASCII are looked up one by one.
constexpr int FewOthers = 10;

/// The members among the others, which are by bits those outside ASCII.
__attribute__((always_inline)) inline std::uint64_t membersOfOthers(
    const char16_t* units, std::uint64_t others, const CharacterSetRep& set) noexcept {
    if (std::popcount(others) > FewOthers) return membersOf(units, UnitsInBlock, set) & others;
    std::uint64_t members = 0;
    for (; others; others &= others - 1) {
        const auto i = static_cast<unsigned>(std::countr_zero(others));
        members |= static_cast<std::uint64_t>(set.contains(units[i])) << i;
    }
    return members;
}

/// What is looked up for 64 units in two steps, for machines that have AVX2.
class HalvedBlock {
public:
    __attribute__((target("avx2")))
    HalvedBlock(const CharacterSetRep& set, Case letterCase) noexcept
        : set_(set), folds_(letterCase == Case::Insensitive) {
        ascii_ = _mm256_broadcastsi128_si256(
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(set.bits)));
        bits_ = _mm256_broadcastsi128_si256(
            _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128));
        change_ = _mm256_set1_epi8(folds_ ? 'a' - 'A' : 0);
    }

    __attribute__((target("avx2,popcnt"))) std::uint64_t put(const char16_t* units,
                                                             std::uint8_t* bytes) const noexcept {
        const Half left = putHalf(units, bytes), right = putHalf(units + 32, bytes + 32);
        const std::uint64_t members = left.ascii | std::uint64_t{right.ascii} << 32;
        const std::uint64_t others = left.others | std::uint64_t{right.others} << 32;
        if (!others) return members;
        const std::uint64_t own = membersOfOthers(units, others, set_);
        putOthers(units, static_cast<std::uint32_t>(own), bytes);
        putOthers(units + 32, static_cast<std::uint32_t>(own >> 32), bytes + 32);
        return members | own;
    }

private:
    /// Of 32 units the members in ASCII, and those outside it.
    struct Half {
        std::uint32_t ascii, others;
    };

    __attribute__((target("avx2"))) Half putHalf(const char16_t* units,
                                                 std::uint8_t* bytes) const noexcept {
        const __m256i most = _mm256_set1_epi16(0xFF);
        const __m256i own = _mm256_packus_epi16(_mm256_min_epu16(eights(units), most),
                                                _mm256_min_epu16(eights(units + 8), most));
        const __m256i lower = _mm256_and_si256(_mm256_cmpgt_epi8(own, _mm256_set1_epi8('a' - 1)),
                                               _mm256_cmpgt_epi8(_mm256_set1_epi8('z' + 1), own));
        const __m256i folded = _mm256_sub_epi8(own, _mm256_and_si256(lower, change_));
        const __m256i row = _mm256_shuffle_epi8(
            ascii_, _mm256_and_si256(_mm256_srli_epi16(own, 3), _mm256_set1_epi8(0x0F)));
        // An index with the highest bit gives none: so those outside have no bit.
        const __m256i bit =
            _mm256_shuffle_epi8(bits_, _mm256_and_si256(own, _mm256_set1_epi8(-0x79)));
        const __m256i isNone =
            _mm256_cmpeq_epi8(_mm256_and_si256(row, bit), _mm256_setzero_si256());
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(bytes), _mm256_andnot_si256(isNone, folded));
        return {~maskOf(isNone), maskOf(own)};
    }

    /// The members outside ASCII, among which are letters that are the same as some of ASCII.
    __attribute__((target("avx2"))) void putOthers(const char16_t* units, std::uint32_t members,
                                                   std::uint8_t* bytes) const noexcept {
        __m256i all = _mm256_set1_epi8(static_cast<char>(OtherByte));
        if (folds_) all = withLetter(units, LongS, 'S', withLetter(units, DotlessI, 'I', all));
        const __m256i byteOfBit =
            _mm256_setr_epi64x(0, 0x0101010101010101, 0x0202020202020202, 0x0303030303030303);
        const __m256i spread =
            _mm256_shuffle_epi8(_mm256_set1_epi32(static_cast<int>(members)), byteOfBit);
        const __m256i isMember = _mm256_cmpeq_epi8(_mm256_and_si256(spread, bits_), bits_);
        auto* const place = reinterpret_cast<__m256i*>(bytes);
        _mm256_storeu_si256(
            place, _mm256_or_si256(_mm256_loadu_si256(place), _mm256_and_si256(all, isMember)));
    }

    /// With a letter where a unit outside ASCII stands.
    __attribute__((target("avx2"))) static __m256i withLetter(const char16_t* units, char16_t unit,
                                                              char letter, __m256i bytes) noexcept {
        const __m256i wanted = _mm256_set1_epi16(static_cast<short>(unit));
        const __m256i is = _mm256_packs_epi16(_mm256_cmpeq_epi16(eights(units), wanted),
                                              _mm256_cmpeq_epi16(eights(units + 8), wanted));
        return _mm256_blendv_epi8(bytes, _mm256_set1_epi8(letter), is);
    }

    /// The eight units from there, and those sixteen behind them: packing keeps the 128-bit lanes
    /// apart, so this brings 32 units in order.
    __attribute__((target("avx2"))) static __m256i eights(const char16_t* units) noexcept {
        const auto eight = [&](std::size_t i) __attribute__((target("avx2"))) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(units + i));
        };
        return _mm256_inserti128_si256(_mm256_castsi128_si256(eight(0)), eight(16), 1);
    }
    __attribute__((target("avx2"))) static std::uint32_t maskOf(__m256i marks) noexcept {
        return static_cast<std::uint32_t>(_mm256_movemask_epi8(marks));
    }

    const CharacterSetRep& set_;
    const bool folds_;
    __m256i ascii_, bits_;  // the members in ASCII, and the bits of a byte
    __m256i change_;
};

__attribute__((target("avx2,popcnt"))) void putWide(std::u16string_view text,
                                                    std::span<const std::size_t> bases,
                                                    const CharacterSetRep& set, Case letterCase,
                                                    UnitBlocks blocks) noexcept {
    const HalvedBlock block(set, letterCase);
    putEach(
        text, bases, blocks,
        [&](const char16_t* units, std::uint8_t* bytes)
            __attribute__((target("avx2,popcnt"))) { return block.put(units, bytes); });
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
        if (others) return putOthers(units, a, b, others, ascii, folded, bytes);
        _mm512_storeu_si512(bytes, _mm512_maskz_mov_epi8(ascii, folded));
        return ascii;
    }

private:
    __attribute__((target("avx512bw,avx512vbmi,popcnt"))) std::uint64_t putOthers(
        const char16_t* units, __m512i a, __m512i b, std::uint64_t others, std::uint64_t ascii,
        __m512i folded, std::uint8_t* bytes) const noexcept {
        __m512i all = _mm512_mask_set1_epi8(folded, others, static_cast<char>(OtherByte));
        if (folds_) all = withLetter(a, b, LongS, 'S', withLetter(a, b, DotlessI, 'I', all));
        const std::uint64_t members = ascii | membersOfOthers(units, others, set_);
        _mm512_storeu_si512(bytes, _mm512_maskz_mov_epi8(members, all));
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
        const std::uint64_t members = membersOneByOne(units, UnitsInBlock, set);
        for (std::size_t i = 0; i < UnitsInBlock; ++i)
            bytes[i] = members >> i & 1 ? byteOfUnit(units[i], letterCase) : std::uint8_t{0};
        return members;
    });
}

void putUnitBlocks(std::u16string_view text, std::span<const std::size_t> bases,
                   const CharacterSetRep& set, Case letterCase, UnitBlocks blocks) noexcept {
#if defined(__SSE2__)
    if (machine::hasAvx512()) return putWidest(text, bases, set, letterCase, blocks);
    if (machine::hasAvx2()) return putWide(text, bases, set, letterCase, blocks);
#endif
    putUnitBlocksOneByOne(text, bases, set, letterCase, blocks);
}

}  // namespace velmo::detail
