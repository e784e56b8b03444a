// The directory at the end of a zip archive.
//
// It is read here, and not by the library that unpacks, for what that does not tell: the names as
// they are, where entries begin and end, how long they are packed, and whether they need a
// password.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <velmocore/platform/Date.h>

#include "system/OpenFile.h"

namespace velmo::detail {

struct ZipEntry {
    std::string name;          ///< with slashes between the folders
    std::string headerName;    ///< as it stands in the archive
    std::uint64_t offset = 0;  ///< where its local header begins
    std::uint64_t flags = 0;   ///< where the second byte of its flags stands in the directory
    std::uint64_t size = 0, packedSize = 0;
    std::optional<Date> modified;
    std::optional<mode_t> mode;  ///< of archives that were made where there are such
    bool isFolder = false, isEncrypted = false;

    bool isLink() const { return mode && S_ISLNK(*mode); }
    bool isFile() const { return !isFolder && (!mode || S_ISREG(*mode) || (*mode & S_IFMT) == 0); }
};

struct ZipDirectory {
    std::vector<ZipEntry> entries;
    std::uint64_t start = 0;  ///< where it begins, behind the last entry
};

/// Throws an ArchiveFailure for what is no archive, or has more entries than that.
ZipDirectory readZipDirectory(const OpenFile& file, std::uint64_t mostEntries);

/// Sorts the entries by where they begin, and makes sure that each stands where the directory says,
/// under the same name, and that none reaches into another one. Throws an ArchiveFailure.
void checkLocalHeaders(const OpenFile& file, ZipDirectory& directory);

}  // namespace velmo::detail
