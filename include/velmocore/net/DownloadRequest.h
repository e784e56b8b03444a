#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

#include <velmocore/net/SynchronousDownload.h>
#include <velmocore/net/URLRequest.h>
#include <velmocore/net/URLResponse.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Downloads in one call. Any thread may make any number of them.

/// What a URL is downloaded with.
struct DownloadOptions {
    Referrer referrer = {};                       ///< see setReferrer()
    String userAgent = {};                        ///< absent for libraryUserAgent()
    HTTPPost httpPost = {};                       ///< posted if isValidHTTPPost()
    TextEncoding encoding = UnknownTextEncoding;  ///< of its fields; unknown for UTF-8
    const DownloadDelegate* delegate = nullptr;   ///< not owned
    bool shouldUseCache = false;                  ///< whether a cache may answer
    bool shouldHandleCookies = false;             ///< whether cookies are kept and sent
    double timeoutInterval = 0;                   ///< seconds of silence; 0 for the usual 60

    // Ours.
    DownloadLimits limits = {};
    URLCache* cache = nullptr;         ///< used if shouldUseCache; see URLRequest
    Path certificateAuthorities = {};  ///< see URLRequest
    /// What the caller has already: the server answers 304 and no data if it is still the same.
    String ifNoneMatch = {};      ///< an entity tag
    String ifModifiedSince = {};  ///< the last modification as the server told it
};

/// What a download came to. After a failure it holds what came before.
struct DownloadResult {
    std::optional<Data> data;     ///< none if nothing came
    String MIMEType;              ///< in lower case; absent, as the next two, if it is not told
    String encodingName;          ///< the charset that the header names
    String lastModified;          ///< as the header has it
    std::int64_t statusCode = 0;  ///< of HTTP; 0 without an answer
    /// Where redirects led to, if that is another URL; else absent.
    URL forward;
    std::optional<Error> error;               ///< why it failed
    std::int64_t expectedContentLength = -1;  ///< in bytes; see URLResponse
    String entityTag;                         ///< ours
};

/// Downloads a URL and waits for it. Without data and without an error if the URL is not
/// isLoadableURL(), which is told to the log as "Invalid download: ". An answer of any status is
/// one: see statusCode.
///
///     const auto result = downloadSynchronous(URL::URLWithString(u"ftp://127.0.0.1/a"));
///     result.error->code == URLErrorUnsupportedURL;    // true
[[nodiscard]] VELMO_API DownloadResult downloadSynchronous(const URL& url,
                                                           const DownloadOptions& options = {});

/// Takes what a download came to.
using DownloadCompletionHandler = std::function<void(
    std::optional<Data> data, std::optional<URLResponse> response, std::optional<Error> error)>;

/// What a URL is downloaded with when nobody waits for it.
struct AsynchronousDownloadOptions {
    // As those of DownloadOptions.
    Referrer referrer = {};
    String userAgent = {};
    bool shouldUseCache = false;
    bool shouldHandleCookies = false;  ///< cookies of this download only
    double timeoutInterval = 0;        ///< seconds of silence; 0 for the usual 60

    // Ours; see DownloadOptions.
    DownloadLimits limits = {};
    URLCache* cache = nullptr;
    Path certificateAuthorities = {};
};
/// Starts to download and returns. The handler is called once, on a thread of the library, which
/// all such downloads share: it must not take long. It may start other downloads. At most 64 are
/// under way at once; others wait for their turn. The handlers of downloads that the end of the
/// program cuts off are not called. Without a URL that can be loaded the handler is called at once
/// with nothing, and "Invalid download: " is logged. A null handler ends the program.
VELMO_API void downloadAsynchronous(const URL& url, const AsynchronousDownloadOptions& options,
                                    DownloadCompletionHandler completionHandler);
inline void downloadAsynchronous(const URL& url, DownloadCompletionHandler completionHandler) {
    downloadAsynchronous(url, {}, std::move(completionHandler));
}

/// How many SynchronousDownload there are, and how many of them run.
[[nodiscard]] VELMO_API std::size_t numberOfDownloads() noexcept;
[[nodiscard]] VELMO_API std::size_t numberOfRunningDownloads() noexcept;

}  // namespace velmo
