// Components of paths that are too long for a file system.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// The component, if it has 250 units at most with the room that something else takes; else
/// what stays of 242, and the checksum of the whole in eight hexadecimal digits.
String fittingComponent(const String& component, std::size_t room = 0);

/// A folder and components below it as a path. The components are not empty and hold no slash.
String pathOfComponents(std::u16string_view folder, std::span<const String> components);

/// The components from a position on become one, with the unit between them.
template <class Components>
void joinFrom(Components& components, std::size_t start, char16_t between) {
    std::u16string joined;
    for (std::size_t i = start; i < components.size(); ++i) {
        if (i > start) joined += between;
        joined += components[i];
    }
    components.resize(start);
    components.push_back(joined);
}

}  // namespace velmo::detail
