#include <velmocore/net/URLSession.h>
#include <velmocore/net/UserAgents.h>

#include <condition_variable>
#include <mutex>

#include "net/SessionLoop.h"
#include "platform/Assertion.h"

namespace velmo {
namespace {

/// An error of such a code stands for a status that tells of one.
constexpr std::int64_t LeastErrorStatus = 400;

/// Waits for a completion handler.
class Answer {
public:
    void give(DownloadedResponse&& response) {
        const std::lock_guard lock(mutex_);
        response_ = std::move(response);
        isGiven_ = true;
        // Under the lock: the waiting one destroys this as soon as it has what it wants.
        condition_.notify_one();
    }
    DownloadedResponse wait() {
        std::unique_lock lock(mutex_);
        condition_.wait(lock, [this] { return isGiven_; });
        return std::move(response_);
    }

private:
    std::mutex mutex_;
    std::condition_variable condition_;
    DownloadedResponse response_;
    bool isGiven_ = false;
};

}  // namespace

URLSession::URLSession() : URLSession(std::make_shared<detail::CookieJar>()) {}
URLSession::URLSession(std::shared_ptr<detail::CookieJar> cookies) : cookies_(std::move(cookies)) {}

void URLSession::dataTaskWithRequest(const URLRequest& request,
                                     DownloadCompletionHandler completionHandler) const {
    dataTaskWithRequest(request, nullptr, std::move(completionHandler));
}

void URLSession::dataTaskWithRequest(const URLRequest& request,
                                     std::function<bool(const URLResponse&)> acceptResponse,
                                     DownloadCompletionHandler completionHandler) const {
    detail::require(bool(completionHandler), "Classes/NSURLRequest+", __LINE__,
                    "completionHandler!=NULL");
    if (request.isAbsent()) return completionHandler({}, {}, {});
    detail::SessionLoop::shared().add(
        {request, cookies_, std::move(acceptResponse), std::move(completionHandler)});
}

DownloadedResponse URLSession::sendSynchronousRequest(const URLRequest& request) const {
    if (request.isAbsent()) return {};
    // The thread of the loop cannot wait for itself.
    if (detail::SessionLoop::shared().isThisThread()) return downloadSynchronousResponse(request);
    Answer answer;
    dataTaskWithRequest(request, [&](auto data, auto response, auto error) {
        answer.give({std::move(data), std::move(response), request, std::move(error)});
    });
    return answer.wait();
}

std::optional<Data> URLSession::sendThumbnailRequest(const URL& url,
                                                     const Referrer& referrer) const {
    if (url.isAbsent()) return {};
    DownloadedResponse answer = sendSynchronousRequest(
        requestWithURL(url, {.referrer = referrer,
                             .userAgent = downloadsUserAgent(),
                             .cachePolicy = RequestCachePolicy::ReturnCacheDataElseLoad}));
    if (!answer.data || answer.data->empty()) return {};
    if (answer.error && answer.error->code >= LeastErrorStatus) return {};
    return std::move(answer.data);
}

const URLSession& defaultSession() {
    static const URLSession session(detail::CookieJar::shared());
    return session;
}

DownloadedResponse sendSynchronousRequest(const URLRequest& request) {
    return defaultSession().sendSynchronousRequest(request);
}

}  // namespace velmo
