#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <velmocore/net/DownloadRequest.h>
#include <velmocore/net/SynchronousDownload.h>
#include <velmocore/net/URLRequest.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/url/URL.h>

namespace velmo {

namespace detail {
class CookieJar;
}

/// Downloads on the thread of the library that drives them all. Sessions differ in their cookies,
/// which they forget with their end; copies are the same session.
///
///     const auto answer = defaultSession().sendSynchronousRequest({});
///     answer.data.has_value();    // false
///
/// Any thread may use a session.
class VELMO_API URLSession {
public:
    /// A session of its own that keeps nothing.
    URLSession();

    /// Starts a request; see downloadAsynchronous() for when and where the handler is called.
    void dataTaskWithRequest(const URLRequest& request,
                             DownloadCompletionHandler completionHandler) const;
    /// The same, which ends with a response that is not accepted: its body is not loaded. Ours; the
    /// question is asked on the thread on which the handler is called.
    void dataTaskWithRequest(const URLRequest& request,
                             std::function<bool(const URLResponse& response)> acceptResponse,
                             DownloadCompletionHandler completionHandler) const;

    /// Starts a request and waits for its end. An absent request gives nothing. May be called by
    /// a completion handler.
    [[nodiscard]] DownloadedResponse sendSynchronousRequest(const URLRequest& request) const;

    /// The data of a thumbnail; absent if there is none, and without a URL. A cache may answer
    /// however old its answer is. The status is not looked at.
    [[nodiscard]] std::optional<Data> sendThumbnailRequest(const URL& url,
                                                           const Referrer& referrer = {}) const;

private:
    friend VELMO_API const URLSession& defaultSession();
    explicit URLSession(std::shared_ptr<detail::CookieJar> cookies);

    std::shared_ptr<detail::CookieJar> cookies_;
};

/// The session of the process, which shares its cookies with SynchronousDownload.
[[nodiscard]] VELMO_API const URLSession& defaultSession();

/// The same request on the default session.
[[nodiscard]] VELMO_API DownloadedResponse sendSynchronousRequest(const URLRequest& request);

}  // namespace velmo
