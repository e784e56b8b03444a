// What a download is made of, whether a caller waits for it or a thread of the library.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "net/HttpLoader.h"

namespace velmo::detail {

/// The fields of a download and what happens to them while it loads.
class DownloadTask final : public LoadReceiver {
public:
    using Clock = std::chrono::steady_clock;

    /// How often a running download looks around, at the least.
    static constexpr std::chrono::milliseconds PollInterval{20};

    /// What answers hooks and hands itself to them; both may be null.
    DownloadTask(const DownloadDelegate* delegate, SynchronousDownload* owner)
        : _delegate(delegate), owner_(owner) {}

    void start(std::shared_ptr<HttpLoader> loader, const URLRequest& request,
               std::shared_ptr<CookieJar> cookies);
    /// Takes in what has come, and cancels after a silence that is too long or when a hook says
    /// so. False when all is over.
    bool poll();
    /// Until when it may be silent, or take at all.
    [[nodiscard]] Clock::time_point deadline() const;
    void cancel();
    void cancelWithError(const std::optional<Error>& error);
    void setResponse(const std::optional<URLResponse>& response);
    void setRequest(const URLRequest& request);

    std::optional<URLRequest> willSendRequest(const URLRequest& request,
                                              const URLResponse& redirectResponse) override;
    void didReceiveResponse(const URLResponse& response) override;
    void didReceiveData(Data&& data) override;
    bool willCacheResponse() override;
    void didFinishLoading() override;
    void didFailWithError(const Error& error) override;

    const DownloadDelegate* const _delegate;
    URLRequest _request = {};
    std::shared_ptr<URLConnection> _connection = {};
    std::optional<URLResponse> _response = {};
    std::optional<Data> _resourceData = {};
    std::optional<Error> _error = {};
    bool _running = false, _done = false;
    Clock::time_point _lastNetworkActivity = {};
    /// Without a delegate: false for a response ends it.
    std::function<bool(const URLResponse& response)> accepts = {};

private:
    using Hook = DownloadDelegate::Hook DownloadDelegate::*;

    /// What a hook says; without it what is usual.
    bool ask(Hook hook, bool usual, Error& error);
    void cancelUnless(Hook hook);
    bool isSilentTooLong() const;

    SynchronousDownload* const owner_;
    Clock::time_point start_ = {};
};

}  // namespace velmo::detail
