#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>

namespace velmo {

// Zip archives of files and folders: written, extracted and listed.
//
//     createPathAndFile("letters/tea.txt");
//     compressFileAtPath("letters", "letters.zip", {.keepParent = true});    // true
//     decompressFileAtPath("letters.zip", "copy");                           // true
//     contentsOfArchiveAtPath("letters.zip")->back().name.string();          // letters/tea.txt
//
// A link is stored as the link that it is. Names are kept as the bytes that they are; those that
// are UTF-8 are marked so. The same files give the same bytes. A new archive appears whole or not
// at all, and one that is there is not harmed by a failure. Any thread may call these.

/// What is wrong with an archive: the codes of errors of the domain u"velmo.archive". An error of
/// the system is one of u"posix".
enum class ArchiveProblem : std::int64_t {
    Damaged = 1,      ///< or not a zip archive
    Unsafe = 2,       ///< an entry would leave the folder that it is extracted to
    Encrypted = 3,    ///< an entry needs a password
    TooLarge = 4,     ///< above a limit
    Unsupported = 5,  ///< an entry that is no file, folder or link, or packed in an unknown way
};

/// What stands in an archive of a folder.
struct CompressionOptions {
    bool keepParent = false;  ///< a folder stands in the archive with its name
};

/// Writes an archive of a file or a folder, in the place of what is there. False for an absent or
/// empty path, and if there is nothing at the first one. The archive itself is left out, if it lies
/// in the folder. Pipes, sockets and devices are an error.
VELMO_API bool compressFileAtPath(const Path& path, const Path& toPath,
                                  CompressionOptions options = {}, Error* error = nullptr);

/// How files are put into an archive.
struct CollectionOptions {
    bool append = false;  ///< to what the archive holds; entries of the same names are replaced
};

/// Writes an archive of files and folders that are named from a folder on; they keep these names,
/// without a slash at the start. False for no files, an absent or empty path, a name with ".." in
/// it, and if any of the files is missing.
VELMO_API bool compressFiles(std::span<const Path> files, const Path& folder, const Path& toPath,
                             CollectionOptions options = {}, Error* error = nullptr);

/// How much may come out of an archive.
struct ExtractionOptions {
    std::uint64_t mostBytes = std::uint64_t{1} << 36;  ///< all together; 64 GiB
    std::uint64_t mostEntries = 1000000;
    /// Bytes for each byte of the archive; what is below 256 MiB is never too much. At least 1.
    std::uint64_t mostRatio = 200;
};

/// Extracts an archive into a folder. One that is there stays, and files in it are replaced; else
/// it is made, and appears whole or not at all. Files get the dates and permissions that the
/// archive tells, without the rights that come with an owner.
///
/// Nothing is written if any entry has an absolute path or ".." in it, or has a password, or if the
/// archive is above a limit or its entries overlap. No entry is written through a link, whether
/// it comes from the archive or was there; and a link that leads out of the folder, or through one
/// that was there, is an error.
VELMO_API bool decompressFileAtPath(const Path& path, const Path& toPath,
                                    ExtractionOptions options = {}, Error* error = nullptr);

/// An entry of an archive, as its directory tells it.
struct ArchiveEntry {
    Path name;  ///< as it stands there, whatever it is; absent if no file can have it
    std::uint64_t size = 0, packedSize = 0;  ///< in bytes
    std::optional<Date> modified = {};
    std::optional<std::uint32_t> permissions = {};  ///< the twelve bits of POSIX
    bool isFolder = false, isLink = false, isEncrypted = false;
};

/// The entries in the order of the directory; absent if it cannot be read. Nothing is extracted,
/// and the names are not judged.
[[nodiscard]] VELMO_API std::optional<std::vector<ArchiveEntry>> contentsOfArchiveAtPath(
    const Path& path, Error* error = nullptr);

}  // namespace velmo
