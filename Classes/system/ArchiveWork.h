// Where work on an archive begins and ends.
#pragma once

#include "system/ArchiveErrors.h"
#include "system/FileErrors.h"
#include "system/OpenFile.h"

namespace velmo::detail {

/// Throws an ArchiveFailure if it cannot be opened.
OpenFile openArchive(const Path& path);

/// False for a path that names nothing.
inline bool refuseNames(Error* error) { return reported(refused(EINVAL), error, "path"); }

/// Does the work; false, and the error, if that ends by an ArchiveFailure.
template <class Work>
bool runArchiveWork(Error* error, Work work) {
    try {
        work();
        return true;
    } catch (const ArchiveFailure& failure) {
        if (error) *error = failure.error();
        return false;
    }
}

}  // namespace velmo::detail
