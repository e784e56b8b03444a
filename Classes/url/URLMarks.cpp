// Sixteen units a step, or 64 where AVX-512 is there, packed to bytes: what is outside ASCII becomes a
// byte that no URL holds.
#include "url/URLMarks.h"

#include <algorithm>
#include <array>

#include "platform/Ascii.h"
#include "platform/Machine.h"
#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

using Word = std::array<std::uint64_t, 2>;

UnitBits bitsOf(const Word& word) noexcept { return UnitBits(word[0], word[1]); }

/// What is looked for, in the order of the members of URLMarks; "other" comes behind.
struct OfURLs {
    static constexpr std::string_view Marks = "/.:?#;=&%";
    static constexpr bool HasOther = true;
    using Words = std::array<Word, Marks.size() + 1>;

    static URLMarks marksOf(const Words& w) noexcept {
        return {bitsOf(w[0]), bitsOf(w[1]), bitsOf(w[2]), bitsOf(w[3]), bitsOf(w[4]),
                bitsOf(w[5]), bitsOf(w[6]), bitsOf(w[7]), bitsOf(w[8]), bitsOf(w[9])};
    }
};
/// In the order of the members of ParameterMarks.
struct OfParameters {
    static constexpr std::string_view Marks = "=&;?%";
    static constexpr bool HasOther = false;
    using Words = std::array<Word, Marks.size()>;

    static ParameterMarks marksOf(const Words& w) noexcept {
        return {bitsOf(w[0]), bitsOf(w[1]), bitsOf(w[2]), bitsOf(w[3]), bitsOf(w[4])};
    }
};

constexpr bool isPlain(char16_t unit) {
    constexpr std::string_view Units = "-_~!$'()*+,";
    return ascii::isLetterOrDigit(unit) ||
           (unit < 128 && Units.find(static_cast<char>(unit)) != Units.npos);
}

#if defined(__SSE2__)

constexpr std::uint32_t StepUnits = 16;

/// Marks the bytes of [low, high].
__m128i bytesInRange(__m128i bytes, char low, char high) {
    const __m128i offset = _mm_sub_epi8(bytes, _mm_set1_epi8(low));
    const __m128i beyond = _mm_subs_epu8(offset, _mm_set1_epi8(static_cast<char>(high - low)));
    return _mm_cmpeq_epi8(beyond, _mm_setzero_si128());
}

/// Marks the bytes of "other", by what lies between the first and the last plain unit.
__m128i otherBytes(__m128i bytes) {
    const auto is = [bytes](char byte) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(byte)); };
    const __m128i plain = _mm_or_si128(bytesInRange(bytes, '!', 'z'), is('~'));
    const __m128i angles =
        _mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8(2)), _mm_set1_epi8('>'));
    const __m128i quotes = _mm_or_si128(is('"'), is('`'));
    const __m128i holes = _mm_or_si128(_mm_or_si128(angles, quotes),
                                       _mm_or_si128(bytesInRange(bytes, '[', '^'), is('@')));
    return _mm_or_si128(holes, _mm_cmpeq_epi8(plain, _mm_setzero_si128()));
}

/// Notes the marks of sixteen units but for the first few, which have been looked at already.
template <class Sought>
void addStep(typename Sought::Words& words, const char16_t* units, std::uint32_t position,
             std::uint32_t skipped) {
    const __m128i bytes =
        _mm_packus_epi16(scan::loadBlock(units), scan::loadBlock(units + scan::BlockUnits));
    const auto add = [&](std::size_t mark, __m128i found) {
        const std::uint64_t bits = static_cast<std::uint32_t>(_mm_movemask_epi8(found)) >> skipped;
        words[mark][position / 64] |= bits << position % 64;
    };
    for (std::size_t mark = 0; mark < Sought::Marks.size(); ++mark)
        add(mark, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(Sought::Marks[mark])));
    if constexpr (Sought::HasOther) add(Sought::Marks.size(), otherBytes(bytes));
}

template <class Sought>
auto find(std::u16string_view text) noexcept {
    const auto length = static_cast<std::uint32_t>(text.size());
    typename Sought::Words words{};
    std::uint32_t i = 0;
    for (; length - i >= StepUnits; i += StepUnits) addStep<Sought>(words, text.data() + i, i, 0);
    if (i < length && length > StepUnits) {
        addStep<Sought>(words, text.data() + length - StepUnits, i, StepUnits - (length - i));
    } else if (i < length) {
        char16_t padded[StepUnits];  // with a unit that is no mark
        std::fill_n(padded, StepUnits, u'a');
        text.copy(padded, length);
        addStep<Sought>(words, padded, 0, 0);
    }
    return Sought::marksOf(words);
}

/// A byte for each ASCII unit that is an "other" one.
constexpr auto OtherUnits = [] {
    std::array<std::uint8_t, 128> units{};
    for (char16_t unit = 0; unit < 128; ++unit)
        units[unit] =
            !isPlain(unit) && OfURLs::Marks.find(static_cast<char>(unit)) == std::string_view::npos;
    return units;
}();

