// Paths as the platform takes them apart and puts them together: components between slashes,
// an extension behind the last full stop of the last one.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/String.h>

namespace velmo::detail {

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

inline std::u16string_view extensionOfPath(std::u16string_view path) {
    return extensionOfComponent(lastComponentOf(path));
}

/// Without the slashes at its end; the root keeps its one.
inline std::u16string_view withoutTrailingSlashes(std::u16string_view path) {
    const std::size_t end = path.find_last_not_of(u'/') + 1;
    return path.substr(0, end == 0 && !path.empty() ? 1 : end);
}

/// Without the slashes at its end, of which the root is nothing else.
inline std::u16string_view withoutSlashesAtEnd(std::u16string_view path) {
    return path.substr(0, path.find_last_not_of(u'/') + 1);
}

/// Whether a path is that of a folder, which has no slash at its end, or lies below it. Nothing
/// lies in a folder without a name.
inline bool liesIn(std::u16string_view path, std::u16string_view folder) {
    if (folder.empty() || !path.starts_with(folder)) return false;
    return path.size() == folder.size() || path[folder.size()] == u'/';
}

/// The path of what holds the last component: "/" for a component of the root, empty for a
/// path of one component.
inline std::u16string_view parentOfPath(std::u16string_view path) {
    path = withoutTrailingSlashes(path);
    const std::size_t slash = path.rfind(u'/');
    return slash == path.npos ? path.substr(0, 0)
                              : withoutTrailingSlashes(path.substr(0, slash + 1));
}

/// The path without the extension of its last component, and the slashes behind it.
inline std::u16string_view withoutExtension(std::u16string_view path) {
    path = withoutTrailingSlashes(path);
    const std::u16string_view component = lastComponentOf(path);
    const std::size_t dot = component.rfind(u'.');
    if (dot == component.npos || dot == 0) return path;
    return path.substr(0, path.size() - (component.size() - dot));
}

/// The components; "/" is the first one of an absolute path, and the last one of a path that
/// ends in a slash.
inline std::vector<std::u16string_view> componentsOfPath(std::u16string_view path) {
    std::vector<std::u16string_view> components;
    if (path.starts_with(u'/')) components.push_back(path.substr(0, 1));
    for (std::size_t start = path.find_first_not_of(u'/'); start < path.size();) {
        const std::size_t end = std::min(path.find(u'/', start), path.size());
        components.push_back(path.substr(start, end - start));
        start = path.find_first_not_of(u'/', end);
        if (end < path.size() && start >= path.size()) components.push_back(path.substr(end, 1));
    }
    return components;
}

/// The path of something in a folder, with one slash between.
inline String appendedComponent(std::u16string_view folder, std::u16string_view component) {
    component.remove_prefix(std::min(component.find_first_not_of(u'/'), component.size()));
    std::u16string path(withoutTrailingSlashes(folder));
    if (!component.empty() && !path.empty() && !path.ends_with(u'/')) path += u'/';
    return path.append(component);
}

}  // namespace velmo::detail
