// Parts of a path that both URLs and strings are asked for.
#pragma once

#include <string_view>

namespace velmo {

/// The last component, without the slashes behind it; "/" of the root.
inline std::u16string_view lastComponentOf(std::u16string_view path) {
    const std::size_t end = path.find_last_not_of(u'/') + 1;
    if (end == 0) return path.substr(0, path.empty() ? 0 : 1);
    const std::size_t start = path.rfind(u'/', end - 1) + 1;
    return path.substr(start, end - start);
}

/// What stands behind the last full stop of a component; empty if nothing stands on
/// one of its sides.
inline std::u16string_view extensionOfComponent(std::u16string_view component) {
    const std::size_t dot = component.rfind(u'.');
    return dot == component.npos || dot == 0 ? component.substr(component.size())
                                             : component.substr(dot + 1);
}

}  // namespace velmo
