#include "url/Parameters.h"

#include "text/Keyword.h"

namespace velmo::detail {
namespace {

bool standsAt(const GapText& text, const ParameterName& name, std::size_t position) {
    if (text.size() - position < name.text.size()) return false;
    for (std::size_t i = 0; i < name.text.size(); ++i) {
        const char16_t unit = text[position + i];
        if ((name.anyCase ? keyword::upper(unit) : unit) != name.text[i]) return false;
    }
    return true;
}

}  // namespace

std::size_t findName(const GapText& text, const ParameterName& name, std::size_t from) {
    for (std::size_t i = from; i + name.text.size() <= text.size(); ++i)
        if (standsAt(text, name, i)) return i;
    return NotThere;
}

std::size_t endOfParameter(const GapText& text, std::size_t separator) {
    return text[separator] == u';' ? text.find(separator + 1, u'&', u';', u'?')
                                   : text.find(separator + 1, u'&', u'?');
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

ParameterFinder::ParameterFinder(GapText& text, std::span<const ParameterName> names)
    : text_(text), names_(names) {
    positions_.fill(NotThere);
    locate();
}

void ParameterFinder::locate() {
    for (std::size_t i = text_.find(0, u'='); i < text_.size(); i = text_.find(i + 1, u'=')) {
        for (std::size_t n = 0; n < names_.size(); ++n) {
            const std::size_t length = names_[n].text.size();
            if (positions_[n] == NotThere && i + 1 >= length &&
                standsAt(text_, names_[n], i + 1 - length))
                positions_[n] = i + 1 - length;
        }
    }
}

void ParameterFinder::remove(std::size_t name) {
    const std::size_t before = text_.size();
    const std::size_t joint = removeParameter(text_, separatorOf(name));
    const std::size_t removed = before - text_.size();
    for (std::size_t n = 0; n < names_.size(); ++n) positions_[n] = moved(n, joint, removed);
}

/// Where a name stands after units were removed behind the joint.
std::size_t ParameterFinder::moved(std::size_t name, std::size_t joint, std::size_t removed) const {
    const std::size_t length = names_[name].text.size();
    const std::size_t old = positions_[name];
    if (old < joint && old + length <= joint) return old;
    for (std::size_t i = joint - std::min(joint, length - 1); i < joint; ++i)
        if (standsAt(text_, names_[name], i)) return i;
    if (old == NotThere) return NotThere;
    return old >= joint + removed ? old - removed : findName(text_, names_[name], joint);
}

}  // namespace velmo::detail
