#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>

namespace velmo {

/// What is done beyond copying what is missing or newer.
struct UpdateOptions {
    /// Files that are there are replaced, also by older ones.
    bool overwrite = false;
    /// The files that were copied or left get the mark that their extensions are not to be shown.
    bool hideFileExtensions = false;
};

/// Merges a folder into another one, which is there: what is missing is copied, and a file is
/// replaced by one that was changed later. Folders that are in both are merged in turn; what has
/// the name of a folder and is none is left out, and what has other names stays. A file is
/// replaced when its copy is complete.
///
/// False if anything could not be listed or copied, which is logged; all else is done. False for an
/// absent or empty path. Any thread may call this.
///
///     createPathAndFile("new/tea.txt");
///     createPath("old");
///     updatePath("new", "old");    // true; there is old/tea.txt
VELMO_API bool updatePath(const Path& path, const Path& toPath, UpdateOptions options = {});

}  // namespace velmo
