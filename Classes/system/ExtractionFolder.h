// The folder that an archive is extracted to. Nothing leads out of it: each folder on the way to an
// entry is opened from the one above, and never through a link.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/FunctionRef.h>

#include "system/NewPlace.h"

namespace velmo::detail {

/// Where an entry goes: the names of folders below each other, and its own name last.
using EntryPath = std::vector<std::string>;

/// Throws an ArchiveFailure for a name that leads elsewhere, or that no file can have.
EntryPath entryPathOf(const std::string& name);

class ExtractionFolder {
public:
    explicit ExtractionFolder(OpenFile root);

    /// All of these throw an ArchiveFailure.

    void makeFolder(const EntryPath& path);
    /// Calls the writer with a new file, which takes its place afterwards.
    void makeFile(const EntryPath& path, FunctionRef<void(OpenFile& file)> write,
                  std::optional<mode_t> mode, std::optional<Date> modified);
    /// Links are made when all else is there, so that none is on the way to anything.
    void addLink(const EntryPath& path, std::string target);
    /// A folder's permissions may forbid to write into it, and its date changes by that. So both
    /// are set in the end, if the folder was made here.
    void addAttributes(const EntryPath& path, std::optional<mode_t> mode,
                       std::optional<Date> modified);
    void finish();

private:
    struct Attributes {
        std::optional<mode_t> mode;
        std::optional<Date> modified;
    };

    const OpenFile& folderOf(const EntryPath& path, std::size_t depth);
    OpenFile step(const OpenFile& from, const EntryPath& path, std::size_t index);
    bool wasMade(const OpenFile& folder) const;
    bool staysInside(const std::string& link) const;
    void makeLink(const std::string& name, const std::string& target);

    OpenFile root_;
    // By their paths with slashes, so that what is in a folder stands behind it.
    std::map<std::string, std::string> links_;
    std::map<std::string, Attributes> attributes_;
    std::set<ino_t>
        made_;        // by their numbers: the paths of all would be much longer than an archive
    EntryPath last_;  // the folder that was wanted last, as many are one after the other
    OpenFile lastFolder_;
};

}  // namespace velmo::detail
