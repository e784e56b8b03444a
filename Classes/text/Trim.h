// The one trimming routine. What is trimmed off is a predicate, so that a test of a unit
// stays inline; only the units that go, and one more at each end, are looked at.
#pragma once

#include <string>
#include <string_view>

#include <velmocore/platform/String.h>

#include "text/UnitClasses.h"

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

/// Cuts the text down to what is left of it.
template <class Removable>
void trimInPlace(std::u16string& text, Ends ends, Removable removable) {
    const std::u16string_view rest = trimmedView(text, ends, removable);
    const auto start = static_cast<std::size_t>(rest.data() - text.data());
    text.resize(start + rest.size());
    text.erase(0, start);
}

}  // namespace velmo::detail
