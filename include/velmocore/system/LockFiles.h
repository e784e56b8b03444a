#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>

namespace velmo {

// Locks that programs agree on: a file beside a file, which tells whose lock it is. Nothing keeps a
// program from the file that does not ask. A lock outlives the process that made it; it is a
// property list, a dictionary with "userName" and "processNumber". Any thread may call these.
//
//     const Path lock = lockFileAtPath("notes.store");
//     lock.string();                                    // notes.store.lock
//     lockFileAtPath("notes.store").isAbsent();         // true
//     unlockFileAtPath(lock);                           // true

/// How a lock is taken.
struct LockOptions {
    bool override = false;  ///< a lock that is there is taken over
};

/// Makes the lock of a file, with the folders above it, and gives its path: that of the file with
/// the extension "lock". Absent if the file is locked, and if the lock cannot be written. What
/// stands there and is no dictionary is no lock, and is replaced. Of several that want the same
/// lock at once where none stands, one gets it.
[[nodiscard]] VELMO_API Path lockFileAtPath(const Path& path, LockOptions options = {});

/// Removes a lock, by the path of the lock. False, and it stays, if it is not one of this user and
/// this very process.
VELMO_API bool unlockFileAtPath(const Path& lockPath);

}  // namespace velmo
