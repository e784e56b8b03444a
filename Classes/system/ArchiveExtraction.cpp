// All that the directory of an archive tells is judged before anything is written; what cannot be
// known before, is looked at where it happens.
#include <fcntl.h>
#include <fmt/core.h>

#include <algorithm>
#include <limits>

#include <velmocore/system/Archives.h>

#include "system/ArchiveReader.h"
#include "system/ArchiveWork.h"
#include "system/ExtractionFolder.h"
#include "system/FileErrors.h"
#include "system/Folders.h"
#include "system/PathBytes.h"

namespace velmo {
namespace {

using detail::ArchiveFailure;
using detail::ArchiveReader;
using detail::demand;
using detail::ExtractionFolder;
using detail::FileCalls;
using detail::NewPlace;
using detail::OpenFile;
using detail::ZipDirectory;
using detail::ZipEntry;

/// What comes out may always be that long, in bytes.
constexpr std::uint64_t Harmless = std::uint64_t{1} << 28;
constexpr std::uint64_t LongestTarget = 4095;

void checkEntry(const ZipEntry& entry) {
    using enum ArchiveProblem;
    detail::entryPathOf(entry.name);
    if (entry.isEncrypted) throw ArchiveFailure(Encrypted, entry.name, "needs a password");
    if (!entry.isFolder && !entry.isLink() && !entry.isFile())
        throw ArchiveFailure(Unsupported, entry.name, "is no file, folder or link");
    if (entry.isLink() && entry.size > LongestTarget)
        throw ArchiveFailure(Unsafe, entry.name, "links too far");
}

void checkSizes(const ZipDirectory& directory, std::uint64_t archiveSize,
                const ExtractionOptions& options) {
    std::uint64_t all = 0;
    for (const ZipEntry& entry : directory.entries) {
        const std::uint64_t room = std::numeric_limits<std::uint64_t>::max() - all;
        all += std::min(entry.size, room);
    }
    if (all > options.mostBytes)
        throw ArchiveFailure(ArchiveProblem::TooLarge, "",
                             fmt::format("more than {} bytes would come out", options.mostBytes));
    if (all > Harmless && all / std::max<std::uint64_t>(options.mostRatio, 1) > archiveSize)
        throw ArchiveFailure(
            ArchiveProblem::TooLarge, "",
            fmt::format("more than {} bytes a byte would come out", options.mostRatio));
}

void writeEntry(ArchiveReader& reader, OpenFile& file, const ZipEntry& entry) {
    for (Bytes bytes = reader.read(); !bytes.empty(); bytes = reader.read())
        demand(file.write(bytes), entry.name);
}

void extractEntry(ArchiveReader& reader, const ZipEntry& entry, ExtractionFolder& folder) {
    const detail::EntryPath path = detail::entryPathOf(entry.name);
    if (path.empty()) return;  // the folder itself, as some programs store it
    if (entry.isLink()) return folder.addLink(path, reader.linkTarget());
    if (entry.isFolder) {
        folder.makeFolder(path);
        return folder.addAttributes(path, entry.mode, entry.modified);
    }
    const auto write = [&](OpenFile& file) { writeEntry(reader, file, entry); };
    folder.makeFile(path, write, entry.mode, entry.modified);
}

void extractInto(const OpenFile& archive, const ZipDirectory& directory, OpenFile root) {
    ExtractionFolder folder(std::move(root));
    ArchiveReader reader(archive, directory.entries);
    while (const ZipEntry* entry = reader.next()) extractEntry(reader, *entry, folder);
    folder.finish();
}

/// A folder that is there.
bool extractIntoPath(const OpenFile& archive, const ZipDirectory& directory, const Path& path) {
    OpenFile root(archive.calls(), AT_FDCWD, path.bytes(), O_RDONLY | O_DIRECTORY);
    if (!root) return false;
    extractInto(archive, directory, std::move(root));
    return true;
}

/// A new one, under its name when all is in it.
void extractIntoNew(const OpenFile& archive, const ZipDirectory& directory, const Path& path) {
    FileCalls& calls = archive.calls();
    if (const auto parent = detail::parentOf(path.bytes()); !parent.empty())
        demand(detail::makeFolders(calls, std::string(parent)), parent);
    const detail::Place place = detail::placeOf(calls, path.bytes());
    demand(static_cast<bool>(place), path.bytes());
    NewPlace fresh(calls, place.folder.number());
    demand(fresh.makeFolder(0777), path.bytes());
    OpenFile root(calls, fresh.folder(), fresh.name(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
    demand(static_cast<bool>(root), path.bytes());
    extractInto(archive, directory, std::move(root));
    demand(fresh.become(place.name, detail::Occupied::Fails), path.bytes());
}

void extract(const Path& path, const Path& toPath, const ExtractionOptions& options) {
    const OpenFile archive = detail::openArchive(path);
    ZipDirectory directory = detail::readZipDirectory(archive, options.mostEntries);
    std::ranges::for_each(directory.entries, checkEntry);
    checkSizes(directory, static_cast<std::uint64_t>(archive.info()->st_size), options);
    detail::checkLocalHeaders(archive, directory);
    if (extractIntoPath(archive, directory, toPath)) return;
    demand(errno == ENOENT, toPath.bytes());
    extractIntoNew(archive, directory, toPath);
}

ArchiveEntry entryOf(const ZipEntry& entry) {
    ArchiveEntry result{.name = entry.name,
                        .size = entry.size,
                        .packedSize = entry.packedSize,
                        .modified = entry.modified};
    if (entry.mode) result.permissions = *entry.mode & 07777;
    result.isFolder = entry.isFolder;
    result.isLink = entry.isLink();
    result.isEncrypted = entry.isEncrypted;
    return result;
}

}  // namespace

detail::OpenFile detail::openArchive(const Path& path) {
    OpenFile file;
    if (isUsable(path))
        file = OpenFile(FileCalls::current(), AT_FDCWD, path.bytes(), O_RDONLY);
    else
        errno = EINVAL;
    demand(static_cast<bool>(file), path.bytes());
    return file;
}

bool decompressFileAtPath(const Path& path, const Path& toPath, ExtractionOptions options,
                          Error* error) {
    if (path.bytes().empty() || !detail::isUsable(toPath)) return detail::refuseNames(error);
    return detail::runArchiveWork(error, [&] { extract(path, toPath, options); });
}

std::optional<std::vector<ArchiveEntry>> contentsOfArchiveAtPath(const Path& path, Error* error) {
    std::vector<ArchiveEntry> entries;
    const bool isRead = detail::runArchiveWork(error, [&] {
        const OpenFile archive = detail::openArchive(path);
        const ZipDirectory directory =
            detail::readZipDirectory(archive, std::numeric_limits<std::uint64_t>::max());
        entries.reserve(directory.entries.size());
        for (const ZipEntry& entry : directory.entries) entries.push_back(entryOf(entry));
    });
    if (!isRead) return std::nullopt;
    return entries;
}

}  // namespace velmo