// The same for machines with AVX-512: 64 units a step, and none is read twice.

/// Up to 64 units as bytes, with zeros behind them.
__attribute__((target("avx512bw,avx512vbmi"))) inline __m512i wideBytes(
    const char16_t* units, std::uint64_t there) noexcept {
    const __m256i low = _mm512_maskz_cvtusepi16_epi8(
        ~__mmask32{0}, _mm512_maskz_loadu_epi16(static_cast<__mmask32>(there), units));
    const __m512i bytes = _mm512_maskz_inserti64x4(0xFF, _mm512_setzero_si512(), low, 0);
    if (there >> 32 == 0) return bytes;
    const __m256i high = _mm512_maskz_cvtusepi16_epi8(
        ~__mmask32{0}, _mm512_maskz_loadu_epi16(static_cast<__mmask32>(there >> 32), units + 32));
    return _mm512_maskz_inserti64x4(0xFF, bytes, high, 1);
}

__attribute__((target("avx512bw,avx512vbmi"))) inline std::uint64_t wideOthers(
    __m512i bytes, std::uint64_t there) noexcept {
    const __m512i others = _mm512_permutex2var_epi8(_mm512_loadu_si512(OtherUnits.data()), bytes,
                                                    _mm512_loadu_si512(OtherUnits.data() + 64));
    return there & (_mm512_test_epi8_mask(others, others) | _mm512_movepi8_mask(bytes));
}

/// Of a text of 65 to 128 units, or of up to 64. The loops are known to the compiler as a whole, so
/// that the words go to where the marks are.
template <class Sought, bool IsLong>
__attribute__((target("avx512bw,avx512vbmi"))) auto findWide(std::u16string_view text) noexcept {
    constexpr std::size_t Step = 64;
    const auto thereOf = [](std::size_t count) {
        return count ? ~std::uint64_t{0} >> (Step - count) : 0;
    };
    const std::uint64_t there = thereOf(IsLong ? Step : text.size());
    const std::uint64_t thereBehind = thereOf(IsLong ? text.size() - Step : 0);
    const __m512i bytes = wideBytes(text.data(), there);
    const __m512i behind = IsLong ? wideBytes(text.data() + Step, thereBehind) : bytes;
    typename Sought::Words words;
    for (std::size_t mark = 0; mark < Sought::Marks.size(); ++mark) {
        const __m512i sought = _mm512_set1_epi8(Sought::Marks[mark]);
        words[mark] = {_mm512_cmpeq_epi8_mask(bytes, sought),
                       IsLong ? _mm512_cmpeq_epi8_mask(behind, sought) : 0};
    }
    if constexpr (Sought::HasOther)
        words[Sought::Marks.size()] = {wideOthers(bytes, there),
                                       IsLong ? wideOthers(behind, thereBehind) : 0};
    return Sought::marksOf(words);
}
template <class Sought>
auto findWide(std::u16string_view text) noexcept {
    return text.size() > 64 ? findWide<Sought, true>(text) : findWide<Sought, false>(text);
}

#endif

template <class Sought>
auto findOneByOne(std::u16string_view text) noexcept {
    typename Sought::Words words{};
    for (std::size_t i = 0; i < text.size(); ++i) {
        std::size_t mark = Sought::Marks.size();
        if (text[i] < 128) mark = std::min(mark, Sought::Marks.find(static_cast<char>(text[i])));
        const bool isMark = mark < Sought::Marks.size() || (Sought::HasOther && !isPlain(text[i]));
        if (isMark) words[mark][i / 64] |= std::uint64_t{1} << i % 64;
    }
    return Sought::marksOf(words);
}

}  // namespace

URLMarks urlMarksOneByOne(std::u16string_view text) noexcept { return findOneByOne<OfURLs>(text); }
ParameterMarks parameterMarksOneByOne(std::u16string_view text) noexcept {
    return findOneByOne<OfParameters>(text);
}

#if defined(__SSE2__)
URLMarks urlMarksByBlocks(std::u16string_view text) noexcept { return find<OfURLs>(text); }
ParameterMarks parameterMarksByBlocks(std::u16string_view text) noexcept {
    return find<OfParameters>(text);
}
URLMarks urlMarksOf(std::u16string_view text) noexcept {
    return machine::hasAvx512() ? findWide<OfURLs>(text) : find<OfURLs>(text);
}
ParameterMarks parameterMarksOf(std::u16string_view text) noexcept {
    return machine::hasAvx512() ? findWide<OfParameters>(text) : find<OfParameters>(text);
}
#else
URLMarks urlMarksByBlocks(std::u16string_view text) noexcept { return urlMarksOneByOne(text); }
ParameterMarks parameterMarksByBlocks(std::u16string_view text) noexcept {
    return parameterMarksOneByOne(text);
}
URLMarks urlMarksOf(std::u16string_view text) noexcept { return urlMarksOneByOne(text); }
ParameterMarks parameterMarksOf(std::u16string_view text) noexcept {
    return parameterMarksOneByOne(text);
}
#endif

}  // namespace velmo::detail
