// The one trimming routine. What is trimmed off is a predicate, so that a test of a unit
// stays inline; only the units that go, and one more at each end, are looked at.
#pragma once

#include <string_view>

#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo::detail {

enum class Ends { Left = 1, Right = 2, Both = 3 };

/// What is left of the view. If that is nothing, it is the place at the view's end.
template <class Removable>
std::u16string_view trimmedView(std::u16string_view text, Ends ends, Removable removable) {
    std::size_t start = 0, end = text.size();
    if (ends != Ends::Right)
        while (start < end && removable(text[start])) ++start;
    if (ends != Ends::Left)
        while (end > start && removable(text[end - 1])) --end;
    return text.substr(start, end - start);
}

/// The string itself if nothing goes, the constant empty string if everything does.
template <class Removable>
String trimmedString(const String& string, Ends ends, Removable removable) {
    const std::u16string_view rest = trimmedView(string, ends, removable);
    if (rest.size() == string.length()) return string;
    return rest;
}

/// Membership of a set, as a predicate.
struct InSet {
    const CharacterSetRep& set;
    bool operator()(char16_t unit) const noexcept { return set.contains(unit); }
};
struct NotInSet {
    const CharacterSetRep& set;
    bool operator()(char16_t unit) const noexcept { return !set.contains(unit); }
};

/// The class of the operations with an "andFeeds" argument.
inline InSet spacesAndFeeds(bool andFeeds) {
    return {andFeeds ? whiteCharacterSetRep() : spaceCharacterSetRep()};
}

}  // namespace velmo::detail
