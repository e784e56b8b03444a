#include <velmocore/net/DownloadRequest.h>
#include <velmocore/net/URLSession.h>
#include <velmocore/platform/Log.h>
#include <velmocore/url/URLSchemes.h>

#include <fmt/core.h>

#include "platform/Assertion.h"

namespace velmo {
namespace {

/// What both kinds of options have in common. Absent if the URL cannot be loaded, which is logged.
template <class Options>
URLRequest preparedRequest(const URL& url, const Options& options) {
    URLRequest request;
    if (isLoadableURL(url))
        request = requestWithURL(
            url, {.referrer = options.referrer,
                  .userAgent = options.userAgent,
                  .cachePolicy = options.shouldUseCache
                                     ? RequestCachePolicy::UseProtocolCachePolicy
                                     : RequestCachePolicy::ReloadIgnoringLocalCacheData});
    if (request.isAbsent()) {
        log(fmt::format("Invalid download: {}", printed(url)));
        return {};
    }
    request.shouldHandleCookies = options.shouldHandleCookies;
    if (options.timeoutInterval > 0) request.timeoutInterval = options.timeoutInterval;
    request.limits = options.limits;
    request.cache = options.cache;
    request.certificateAuthorities = options.certificateAuthorities;
    return request;
}

URLRequest requestFor(const URL& url, const DownloadOptions& options) {
    URLRequest request = preparedRequest(url, options);
    if (isValidHTTPPost(options.httpPost)) {
        request.method = u"POST";
        setHTTPPost(request, options.httpPost, options.encoding);
    }
    if (!options.ifNoneMatch.isAbsent())
        request.headers.setValue(u"If-None-Match", options.ifNoneMatch);
    if (!options.ifModifiedSince.isAbsent())
        request.headers.setValue(u"If-Modified-Since", options.ifModifiedSince);
    return request;
}

}  // namespace

DownloadResult downloadSynchronous(const URL& url, const DownloadOptions& options) {
    const URLRequest request = requestFor(url, options);
    if (request.isAbsent()) return {};
    DownloadedResponse answer = downloadSynchronousResponse(request, options.delegate);
    const URLResponse response = answer.response.value_or(URLResponse{});
    return {.data = std::move(answer.data),
            .MIMEType = response.MIMEType,
            .encodingName = response.textEncodingName,
            .lastModified = lastModified(response),
            .statusCode = response.statusCode,
            .forward = answer.request.url == request.url ? URL() : answer.request.url,
            .error = std::move(answer.error),
            .expectedContentLength = response.expectedContentLength,
            .entityTag = response.headers.value(u"ETag")};
}

void downloadAsynchronous(const URL& url, const AsynchronousDownloadOptions& options,
                          DownloadCompletionHandler completionHandler) {
    detail::require(bool(completionHandler), "Classes/NSURLRequest+", __LINE__,
                    "completionHandler!=NULL");
    URLSession().dataTaskWithRequest(preparedRequest(url, options), std::move(completionHandler));
}

std::size_t numberOfDownloads() noexcept { return SynchronousDownload::numberOfDownloads(); }
std::size_t numberOfRunningDownloads() noexcept {
    return SynchronousDownload::numberOfRunningDownloads();
}

}  // namespace velmo
