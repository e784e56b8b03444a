#pragma once

#include <optional>
#include <string>
#include <vector>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// Which files of a folder are given, by patterns for their names; see isLikeUnixWildcard().
struct FolderWalkOptions {
    std::vector<String> include = {};  ///< only files with such a name; none is all
    std::vector<String> exclude = {};  ///< no files and no folders with such a name
};

/// A file of a folder, or what cannot be listed there.
struct FolderFile {
    Path path;                        ///< with that of the folder in front
    std::optional<Error> error = {};  ///< why it cannot be listed; none for a file
};

/// The regular files of a folder and of all below it, each folder sorted by the bytes of the names.
/// Links in them are not followed, so that no walk goes in circles. A folder is listed when its
/// turn has come: the memory is that of the folders on the way and not of all files. One thread at
/// a time uses a walk.
///
///     createPathAndFile("walked/old/tea.txt");
///     FolderWalk walk("walked");
///     walk.next()->path.string();      // walked/old/tea.txt
///     walk.next().has_value();         // false
class VELMO_API FolderWalk {
public:
    /// Lists the folder; one that cannot be listed gives one error. An absent path has no files, an
    /// empty one is the current folder.
    explicit FolderWalk(const Path& folder, const FolderWalkOptions& options = {});
    /// The next one; none at the end.
    [[nodiscard]] std::optional<FolderFile> next();

private:
    void push(const std::string& folder);

    FolderWalkOptions options_;
    std::vector<std::string> stack_;  ///< what is still to be looked at, the next one last
    std::optional<FolderFile> failed_;
};

}  // namespace velmo
