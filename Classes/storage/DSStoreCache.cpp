// Comments by path. Listing a folder asks for many in one folder, so each thread keeps the last
// store that it read.
#include "storage/DSStoreCache.h"

#include <atomic>
#include <chrono>
#include <optional>
#include <utility>

#include <velmocore/storage/DSStore.h>

namespace velmo {
namespace {

constexpr double SecondsKept = 60.0;

/// What a thread keeps.
struct ThreadDictionary {
    std::optional<DSStore> DSStoreCache;
    double DSStoreTime = 0;
};

ThreadDictionary& threadDictionary() {
    thread_local ThreadDictionary dictionary;
    return dictionary;
}

std::atomic<DSStore::SpotlightReader> spotlightReader = nullptr;

std::string_view withoutSlashesAtEnd(std::string_view path) {
    const std::size_t last = path.find_last_not_of('/');
    return path.substr(0, last == path.npos ? std::min<std::size_t>(path.size(), 1) : last + 1);
}

/// The folder, which may be empty, and the last component.
std::pair<std::string_view, std::string_view> split(std::string_view path) {
    path = withoutSlashesAtEnd(path);
    const std::size_t slash = path.find_last_of('/');
    if (slash == path.npos) return {{}, path};
    return {withoutSlashesAtEnd(path.substr(0, slash + 1)), path.substr(slash + 1)};
}

double secondsNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace

String detail::finderCommentAtPath(const Path& path, double now) {
    const auto [folder, name] = split(path.bytes());
    if (folder.empty()) return {};
    ThreadDictionary& kept = threadDictionary();
    const bool isFresh = kept.DSStoreCache && kept.DSStoreCache->directory().bytes() == folder &&
                         now - kept.DSStoreTime <= SecondsKept;
    if (!isFresh) {
        kept.DSStoreCache.reset();
        auto store = DSStore::storeWithDirectory(folder);
        if (!store) return DSStore::spotlightCommentAtPath(path);
        kept.DSStoreCache.emplace(std::move(*store));
        kept.DSStoreTime = now;
    }
    return kept.DSStoreCache->finderCommentForFilename(String::fromUTF8(name));
}

String DSStore::finderCommentAtPath(const Path& path) {
    return detail::finderCommentAtPath(path, secondsNow());
}

String DSStore::spotlightCommentAtPath(const Path& path) {
    const SpotlightReader reader = spotlightReader;
    return reader ? reader(path) : String();
}

void DSStore::setSpotlightReader(SpotlightReader reader) noexcept { spotlightReader = reader; }

void DSStore::invalidateFinderCommentsCache() { threadDictionary().DSStoreCache.reset(); }

}  // namespace velmo
