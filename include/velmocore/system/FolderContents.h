#pragma once

#include <optional>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>

namespace velmo {

// What is in a folder, sorted by the bytes of the names, without "." and "..". Absent for an absent
// or empty path and for a folder that cannot be listed. Any thread may call these.
//
//     createPathAndFile("teas/Assam.TXT");
//     directoryContentsMatchingExtension("teas", u"txt")->size();                       // 1
//     directoryContentsMatchingWildcard("teas", u"a*.*", {.fullPath = true})->front().string();
//     // teas/Assam.TXT

/// What is told of each file.
struct ContentsOptions {
    bool fullPath = false;  ///< the path of the folder stands before each name
};

/// All names.
[[nodiscard]] VELMO_API std::optional<std::vector<Path>> directoryContentsAtPath(
    const Path& path, ContentsOptions options = {});
/// Those with an extension, in any case; none for an absent extension.
[[nodiscard]] VELMO_API std::optional<std::vector<Path>> directoryContentsMatchingExtension(
    const Path& path, const String& extension, ContentsOptions options = {});
/// Those whose names match a wildcard; see isCaseInsensitiveLikeWildcard(). None for an absent one.
[[nodiscard]] VELMO_API std::optional<std::vector<Path>> directoryContentsMatchingWildcard(
    const Path& path, const String& wildcard, ContentsOptions options = {});

/// Whether the volume of a path is there: only of one that begins with "/Volumes/" and has a third
/// component, and then whether these three exist. False for all others.
[[nodiscard]] VELMO_API bool isVolumeMountedAtPath(const Path& path);

}  // namespace velmo
