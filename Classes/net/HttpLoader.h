// Loads over HTTP: the one place that knows libcurl.
//
// A loader drives any number of connections, all on one thread. What libcurl hands over while it
// works is only gathered; the receiver is told afterwards, by dispatch(). So a receiver may
// cancel, start and even run other loads from within what it is told, which libcurl forbids to
// its own callbacks.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include <velmocore/net/SynchronousDownload.h>
#include <velmocore/net/URLRequest.h>
#include <velmocore/net/URLResponse.h>
#include <velmocore/platform/Error.h>

namespace velmo::detail {

class Transfer;

/// Takes what a connection has to tell, in the order of these calls.
class LoadReceiver {
public:
    virtual ~LoadReceiver() = default;

    /// A redirect. The connection goes on with the request that is given back, or not at all.
    virtual std::optional<URLRequest> willSendRequest(const URLRequest& request,
                                                      const URLResponse& redirectResponse) = 0;
    virtual void didReceiveResponse(const URLResponse& response) = 0;
    virtual void didReceiveData(Data&& data) = 0;
    /// The whole answer may be kept in the cache of the request.
    virtual bool willCacheResponse() = 0;
    virtual void didFinishLoading() = 0;
    virtual void didFailWithError(const Error& error) = 0;
};

/// Cookies in memory. Any threads may share them.
class CookieJar {
public:
    CookieJar();
    ~CookieJar();
    CookieJar(const CookieJar&) = delete;
    CookieJar& operator=(const CookieJar&) = delete;

    /// The jar of the process.
    static const std::shared_ptr<CookieJar>& shared();

    struct Handle;
    Handle& handle() const { return *handle_; }

private:
    std::unique_ptr<Handle> handle_;
};

/// Drives the connections of one thread, which share what stays open to their servers.
class HttpLoader {
public:
    HttpLoader();
    ~HttpLoader();
    HttpLoader(const HttpLoader&) = delete;
    HttpLoader& operator=(const HttpLoader&) = delete;

    /// That of the calling thread, made at its first use.
    static const std::shared_ptr<HttpLoader>& ofThisThread();

    /// Waits until something happens on any connection, so long at the most, and takes it in.
    void step(std::chrono::milliseconds longest);
    /// Ends the waiting; the one operation that another thread may call.
    void wakeUp() noexcept;

private:
    friend class velmo::URLConnection;
    void* multi_;
};

}  // namespace velmo::detail

namespace velmo {

/// One load, with all of its redirects.
class URLConnection {
public:
    /// Starts to load. The receiver must outlive the connection or its end.
    URLConnection(std::shared_ptr<detail::HttpLoader> loader, const URLRequest& request,
                  detail::LoadReceiver& receiver, std::shared_ptr<detail::CookieJar> cookies);
    ~URLConnection();
    URLConnection(const URLConnection&) = delete;
    URLConnection& operator=(const URLConnection&) = delete;

    /// Ends it; nothing is told any more.
    void cancel() noexcept;
    /// Tells the receiver what has come since the last time. May be cancelled meanwhile, but not
    /// destroyed.
    void dispatch();
    /// Whether there is something to tell.
    [[nodiscard]] bool hasNews() const noexcept;

private:
    friend class detail::HttpLoader;

    void begin(const URLRequest& request);
    void detach() noexcept;
    void tellResponse();
    void tellData();
    void end();
    void endWell();
    void keepInCache();
    void redirect();
    void fail(const Error& error);

    std::shared_ptr<detail::HttpLoader> loader_;
    detail::LoadReceiver& receiver_;
    std::shared_ptr<detail::CookieJar> cookies_;
    std::unique_ptr<detail::Transfer> transfer_;
    std::size_t redirects_ = 0;
    bool isAttached_ = false, isOver_ = false;
};

}  // namespace velmo
