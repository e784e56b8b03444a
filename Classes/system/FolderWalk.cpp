// Each folder and each entry can fail for itself, and is then the one that is named.
#include <velmocore/system/FolderWalk.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>

#include <velmocore/query/Wildcards.h>

#include "system/FileErrors.h"
#include "system/OpenFile.h"

namespace velmo {
namespace {

bool matchesAny(const std::string& name, const std::vector<String>& patterns) {
    return std::ranges::any_of(patterns, [units = String::fromUTF8(name)](const String& pattern) {
        return isLikeUnixWildcard(units, pattern);
    });
}

FolderFile failed(const std::string& path) {
    return {.path = Path(path), .error = detail::systemError(errno, path)};
}

}  // namespace

FolderWalk::FolderWalk(const Path& folder, const FolderWalkOptions& options) : options_(options) {
    if (!folder.isAbsent()) push(folder.bytes());
}

void FolderWalk::push(const std::string& folder) {
    const auto names = detail::namesInFolder(detail::FileCalls::current(), AT_FDCWD,
                                             folder.empty() ? "." : folder);
    if (!names) {
        failed_ = failed(folder);
        return;
    }
    // Names in the current folder stand alone: a slash would make them those of the root.
    const char* const slash = folder.empty() || folder.ends_with('/') ? "" : "/";
    for (auto name = names->rbegin(); name != names->rend(); ++name)
        if (!matchesAny(*name, options_.exclude)) stack_.push_back(folder + slash + *name);
}

std::optional<FolderFile> FolderWalk::next() {
    while (!failed_ && !stack_.empty()) {
        const std::string path = std::move(stack_.back());
        stack_.pop_back();
        const auto info = detail::infoOf(detail::FileCalls::current(), AT_FDCWD, path);
        if (!info) return failed(path);
        if (S_ISDIR(info->st_mode)) {
            push(path);
            continue;
        }
        const bool isWanted = options_.include.empty() ||
                              matchesAny(path.substr(path.rfind('/') + 1), options_.include);
        // A pipe or a device would be waited for without end.
        if (S_ISREG(info->st_mode) && isWanted) return FolderFile{.path = Path(path)};
    }
    return std::exchange(failed_, std::nullopt);
}

}  // namespace velmo
