// The first place of a name counts, as everywhere (see Parameters.h). Here it is in the first of the
// parameters kept that has it: no removal brings two of them together to form a name, as a
// separator stays between them.
#include "url/PlainQuery.h"

#include <algorithm>
#include <bit>

#include "platform/Ascii.h"
#include "text/UnitScan.h"
#include "url/RemovedParameters.h"

namespace velmo::detail {
namespace {

#if defined(__SSE2__)

constexpr std::size_t StepUnits = 16;

/// A name without its = as bytes, at the end of as many as are looked at in one step, and which of
/// these are its own.
struct NameBytes {
    alignas(StepUnits) std::array<char, StepUnits> bytes{};
    int own = 0;
};
constexpr auto Names = [] {
    std::array<NameBytes, NumberOfRemovedParameters> names{};
    for (std::size_t n = 0; n < names.size(); ++n) {
        const std::u16string_view text = RemovedNames[n].text;
        for (std::size_t i = 0, at = StepUnits + 1 - text.size(); at < StepUnits; ++i, ++at) {
            names[n].bytes[at] = static_cast<char>(text[i]);
            names[n].own |= 1 << at;
        }
    }
    return names;
}();

/// What stands in front of a =: compared with all of a name at once.
class UnitsBefore {
public:
    UnitsBefore(std::u16string_view text, std::size_t equals) {
        char16_t padded[StepUnits] = {};  // with a unit that no name has
        if (equals < StepUnits) text.copy(padded + StepUnits - equals, equals);
        const char16_t* const units =
            equals < StepUnits ? padded : text.data() + equals - StepUnits;
        const __m128i bytes =
            _mm_packus_epi16(scan::loadBlock(units), scan::loadBlock(units + scan::BlockUnits));
        const __m128i isLower = _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8('a' - 1)),
                                              _mm_cmplt_epi8(bytes, _mm_set1_epi8('z' + 1)));
        units_[false] = bytes;
        units_[true] = _mm_xor_si128(bytes, _mm_and_si128(isLower, _mm_set1_epi8(0x20)));
    }

    bool endWith(std::size_t name) const {
        const __m128i known =
            _mm_load_si128(reinterpret_cast<const __m128i*>(Names[name].bytes.data()));
        const int same =
            _mm_movemask_epi8(_mm_cmpeq_epi8(units_[RemovedNames[name].anyCase], known));
        return (Names[name].own & ~same) == 0;
    }

private:
    __m128i units_[2];  ///< as they stand, and in capitals
};

#else

class UnitsBefore {
public:
    UnitsBefore(std::u16string_view text, std::size_t equals) : units_(text.substr(0, equals)) {}

    bool endWith(std::size_t name) const {
        const ParameterName& known = RemovedNames[name];
        const std::u16string_view text = known.text.substr(0, known.text.size() - 1);
        return units_.size() >= text.size() &&
               std::equal(text.rbegin(), text.rend(), units_.rbegin(), [&](char16_t a, char16_t b) {
                   return a == (known.anyCase ? ascii::toUpper(b) : b);
               });
    }

private:
    std::u16string_view units_;
};

#endif

}  // namespace

PlainQueryMarks::PlainQueryMarks(const URLMarks& marks, std::size_t length) noexcept
    : size(static_cast<std::uint32_t>(length)), query(marks.question.first(0, size)) {
    const UnitBits all = UnitBits::below(size), before = UnitBits::below(query);
    if ((marks.semicolon & all) || (marks.equals & before)) return;
    arePlain = query == size;
    if (arePlain) return;
    const UnitBits behind = all.without(UnitBits::below(query + 1));
    equals = marks.equals & behind;
    ampersands = marks.ampersand & behind;
    const UnitBits separators = ampersands | (marks.question & all);
    arePlain =
        !(marks.question & behind) && !separators.before(ampersands) && !separators[size - 1];
}

PlainQuery::PlainQuery(std::u16string_view text, const PlainQueryMarks& marks) noexcept
    : text_(text) {
    cut(marks);
    for (std::size_t i = 0; i < count_; ++i) find(marks.equals, i);
    gather();
}

void PlainQuery::cut(const PlainQueryMarks& marks) noexcept {
    for (std::uint32_t start = marks.query + 1;;) {
        starts_[count_] = static_cast<std::uint8_t>(start);
        ++count_;
        const std::uint32_t end = marks.ampersands.first(start, marks.size);
        if (end == marks.size) break;
        start = end + 1;
    }
    starts_[count_] = static_cast<std::uint8_t>(marks.size + 1);
    kept_ = ~Parts{0} >> (MostParts - count_);
}

/// Notes the names that stand in a parameter.
void PlainQuery::find(const UnitBits& equals, std::size_t part) noexcept {
    names_[part] = whole_[part] = 0;
    const std::uint32_t start = starts_[part];
    const auto end = static_cast<std::uint32_t>(endOfPart(part));
    for (std::uint32_t i = equals.first(start, end); i < end; i = equals.first(i + 1, end)) {
        // In front of the query there is a unit at least, the ?.
        const char16_t third = i < 3 ? u'\0' : text_[i - 3];
        ParameterMask candidates = RemovedList.candidates(text_[i - 1], third);
        if (!candidates) continue;
        const UnitsBefore units(text_, i);
        for (; candidates; candidates &= candidates - 1) {
            const auto name = static_cast<std::size_t>(std::countr_zero(candidates));
            if (!units.endWith(name)) continue;
            names_[part] |= bitOf(name);
            if (i + 1 - RemovedNames[name].text.size() == start) whole_[part] |= bitOf(name);
        }
    }
}

/// Notes what is left of the names.
void PlainQuery::gather() noexcept {
    present_ = parameters_ = 0;
    for (Parts rest = kept_; rest; rest &= rest - 1) {
        const std::size_t part = lowest(rest);
        // The first one has no & in front of it any more.
        const ParameterMask names =
            rest == kept_ ? names_[part] & ~bitOf(PageOfTopic) : names_[part];
        parameters_ |= whole_[part] & ~present_;
        present_ |= names;
    }
}

std::size_t PlainQuery::partOf(std::size_t name) const noexcept {
    Parts rest = kept_;
    while (!(whole_[lowest(rest)] & bitOf(name))) rest &= rest - 1;
    return lowest(rest);
}

void PlainQuery::remove(std::size_t name) noexcept {
    kept_ &= ~(Parts{1} << partOf(name));
    gather();
}

void PlainQuery::removeAll() noexcept {
    kept_ = 0;
    gather();
}

std::size_t PlainQuery::lowest(Parts parts) noexcept {
    return static_cast<std::size_t>(std::countr_zero(parts));
}

char16_t* PlainQuery::write(char16_t* to) const noexcept {
    to = std::ranges::copy(page(), to).out;
    char16_t separator = u'?';
    for (Parts rest = kept_; rest; rest &= rest - 1) {
        *to++ = separator;
        to = std::ranges::copy(part(lowest(rest)), to).out;
        separator = u'&';
    }
    return to;
}

}  // namespace velmo::detail
