// Sixteen units a step, packed to bytes: what is outside ASCII becomes one of two bytes that no URL
// holds.
#include "url/URLMarks.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/Ascii.h"
#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

/// In the order of the members of URLMarks.
constexpr std::string_view Marks = "/.:?#;=%";
constexpr std::size_t Other = Marks.size(), NumberOfMarks = Marks.size() + 1;

using Words = std::array<std::array<std::uint64_t, 2>, NumberOfMarks>;

URLMarks marksOf(const Words& words) noexcept {
    const auto bits = [&words](std::size_t mark) {
        return UnitBits(words[mark][0], words[mark][1]);
    };
    return {bits(0), bits(1), bits(2), bits(3), bits(4), bits(5), bits(6), bits(7), bits(Other)};
}

constexpr bool isPlain(char16_t unit) {
    constexpr std::string_view Units = "-_~!$&'()*+,";
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
    const __m128i angles = _mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8(2)), _mm_set1_epi8('>'));
    const __m128i quotes = _mm_or_si128(is('"'), is('`'));
    const __m128i holes =
        _mm_or_si128(_mm_or_si128(angles, quotes), _mm_or_si128(bytesInRange(bytes, '[', '^'), is('@')));
    return _mm_or_si128(holes, _mm_cmpeq_epi8(plain, _mm_setzero_si128()));
}

/// Notes the marks of sixteen units but for the first few, which have been looked at already.
void addStep(Words& words, const char16_t* units, std::uint32_t position, std::uint32_t skipped) {
    const __m128i bytes =
        _mm_packus_epi16(scan::loadBlock(units), scan::loadBlock(units + scan::BlockUnits));
    const auto add = [&](std::size_t mark, __m128i found) {
        const std::uint64_t bits = static_cast<std::uint32_t>(_mm_movemask_epi8(found)) >> skipped;
        words[mark][position / 64] |= bits << position % 64;
    };
    for (std::size_t mark = 0; mark < Marks.size(); ++mark)
        add(mark, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(Marks[mark])));
    add(Other, otherBytes(bytes));
}

#endif

}  // namespace

URLMarks urlMarksOneByOne(std::u16string_view text) noexcept {
    Words words{};
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t found =
            text[i] < 128 ? Marks.find(static_cast<char>(text[i])) : Marks.npos;
        if (found == Marks.npos && isPlain(text[i])) continue;
        words[std::min(found, Other)][i / 64] |= std::uint64_t{1} << i % 64;
    }
    return marksOf(words);
}

URLMarks urlMarksOf(std::u16string_view text) noexcept {
#if defined(__SSE2__)
    const auto length = static_cast<std::uint32_t>(text.size());
    Words words{};
    std::uint32_t i = 0;
    for (; length - i >= StepUnits; i += StepUnits) addStep(words, text.data() + i, i, 0);
    if (i == length) return marksOf(words);
    if (length > StepUnits) {
        addStep(words, text.data() + length - StepUnits, i, StepUnits - (length - i));
        return marksOf(words);
    }
    char16_t padded[StepUnits];  // with a unit that is no mark
    std::fill_n(padded, StepUnits, u'a');
    text.copy(padded, length);
    addStep(words, padded, 0, 0);
    return marksOf(words);
#else
    return urlMarksOneByOne(text);
#endif
}

}  // namespace velmo::detail
