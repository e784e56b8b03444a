// What is to be done waits in a list, so that nothing recurses. Each pair of folders is merged
// once: with links that lead upwards, one folder can be reached by ever more paths.
#include <velmocore/system/FolderUpdating.h>

#include <fcntl.h>
#include <fmt/core.h>
#include <sys/xattr.h>

#include <array>
#include <cerrno>
#include <set>
#include <vector>

#include <velmocore/platform/Log.h>

#include "system/FileErrors.h"
#include "system/NewPlace.h"
#include "system/PathBytes.h"
#include "system/TreeCopy.h"

namespace velmo {
namespace {

using detail::FileCalls;
using detail::NewPlace;
using detail::Occupied;
using detail::Place;

/// Where the platform that has this mark keeps it: a bit in 32 bytes of an attribute.
constexpr const char* FinderInfo = "user.com.apple.FinderInfo";
constexpr std::size_t FinderFlags = 9;
constexpr std::uint8_t HiddenExtension = 0x10;

void hideExtension(const std::string& path) {
    std::array<std::uint8_t, 32> info = {};
    ::lgetxattr(path.c_str(), FinderInfo, info.data(), info.size());
    info[FinderFlags] |= HiddenExtension;
    // Not every file system keeps attributes, and a file is as good without this one.
    ::lsetxattr(path.c_str(), FinderInfo, info.data(), info.size(), 0);
}

bool isNewer(const struct stat& a, const struct stat& b) {
    return a.st_mtim.tv_sec != b.st_mtim.tv_sec ? a.st_mtim.tv_sec > b.st_mtim.tv_sec
                                                : a.st_mtim.tv_nsec > b.st_mtim.tv_nsec;
}

class Update {
public:
    explicit Update(UpdateOptions options) : options_(options) {}

    bool run(std::string from, std::string to) {
        folders_.push_back({std::move(from), std::move(to)});
        while (!folders_.empty()) {
            const Pair next = std::move(folders_.back());
            folders_.pop_back();
            if (isFirstTime(next)) merge(next);
        }
        return isRight_;
    }

private:
    struct Pair {
        std::string from, to;
    };

    bool isFirstTime(const Pair& pair) {
        const auto from = detail::infoBehindLinks(calls_, pair.from);
        const auto to = detail::infoBehindLinks(calls_, pair.to);
        return !from || !to ||
               merged_.insert({from->st_dev, from->st_ino, to->st_dev, to->st_ino}).second;
    }

    void merge(const Pair& folder) {
        const auto names = detail::namesInFolder(calls_, AT_FDCWD, folder.from);
        // What is no folder has no entries, which is nothing wrong.
        if (!names && errno != ENOTDIR) complain(folder.from);
        for (const std::string& name : names.value_or(std::vector<std::string>()))
            update({detail::joinedPath(folder.from, name), detail::joinedPath(folder.to, name)});
    }

    void update(const Pair& entry) {
        const auto there = detail::infoBehindLinks(calls_, entry.to);
        if (there && S_ISDIR(there->st_mode)) return folders_.push_back(entry);
        if ((!there || options_.overwrite || isOutdated(entry)) && !copy(entry, there.has_value()))
            return complain(entry.to);
        if (options_.hideFileExtensions) hide(entry);
    }

    bool isOutdated(const Pair& entry) const {
        const auto from = detail::infoOf(calls_, AT_FDCWD, entry.from);
        const auto to = detail::infoOf(calls_, AT_FDCWD, entry.to);
        return from && to && isNewer(*from, *to);
    }

    /// A file stays until its copy is there to replace it.
    bool copy(const Pair& entry, bool isReplaced) const {
        const Place from = detail::placeOf(calls_, entry.from);
        const Place to = from ? detail::placeOf(calls_, entry.to) : Place();
        if (!to) return false;
        NewPlace place(calls_, to.folder.number());
        if (!detail::copyTree(calls_, from.folder.number(), from.name, place)) return false;
        if (!isReplaced) return place.become(to.name, Occupied::Fails);
        if (place.become(to.name, Occupied::IsReplaced)) return true;
        // A folder cannot replace a file in one step.
        return errno == ENOTDIR && calls_.unlinkat(to.folder.number(), to.name.c_str(), 0) == 0 &&
               place.become(to.name, Occupied::Fails);
    }

    void hide(const Pair& entry) {
        const auto info = detail::infoBehindLinks(calls_, entry.to);
        if (!info) return;
        if (S_ISREG(info->st_mode)) hideExtension(entry.to);
        // A folder that was copied: all in it is up to date, and only marked.
        if (S_ISDIR(info->st_mode)) folders_.push_back(entry);
    }

    void complain(const std::string& path) {
        isRight_ = false;
        log(fmt::format("ERROR: Couldn't update path {}: {}", path,
                        detail::systemError(errno, path).text.utf8()));
    }

    UpdateOptions options_;
    FileCalls& calls_ = FileCalls::current();
    std::vector<Pair> folders_;
    std::set<std::array<std::uint64_t, 4>> merged_;
    bool isRight_ = true;
};

}  // namespace

bool updatePath(const Path& path, const Path& toPath, UpdateOptions options) {
    if (!detail::isUsable(path) || !detail::isUsable(toPath)) return false;
    return Update(options).run(path.bytes(), toPath.bytes());
}

}  // namespace velmo
