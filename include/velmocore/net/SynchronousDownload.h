#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

#include <velmocore/net/URLRequest.h>
#include <velmocore/net/URLResponse.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>

namespace velmo {

class SynchronousDownload;
class URLConnection;

namespace detail {
class DownloadTask;
}

/// What a download asks its caller on the way. All hooks are optional; they are called on the
/// thread that runs the download, and may throw, which ends it. Each gets the download, whose
/// fields tell how far it is, and an error that it may fill in if it ends the download.
///
///     DownloadDelegate delegate;
///     delegate.acceptResponse = [](SynchronousDownload& download, Error&) {
///         return download.response()->MIMEType == u"text/html";
///     };
struct DownloadDelegate {
    /// What is called; each field tells when, and what its answer means.
    using Hook = std::function<bool(SynchronousDownload& download, Error& error)>;

    /// Asked at least every 0.02 seconds, so it must be cheap; true cancels.
    Hook shouldCancelConnection;
    /// On a redirect, with the response that asks for it and the new request as fields of the
    /// download; false cancels.
    Hook acceptRedirectResponse;
    /// On a response; false cancels.
    Hook acceptResponse;
    /// After each piece of data, all that came is in resourceData(); false cancels.
    Hook shouldContinueDownloadingRequest;
    /// Before the answer is kept in the cache of the request; true keeps it. Without this hook
    /// nothing is kept.
    std::function<bool(SynchronousDownload& download)> shouldCacheResponse;
};

/// A download that blocks its caller.
///
/// Loading starts when it is made. run() then waits for its end, for a cancelling hook, or for
/// a silence longer than the timeout of the request: a slow server is waited for as long as it
/// sends anything. What came until then stays there, with the error. The downloads of one thread
/// keep connections open for each other.
///
/// Only http and https are loaded, after redirects too; certificates are checked. An answer beyond
/// the limits of the request is dropped: resourceData() is then absent, and the error
/// URLErrorDataLengthExceedsMaximum. Proxies are those of the environment (http_proxy, no_proxy).
/// An absent request loads nothing.
///
///     SynchronousDownload download(requestWithURL(URL::URLWithString(u"file:///etc/passwd")));
///     download.run();
///     download.error()->code == URLErrorUnsupportedURL;    // true
///
/// One thread uses a download; any number of them may be used at once.
class VELMO_API SynchronousDownload {
public:
    /// The delegate is not owned and must outlive the download.
    explicit SynchronousDownload(const URLRequest& request,
                                 const DownloadDelegate* delegate = nullptr);
    ~SynchronousDownload();
    SynchronousDownload(const SynchronousDownload&) = delete;
    SynchronousDownload& operator=(const SynchronousDownload&) = delete;

    /// How many downloads there are, and how many of them run, in all threads.
    [[nodiscard]] static std::size_t numberOfDownloads() noexcept;
    [[nodiscard]] static std::size_t numberOfRunningDownloads() noexcept;

    /// Waits for the end; to be called once. Throws nothing.
    void run() noexcept;
    /// Ends the load from a hook, with an error or without one; what came stays there.
    void cancel();
    void cancelWithError(const std::optional<Error>& error);
    /// Whether run() is under way.
    [[nodiscard]] bool running() const noexcept;
    /// Whether the load has ended or was cancelled.
    [[nodiscard]] bool done() const noexcept;

    /// The present request: that of the last redirect.
    [[nodiscard]] const URLRequest& request() const noexcept VELMO_LIFETIME;
    /// The load itself; null when it has ended.
    [[nodiscard]] const URLConnection* connection() const noexcept VELMO_LIFETIME;
    /// What came so far; absent before the first piece of it.
    [[nodiscard]] const std::optional<Data>& resourceData() const noexcept VELMO_LIFETIME;
    [[nodiscard]] const std::optional<URLResponse>& response() const noexcept VELMO_LIFETIME;
    [[nodiscard]] const std::optional<Error>& error() const noexcept VELMO_LIFETIME;

    /// An absent request or response is ignored. A response restarts the timeout.
    void setRequest(const URLRequest& request);
    void setResponse(const std::optional<URLResponse>& response);
    void setError(const std::optional<Error>& error);

private:
    friend struct DownloadedResponse downloadSynchronousResponse(const URLRequest& request,
                                                                 const DownloadDelegate* delegate);

    std::unique_ptr<detail::DownloadTask> task_;
};

/// What a download came to.
struct DownloadedResponse {
    std::optional<Data> data;  ///< what came, after a failure too
    std::optional<URLResponse> response;
    URLRequest request;  ///< the last one that is known; absent if there was none
    std::optional<Error> error;
};

/// Makes a download, runs it and gives its fields.
[[nodiscard]] VELMO_API DownloadedResponse
downloadSynchronousResponse(const URLRequest& request, const DownloadDelegate* delegate = nullptr);

}  // namespace velmo
