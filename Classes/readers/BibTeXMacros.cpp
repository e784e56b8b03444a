// Macros are sought all at once, in a tree of their names, so that ten thousand of them cost a
// value that names none no more than one. A value that names some is looked through again after
// each replacement, since what came in may name later ones. That is where a hostile text could
// make work without end, and all of it is paid from one account.
#include "readers/BibTeXMacros.h"

#include <algorithm>

#include <velmocore/text/Finding.h>
#include <velmocore/text/Replacing.h>

namespace velmo::detail {
namespace {

constexpr std::size_t WorkOfUnit = 16, WorkOfText = 1'000'000;
constexpr std::size_t NoMacro = std::numeric_limits<std::size_t>::max();

std::uint64_t edgeOf(std::uint32_t node, char16_t unit) { return std::uint64_t{node} << 16 | unit; }

}  // namespace

BibTeXMacros::BibTeXMacros(std::size_t textLength)
    : ends_{NoMacro}, work_(WorkOfUnit * textLength + WorkOfText) {}

void BibTeXMacros::define(const String& name, const String& value) {
    std::uint32_t node = 0;
    for (const char16_t unit : name) {
        const auto next = static_cast<std::uint32_t>(ends_.size());
        const auto [edge, isNew] = edges_.try_emplace(edgeOf(node, unit), next);
        if (isNew) ends_.push_back(NoMacro);
        node = edge->second;
    }
    if (ends_[node] != NoMacro) {
        macros_[ends_[node]].value = value;
        return;
    }
    ends_[node] = macros_.size();
    macros_.push_back({name, value});
    firstUnits_.add(name[0]);
}

void BibTeXMacros::replaceIn(std::u16string& text) {
    for (std::size_t next = 0; next < macros_.size(); ++next) {
        next = firstIn(text, next);
        if (next == NoMacro || !replace(text, macros_[next])) return;
    }
}

/// The first macro, of those from the given one on, that the text names.
std::size_t BibTeXMacros::firstIn(std::u16string_view text, std::size_t from) {
    std::size_t first = NoMacro;
    for (; !text.empty() && first != from; text.remove_prefix(1))
        if (firstUnits_.contains(text.front())) first = std::min(first, firstAt(text, from));
    return first;
}

/// The same of the names at the start of the text.
std::size_t BibTeXMacros::firstAt(std::u16string_view text, std::size_t from) {
    std::size_t first = NoMacro;
    std::uint32_t node = 0;
    for (const char16_t unit : text) {
        const auto edge = spend(1) ? edges_.find(edgeOf(node, unit)) : edges_.end();
        if (edge == edges_.end()) break;
        node = edge->second;
        if (ends_[node] != NoMacro && ends_[node] >= from) first = std::min(first, ends_[node]);
    }
    return first;
}

bool BibTeXMacros::replace(std::u16string& text, const Macro& macro) {
    const std::size_t count = countSubstring(text, macro.name);
    const std::size_t length = std::max<std::size_t>(macro.value.length(), 1);
    if (count > work_ / length || !spend(text.size() + count * length)) return false;
    replaceString(text, macro.name, macro.value);
    return true;
}

/// False if there is not so much work left, and from there on.
bool BibTeXMacros::spend(std::size_t work) {
    const bool isThere = work <= work_;
    work_ = isThere ? work_ - work : 0;
    return isThere;
}

}  // namespace velmo::detail
