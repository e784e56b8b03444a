// Parameters are found by their =: a unit that is rare beside the letters of names, and the last
// one of each name. Where a name was found is kept, and put right after a removal, so that one
// walk over the text is as a rule enough for all of them.
#include "url/Parameters.h"

#include <algorithm>
#include <bit>

#include "text/Keyword.h"

namespace velmo::detail {
namespace {

bool isUnit(char16_t unit, const ParameterName& name, std::size_t i) {
    return (name.anyCase ? keyword::upper(unit) : unit) == name.text[i];
}

bool goesOn(const GapText& text, const ParameterName& name, std::size_t position) {
    const std::size_t length = name.text.size();
    const char16_t* const units = text.range(position, length);
    for (std::size_t i = 1; i < length; ++i)
        if (!isUnit(units ? units[i] : text[position + i], name, i)) return false;
    return true;
}

/// Compares from the start: names that are sought together mostly end alike.
inline bool standsAt(const GapText& text, const ParameterName& name, std::size_t position) {
    return text.size() - position >= name.text.size() && isUnit(text[position], name, 0) &&
           goesOn(text, name, position);
}

/// Calls the work for the number of each bit.
template <class Work>
void eachBit(ParameterMask mask, Work work) {
    for (; mask; mask &= mask - 1) work(static_cast<std::size_t>(std::countr_zero(mask)));
}

}  // namespace

std::size_t findName(const GapText& text, const ParameterName& name, std::size_t from) {
    const std::size_t length = name.text.size();
    if (from + length > text.size()) return NotThere;
    // Its = is the rarest of its units.
    if (name.text.ends_with(u'=')) {
        std::size_t i = text.find<u'='>(from + length - 1);
        while (i < text.size() && !standsAt(text, name, i + 1 - length)) i = text.find<u'='>(i + 1);
        return i < text.size() ? i + 1 - length : NotThere;
    }
    for (std::size_t i = from; i + name.text.size() <= text.size(); ++i)
        if (standsAt(text, name, i)) return i;
    return NotThere;
}

std::size_t endOfParameter(const GapText& text, std::size_t separator) {
    return text[separator] == u';' ? text.find<u'&', u';', u'?'>(separator + 1)
                                   : text.find<u'&', u'?'>(separator + 1);
}

std::size_t removeParameter(GapText& text, std::size_t separator) {
    const std::size_t end = endOfParameter(text, separator);
    if (end + 1 < text.size()) {
        text.erase(separator + 1, end + 1);
        return separator + 1;
    }
    text.truncate(separator);
    return separator;
}

ParameterFinder::ParameterFinder(GapText& text, const ParameterList& list, std::size_t start)
    : text_(text), list_(list) {
    locateFrom(start, ~ParameterMask{0});
}

/// Looks for the first place of each name wanted; none of them stands in front of the start.
void ParameterFinder::locateFrom(std::size_t start, ParameterMask wanted) {
    if (text_.size() < 2) return;
    for (std::size_t i = text_.find<u'='>(std::max<std::size_t>(start, 1)); i < text_.size();
         i = text_.find<u'='>(i + 1))
        locate(i, wanted);
}

/// Looks for those that end at a = and were not found before it.
void ParameterFinder::locate(std::size_t equals, ParameterMask wanted) {
    const char16_t third = equals < 3 ? u'\0' : text_[equals - 3];
    const ParameterMask candidates = list_.candidates(text_[equals - 1], third);
    eachBit(candidates & wanted & ~present_, [&](std::size_t name) {
        const std::size_t length = list_.names[name].text.size();
        if (equals + 1 >= length && standsAt(text_, list_.names[name], equals + 1 - length))
            note(name, equals + 1 - length);
    });
}

void ParameterFinder::note(std::size_t name, std::size_t position) {
    const ParameterMask bit = ParameterMask(1) << name;
    positions_[name] = position;
    changed_ |= bit;
    present_ &= ~bit;
    parameters_ &= ~bit;
    if (position == NotThere) return;
    present_ |= bit;
    if (position > 0 && isParameterSeparator(text_[position - 1])) parameters_ |= bit;
}

void ParameterFinder::remove(std::size_t name) {
    const std::size_t before = text_.size();
    const std::size_t joint = removeParameter(text_, separatorOf(name));
    ParameterMask lost = 0;
    eachBit(present_, [&](std::size_t n) {
        if (!relocate(n, joint, before - text_.size())) lost |= ParameterMask(1) << n;
    });
    eachBit(lost, [&](std::size_t n) { note(n, NotThere); });
    if (lost) locateFrom(joint, lost);
    // The units on both sides of the joint may form a name that was not there before.
    eachBit(list_.crossing, [&](std::size_t n) {
        const bool isBefore = (present_ >> n & 1) && positions_[n] + 1 < joint;
        if (joint > 0 && !isBefore && standsAt(text_, list_.names[n], joint - 1))
            note(n, joint - 1);
    });
}

/// Notes where a name stands after units were removed behind the joint; false if it was among them.
/// In front of a name that has moved up to the joint there is a separator, now as before.
bool ParameterFinder::relocate(std::size_t name, std::size_t joint, std::size_t removed) {
    const std::size_t old = positions_[name];
    if (old + list_.names[name].text.size() <= joint) return true;
    if (old < joint + removed) return false;
    positions_[name] = old - removed;
    if (positions_[name] == joint) changed_ |= ParameterMask(1) << name;
    return true;
}

}  // namespace velmo::detail
