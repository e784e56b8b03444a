#pragma once

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/system/FilePermissions.h>

namespace velmo {

// Files and folders made where they are missing. A folder above that is not there and a path that
// exists already are normal cases; an absent or empty path gives false, and no file is touched.
// What a path names is what links lead to, but for a path that is to be removed. Any thread may
// call these.
//
//     createPathAndFile("letters/2001/tea.txt");                      // true
//     writeString(u"Two cups.", "letters/2001/tea.txt", {.append = true});    // true
//     createPath("letters/2001/tea.txt");                             // false; it is no folder

/// True if there is something, whatever it is; otherwise an empty file is made.
VELMO_API bool createFile(const Path& path);
/// The same, with the folders above it.
VELMO_API bool createPathAndFile(const Path& path);

/// The folder with all folders above it, which alone get the attributes that are usual. If there is
/// something of that name, whether it is a folder. An owner or group that may not be given makes
/// the result false.
VELMO_API bool createPath(const Path& path, const FilePermissions& attributes = {});
/// The same for the folder that a path lies in; false if it has but one component.
VELMO_API bool createPathToFile(const Path& path, const FilePermissions& attributes = {});

/// A folder by moving another one, if there is that; otherwise a new one with the folders above it.
/// False if there is anything at the path.
VELMO_API bool createPath(const Path& path, const Path& previousPath);

/// A folder in the place of whatever is there, that can be written to. What cannot be removed is
/// no failure, if it is such a folder.
VELMO_API bool createWritableTemporaryPath(const Path& path);

/// Writes something to a path, atomically if asked to, and tells whether it could.
using ObjectWriter = FunctionRef<bool(const Path& path, bool atomically)>;

/// Makes the folders above, and has the object write itself, however that went. False without a
/// writer. An exception is logged and gives false.
VELMO_API bool createPathAndWriteObject(ObjectWriter writer, const Path& path, bool atomically);
/// The same for bytes. Atomically: see writeToFile() in StringFiles.h.
VELMO_API bool createPathAndWriteObject(Bytes data, const Path& path, bool atomically);

/// Where bytes are written.
struct WriteOptions {
    bool append = false;  ///< behind what is there, otherwise instead of it
};

/// Writes to the file where it stands, which is made if there is none. False if not all could be
/// written; any part of it may have been.
VELMO_API bool writeData(Bytes data, const Path& path, WriteOptions options = {});
/// The same for text in defaultEncoding(). False, and no file is touched, if it is absent or empty
/// or has a character that the encoding does not have.
VELMO_API bool writeString(const String& string, const Path& path, WriteOptions options = {});

}  // namespace velmo
