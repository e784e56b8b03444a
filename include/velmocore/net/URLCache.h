#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include <velmocore/net/URLResponse.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>

namespace velmo {

/// An answer that is kept.
struct CachedURLResponse {
    URLResponse response;  ///< its head
    Data data;             ///< its body
    Date stored;           ///< when it came, or was last found to be still right
};

/// Answers kept in memory, the oldest of which go when there is no more room. Ours.
///
/// A request with a cache is answered by it as HTTP tells: an answer is kept if it is a whole
/// one, may be kept, is the same for all who ask, and if there is a way to tell how long it is
/// good; when it is not any more, the server is asked whether it still is (If-None-Match,
/// If-Modified-Since). Only plain GET requests are answered, without credentials, cookies or
/// ranges. What is kept is asked of the delegate's shouldCacheResponse.
///
///     URLCache cache(1'000'000);
///     cache.count();    // 0
///
/// Any thread may use a cache.
class VELMO_API URLCache {
public:
    /// With room for so many bytes.
    explicit URLCache(std::size_t capacity = std::size_t{1} << 25);
    ~URLCache();
    URLCache(const URLCache&) = delete;
    URLCache& operator=(const URLCache&) = delete;

    /// A copy of what is kept of a URL, whether it is still good or not; none if nothing is.
    [[nodiscard]] std::optional<CachedURLResponse> cachedResponse(const URL& url) const;
    /// Keeps an answer instead of the one that is there. An answer that is larger than the whole
    /// cache is not kept.
    void storeCachedResponse(const URL& url, CachedURLResponse answer);
    void removeCachedResponse(const URL& url);
    /// How many answers are kept.
    [[nodiscard]] std::size_t count() const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace velmo
