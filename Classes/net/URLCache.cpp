#include <velmocore/net/URLCache.h>

#include <list>
#include <mutex>
#include <unordered_map>

namespace velmo {
namespace {

struct Entry {
    URL url;
    CachedURLResponse answer;

    /// About what it takes; so that many empty answers do not come for nothing.
    std::size_t cost() const {
        std::size_t units = url.absoluteString().length();
        for (const auto& [name, value] : answer.response.headers.all())
            units += name.length() + value.length() + sizeof(HTTPHeader);
        return sizeof(Entry) + 2 * units + answer.data.size();
    }
};

}  // namespace

struct URLCache::State {
    using Place = std::list<Entry>::iterator;

    explicit State(std::size_t room) : capacity(room) {}

    const std::size_t capacity;
    mutable std::mutex mutex = {};
    std::list<Entry> entries = {};  // the newest first
    std::unordered_map<URL, Place> places = {};
    std::size_t cost = 0;

    void remove(Place place) {
        cost -= place->cost();
        places.erase(place->url);
        entries.erase(place);
    }
    void remove(const URL& url) {
        if (const auto found = places.find(url); found != places.end()) remove(found->second);
    }
};

URLCache::URLCache(std::size_t capacity) : state_(std::make_unique<State>(capacity)) {}
URLCache::~URLCache() = default;

std::optional<CachedURLResponse> URLCache::cachedResponse(const URL& url) const {
    const std::lock_guard lock(state_->mutex);
    const auto found = state_->places.find(url);
    if (found == state_->places.end()) return {};
    return found->second->answer;
}

void URLCache::storeCachedResponse(const URL& url, CachedURLResponse answer) {
    const std::lock_guard lock(state_->mutex);
    state_->remove(url);
    Entry entry = {url, std::move(answer)};
    if (entry.cost() > state_->capacity) return;
    state_->cost += entry.cost();
    state_->entries.push_front(std::move(entry));
    state_->places[url] = state_->entries.begin();
    while (state_->cost > state_->capacity) state_->remove(std::prev(state_->entries.end()));
}

void URLCache::removeCachedResponse(const URL& url) {
    const std::lock_guard lock(state_->mutex);
    state_->remove(url);
}

std::size_t URLCache::count() const {
    const std::lock_guard lock(state_->mutex);
    return state_->entries.size();
}

}  // namespace velmo
