// An archive is written beside its final place. What it is made of is walked sorted, so that the
// same tree gives the same archive.
#include <fcntl.h>

#include <algorithm>
#include <functional>
#include <set>

#include <velmocore/system/Archives.h>

#include "system/ArchiveReader.h"
#include "system/ArchiveWork.h"
#include "system/ArchiveWriter.h"
#include "system/NewPlace.h"
#include "system/PathBytes.h"
#include "system/TreeWalk.h"

namespace velmo {
namespace {

using detail::ArchiveFailure;
using detail::ArchiveReader;
using detail::ArchiveWriter;
using detail::demand;
using detail::FileCalls;
using detail::NewPlace;
using detail::OpenFile;
using detail::Place;
using detail::ZipDirectory;
using detail::ZipEntry;

/// Something to be stored: where it stands, and as what.
struct Found {
    int folder;
    const std::string& path;
    const std::string& name;
    const struct stat& info;
};
using Taker = std::function<void(const Found&)>;

/// Walks trees and calls the taker for all that is in them, by the names that it is to have.
class Finder : public detail::TreeVisitor {
public:
    explicit Finder(const Taker& take) : take_(take) {}

    /// What the next walk begins at is to have this name, or none: then only what is in it is
    /// taken.
    void begin(std::string name) {
        prefix_.clear();
        root_ = std::move(name);
        isRoot_ = true;
    }

    bool visit(int folder, const std::string& name, const struct stat& info) override {
        take_({folder, name, nameOfEntry(name), info});
        isRoot_ = false;
        return true;
    }
    bool enter(int folder, const std::string& name, const struct stat& info) override {
        const std::string entry = nameOfEntry(name);
        lengths_.push_back(prefix_.size());
        prefix_ = entry.empty() ? "" : entry + "/";
        if (!entry.empty()) take_({folder, name, prefix_, info});
        isRoot_ = false;
        return true;
    }
    bool leave(int, const std::string&, const struct stat&) override {
        prefix_.resize(std::min(lengths_.back(), prefix_.size()));
        lengths_.pop_back();
        return true;
    }

private:
    std::string nameOfEntry(const std::string& name) const {
        return isRoot_ ? root_ : prefix_ + name;
    }

    const Taker& take_;
    std::string prefix_, root_;
    std::vector<std::size_t> lengths_;
    bool isRoot_ = true;
};

/// What is to go into an archive: calls the taker for each, and throws if it cannot.
using Source = std::function<void(const Taker& take)>;

/// Copies what an archive holds and the source has not.
void copyEntries(const Path& path, const std::set<std::string>& replaced, ArchiveWriter& writer) {
    const OpenFile archive = detail::openArchive(path);
    ZipDirectory directory = detail::readZipDirectory(archive, ExtractionOptions().mostEntries);
    for (const ZipEntry& entry : directory.entries)
        if (entry.isEncrypted)
            throw ArchiveFailure(ArchiveProblem::Encrypted, entry.name, "needs a password");
    detail::checkLocalHeaders(archive, directory);
    ArchiveReader reader(archive, directory.entries);
    while (const ZipEntry* entry = reader.next())
        if (!replaced.contains(entry->name)) writer.add(reader, *entry);
}

class NewArchive {
public:
    NewArchive(FileCalls& calls, const Path& path)
        : calls_(calls), path_(path), place_(detail::placeOf(calls, path.bytes())) {
        demand(static_cast<bool>(place_), path.bytes());
        old_ = detail::infoOf(calls, place_.folder.number(), place_.name);
        if (old_ && S_ISDIR(old_->st_mode)) demand(detail::refused(EISDIR), path.bytes());
    }

