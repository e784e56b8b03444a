#include "net/DownloadTask.h"

#include <algorithm>

#include "net/LoadErrors.h"

namespace velmo::detail {
namespace {

using Seconds = std::chrono::duration<double>;

/// The longest timeout that a clock can add up, about three years.
constexpr double LongestTimeout = 1e8;

/// Whatever is not above 0, a value that is no number too, is no time at all.
DownloadTask::Clock::duration durationOf(double seconds) {
    const Seconds time(seconds > 0 ? std::min(seconds, LongestTimeout) : 0);
    return std::chrono::duration_cast<DownloadTask::Clock::duration>(time);
}

std::optional<Error> given(Error&& error) {
    const bool isFilled = error.code != 0 || !error.domain.isAbsent() || !error.text.isAbsent();
    return isFilled ? std::optional(std::move(error)) : std::nullopt;
}

}  // namespace

void DownloadTask::start(std::shared_ptr<HttpLoader> loader, const URLRequest& request,
                         std::shared_ptr<CookieJar> cookies) {
    _request = request;
    _lastNetworkActivity = start_ = Clock::now();
    if (request.isAbsent()) return;
    _connection =
        std::make_shared<URLConnection>(std::move(loader), _request, *this, std::move(cookies));
}

bool DownloadTask::poll() {
    // A hook may give the connection up while it is at work.
    if (const auto connection = _connection) connection->dispatch();
    if (!_connection) return false;
    if (isSilentTooLong()) {
        cancelWithError(urlError(URLErrorTimedOut, u"timed out"));
        return false;
    }
    Error error;
    if (ask(&DownloadDelegate::shouldCancelConnection, false, error)) {
        cancelWithError(given(std::move(error)));
        return false;
    }
    return !_done;
}

DownloadTask::Clock::time_point DownloadTask::deadline() const {
    const auto deadline = _lastNetworkActivity + durationOf(_request.timeoutInterval);
    const double seconds = _request.limits.seconds;
    return seconds > 0 ? std::min(deadline, start_ + durationOf(seconds)) : deadline;
}

bool DownloadTask::isSilentTooLong() const { return Clock::now() > deadline(); }

void DownloadTask::cancel() {
    if (_connection) _connection->cancel();
    _connection.reset();
    _done = true;
}

void DownloadTask::cancelWithError(const std::optional<Error>& error) {
    cancel();
    if (error) _error = error;
}

void DownloadTask::setRequest(const URLRequest& request) {
    if (!request.isAbsent()) _request = request;
}

void DownloadTask::setResponse(const std::optional<URLResponse>& response) {
    if (!response) return;
    _response = response;
    _lastNetworkActivity = Clock::now();
}

bool DownloadTask::ask(Hook hook, bool usual, Error& error) {
    if (!_delegate || !(_delegate->*hook)) return usual;
    return (_delegate->*hook)(*owner_, error);
}

void DownloadTask::cancelUnless(Hook hook) {
    Error error;
    if (!ask(hook, true, error)) cancelWithError(given(std::move(error)));
}

std::optional<URLRequest> DownloadTask::willSendRequest(const URLRequest& request,
                                                        const URLResponse& redirectResponse) {
    setResponse(redirectResponse);
    setRequest(request);
    cancelUnless(&DownloadDelegate::acceptRedirectResponse);
    return _connection ? std::optional(_request) : std::nullopt;
}

void DownloadTask::didReceiveResponse(const URLResponse& response) {
    setResponse(response);
    cancelUnless(&DownloadDelegate::acceptResponse);
    if (accepts && !accepts(response)) cancel();
}

void DownloadTask::didReceiveData(Data&& data) {
    _lastNetworkActivity = Clock::now();
    if (_resourceData)
        _resourceData->insert(_resourceData->end(), data.begin(), data.end());
    else
        _resourceData = std::move(data);
    cancelUnless(&DownloadDelegate::shouldContinueDownloadingRequest);
}

bool DownloadTask::willCacheResponse() {
    return _delegate && _delegate->shouldCacheResponse && _delegate->shouldCacheResponse(*owner_);
}

void DownloadTask::didFinishLoading() { _done = true; }

void DownloadTask::didFailWithError(const Error& error) {
    // Half of what is too large is not an answer that anybody could use.
    if (error.code == URLErrorDataLengthExceedsMaximum) _resourceData.reset();
    _error = error;
    _done = true;
}

}  // namespace velmo::detail
