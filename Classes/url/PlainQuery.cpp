// The first place of a name counts, as everywhere (see Parameters.h). Here it is in the first of the
// parameters kept that has it: no removal brings two of them together to form a name, as a
// separator stays between them.
#include "url/PlainQuery.h"

#include <algorithm>
#include <bit>

#include "platform/Ascii.h"
#include "url/RemovedParameters.h"

namespace velmo::detail {
namespace {

/// Whether a name, with its =, ends with the text. Names for any case are in capitals.
bool isAtEnd(std::u16string_view text, const ParameterName& name) {
    const std::size_t length = name.text.size();
    if (text.size() < length) return false;
    const char16_t* const units = text.data() + text.size() - length;
    // Its last unit is the =. From the start: names that are sought together end alike.
    for (std::size_t i = 0; i + 1 < length; ++i)
        if ((name.anyCase ? ascii::toUpper(units[i]) : units[i]) != name.text[i]) return false;
    return true;
}

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
        for (; candidates; candidates &= candidates - 1) {
            const auto name = static_cast<std::size_t>(std::countr_zero(candidates));
            if (!isAtEnd(text_.substr(0, i + 1), RemovedNames[name])) continue;
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