    void write(const Source& source, bool append) {
        NewPlace fresh(calls_, place_.folder.number());
        OpenFile file = fresh.makeFile(0666);
        demand(static_cast<bool>(file), path_.bytes());
        own_ = file.info();
        ArchiveWriter writer(file);
        if (append && old_) copyEntries(path_, namesOf(source), writer);
        source([&](const Found& found) {
            if (!isOwn(found)) writer.add(found.folder, found.path, found.name, found.info);
        });
        writer.finish();
        const bool isReady = (!old_ || !S_ISREG(old_->st_mode) ||
                              calls_.fchmod(file.number(), old_->st_mode & 0777) == 0) &&
                             calls_.fsync(file.number()) == 0 && file.close() &&
                             fresh.become(place_.name, detail::Occupied::IsReplaced);
        demand(isReady, path_.bytes());
    }

private:
    static std::set<std::string> namesOf(const Source& source) {
        std::set<std::string> names;
        source([&](const Found& found) { names.insert(found.name); });
        return names;
    }
    /// The archive itself, the old one or what is written now.
    bool isOwn(const Found& found) const {
        return (own_ && detail::isSameFile(*own_, found.info)) ||
               (old_ && detail::isSameFile(*old_, found.info));
    }

    FileCalls& calls_;
    const Path& path_;
    Place place_;
    std::optional<struct stat> old_, own_;
};

/// The name that a file of a list has in the archive. Throws for one that leads elsewhere.
std::string entryNameOf(const Path& file) {
    std::string name;
    for (std::string_view rest = file.bytes(); !rest.empty();) {
        const std::size_t end = std::min(rest.find('/'), rest.size());
        const std::string_view component = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (component == "..")
            throw ArchiveFailure(ArchiveProblem::Unsafe, file.bytes(), "leads out of the folder");
        if (!component.empty() && component != ".")
            name.append(name.empty() ? "" : "/").append(component);
    }
    return name;
}

void walkInto(FileCalls& calls, int folder, const std::string& path, std::string name,
              Finder& finder) {
    finder.begin(std::move(name));
    demand(detail::walk(calls, folder, path, finder), path);
}

}  // namespace

bool compressFileAtPath(const Path& path, const Path& toPath, CompressionOptions options,
                        Error* error) {
    if (!detail::isUsable(path) || !detail::isUsable(toPath)) return detail::refuseNames(error);
    FileCalls& calls = FileCalls::current();
    return detail::runArchiveWork(error, [&] {
        const std::string trimmed(detail::trimmedPath(path.bytes()));
        const auto info = detail::infoBehindLinks(calls, trimmed);
        demand(info.has_value(), trimmed);
        const bool isNamed = options.keepParent || !S_ISDIR(info->st_mode);
        // A folder may be named by "." or through a link, and is what is walked then.
        const std::string start = S_ISDIR(info->st_mode) ? trimmed + "/." : trimmed;
        const std::string name = isNamed ? std::string(detail::nameOf(trimmed)) : "";
        NewArchive(calls, toPath)
            .write(
                [&](const Taker& take) {
                    Finder finder(take);
                    walkInto(calls, AT_FDCWD, start, name, finder);
                },
                false);
    });
}

bool compressFiles(std::span<const Path> files, const Path& folder, const Path& toPath,
                   CollectionOptions options, Error* error) {
    if (files.empty() || !detail::isUsable(folder) || !detail::isUsable(toPath) ||
        !std::ranges::all_of(files, detail::isUsable))
        return detail::refuseNames(error);
    FileCalls& calls = FileCalls::current();
    return detail::runArchiveWork(error, [&] {
        const OpenFile root(calls, AT_FDCWD, folder.bytes(), O_RDONLY | O_DIRECTORY);
        demand(static_cast<bool>(root), folder.bytes());
        NewArchive(calls, toPath)
            .write(
                [&](const Taker& take) {
                    Finder finder(take);
                    for (const Path& file : files)
                        walkInto(calls, root.number(),
                                 std::string(detail::trimmedPath(file.bytes())), entryNameOf(file),
                                 finder);
                },
                options.append);
    });
}

}  // namespace velmo
