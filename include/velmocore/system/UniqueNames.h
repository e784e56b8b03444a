#pragma once

#include <cstddef>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// A path in the same folder under which nothing stands: the path itself, or else the first one
/// with "-1", "-2" and so on behind the name and before the extension. A name that would have more
/// than 250 units is cut before the number, and so is one of more bytes than a file system takes;
/// no character is. Absent for an absent path, empty for an empty one. That nobody makes a file of
/// that name meanwhile is not seen to. Any thread.
///
///     createPathAndFile("cups/a.txt");
///     nonExistingFilenameAtPath("cups/a.txt").string();    // cups/a-1.txt
[[nodiscard]] VELMO_API Path nonExistingFilenameAtPath(const Path& path);

/// Makes room for a new archive in a folder, and gives its name: the prefix, and the present time
/// as " 2001-02-03 04-05-06". Of what is there under names that match the prefix and "*", in any
/// case, the oldest are removed, folders too, until no more than the maximum is left; the new one
/// is not counted. Absent, and nothing is removed, for an absent or empty prefix or path. Any thread;
/// within one second the name is the same.
///
///     archiveDirectoryContentsAtPath("backups", u"Notes", 7);    // (as Notes 2001-02-03 04-05-06)
///     archiveDirectoryContentsAtPath("backups", u"", 7);         // absent
VELMO_API String archiveDirectoryContentsAtPath(const Path& path, const String& prefix,
                                                std::size_t maxNumberOfArchives);

}  // namespace velmo
