#pragma once

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Files and folders copied, moved and removed: a link as the link that it is, a folder with all
// that is in it, however deep. An absent or empty path gives false, and no file is touched. What
// fails gives a u"posix" error. Any thread may call these.
//
//     createPathAndFile("drafts/tea.txt");
//     copyPath("drafts", "copies");            // true
//     copyPath("drafts", "copies");            // false; there is something already
//     renamePath("copies/tea.txt", u"cup.txt"); // true
//     removePath("drafts");                     // true; what is not there counts as removed

/// Copies with permissions, dates and extended attributes; rights that come with the owner are not
/// copied. The copy appears whole or not at all. False if there is anything at the new path, if it
/// lies in the old one, and for devices, pipes and sockets.
VELMO_API bool copyPath(const Path& path, const Path& toPath, Error* error = nullptr);
/// Moves, also to another file system. False if there is anything at the new path.
VELMO_API bool movePath(const Path& path, const Path& toPath, Error* error = nullptr);
/// Moves to another name in the same folder; false for a name with a slash in it.
VELMO_API bool renamePath(const Path& path, const Path& name);

/// True if nothing is there afterwards, or was there before. The root, and "." or ".." at the end
/// of a path, are never removed. A failure is logged.
VELMO_API bool removePath(const Path& path, Error* error = nullptr);
/// Removes a name that is no folder, and does nothing else.
VELMO_API bool unlinkFileAtPath(const Path& path);

}  // namespace velmo
