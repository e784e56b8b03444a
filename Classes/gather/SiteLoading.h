// The requests of a crawl, and what servers answer.
#pragma once

#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>

#include <velmocore/net/URLSession.h>
#include <velmocore/platform/Date.h>

#include "gather/SiteHosts.h"

namespace velmo::detail {

/// What came of a request.
struct SiteAnswer {
    Host* host = nullptr;
    PageID id = 0;       ///< of the page
    String server = {};  ///< whose robots.txt it is; absent for a page
    std::optional<Data> data = {};
    std::optional<URLResponse> response = {};
    std::optional<Error> error = {};

    /// 0 if there was none.
    [[nodiscard]] std::int64_t status() const { return response ? response->statusCode : 0; }
};

/// Answers until somebody takes them. They may come when nobody is interested any more.
class SiteAnswers {
public:
    void add(SiteAnswer&& answer);
    [[nodiscard]] std::deque<SiteAnswer> takeAll();
    /// Waits for one, but not for longer than so many seconds.
    void wait(double seconds);

private:
    std::mutex mutex_;
    std::condition_variable condition_;
    std::deque<SiteAnswer> answers_;
};

/// What a store knows of a page that may be the same still.
struct KnownVersion {
    String entityTag = {}, lastModified = {};
};

class SiteLoading {
public:
    SiteLoading(const std::vector<URL>& starts, const SiteOptions& options);

    /// Asks for a page, or for the rules of its server. The answer comes later.
    void loadPage(Host& host, PageID id, const URL& url, const KnownVersion& known);
    void loadRules(Host& host, const URL& url);
    [[nodiscard]] bool isFull() const { return underWay_ >= most_; }
    [[nodiscard]] bool isIdle() const { return underWay_ == 0; }
    [[nodiscard]] std::deque<SiteAnswer> takeAnswers();
    void wait(double seconds) { answers_->wait(seconds); }

private:
    [[nodiscard]] URLRequest requestFor(const URL& url) const;
    void load(const URLRequest& request, SiteAnswer&& question);

    const SiteOptions& options_;
    const std::size_t most_;
    NetworkKinds networks_ = PublicNetwork;
    std::map<String, std::pair<String, String>> credentials_ = {};  ///< by server
    std::shared_ptr<SiteAnswers> answers_;
    URLSession session_ = {};
    std::size_t underWay_ = 0;
};

/// What a crawl calls itself: the library, and how to reach who runs it.
[[nodiscard]] String agentOf(const SiteOptions& options);
/// The name by which robots.txt and pages know it.
inline constexpr std::u16string_view RobotsName = u"velmo";

/// Whether it is worth while to load the body of a response: all but what is no page.
[[nodiscard]] bool isReadable(const URLResponse& response);
/// What came, by what it is and by what its server says: a page, a text, or binary.
[[nodiscard]] ContentKind kindOfAnswer(const SiteAnswer& answer);
/// Where a response sends its reader; absent if it does not.
[[nodiscard]] URL redirectOf(const URL& url, const URLResponse& response);
/// How many seconds the server wants to be left alone; none if it does not tell.
[[nodiscard]] std::optional<double> retryAfter(const URLResponse& response, Date now);

}  // namespace velmo::detail
