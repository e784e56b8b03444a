// Paths as the bytes that the file system knows, taken apart and put together.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include <velmocore/platform/Path.h>

namespace velmo::detail {

/// Whether the path can name anything. One that cannot for what is in it is logged.
bool isUsable(const Path& path);

/// Without the slashes at its end; the root keeps its one.
inline std::string_view trimmedPath(std::string_view path) {
    const std::size_t end = path.find_last_not_of('/') + 1;
    return path.substr(0, end == 0 && !path.empty() ? 1 : end);
}

/// What holds the last component; empty for a path of one component.
inline std::string_view parentOf(std::string_view path) {
    path = trimmedPath(path);
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? path.substr(0, 0) : trimmedPath(path.substr(0, slash + 1));
}

/// The last component, without slashes; that of the root is empty.
inline std::string_view nameOf(std::string_view path) {
    path = trimmedPath(path);
    return path.substr(path.rfind('/') + 1);
}

inline std::string joinedPath(std::string_view folder, std::string_view name) {
    std::string path(trimmedPath(folder));
    if (!path.empty() && path.back() != '/') path += '/';
    return path.append(name);
}

/// Whether a component names something in its folder, and nothing else.
inline bool isPlainName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == name.npos;
}

}  // namespace velmo::detail
