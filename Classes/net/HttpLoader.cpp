#include "net/HttpLoader.h"

#include <velmocore/url/URLSchemes.h>

#include <curl/curl.h>

#include <array>
#include <mutex>
#include <new>

#include "net/LoadErrors.h"
#include "net/Redirects.h"
#include "net/Transfer.h"

namespace velmo {
namespace detail {

struct CookieJar::Handle {
    CURLSH* share = nullptr;
    std::array<std::mutex, CURL_LOCK_DATA_LAST> mutexes;

    static void lock(CURL*, curl_lock_data data, curl_lock_access, void* self) {
        static_cast<Handle*>(self)->mutexes[data].lock();
    }
    static void unlock(CURL*, curl_lock_data data, void* self) {
        static_cast<Handle*>(self)->mutexes[data].unlock();
    }
};

CookieJar::CookieJar() : handle_(std::make_unique<Handle>()) {
    startLibrary();
    handle_->share = curl_share_init();
    if (!handle_->share) throw std::bad_alloc();
    curl_share_setopt(handle_->share, CURLSHOPT_USERDATA, handle_.get());
    curl_share_setopt(handle_->share, CURLSHOPT_LOCKFUNC, Handle::lock);
    curl_share_setopt(handle_->share, CURLSHOPT_UNLOCKFUNC, Handle::unlock);
    curl_share_setopt(handle_->share, CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
}

CookieJar::~CookieJar() { curl_share_cleanup(handle_->share); }

const std::shared_ptr<CookieJar>& CookieJar::shared() {
    static const auto jar = std::make_shared<CookieJar>();
    return jar;
}

HttpLoader::HttpLoader() {
    startLibrary();
    multi_ = curl_multi_init();
    if (!multi_) throw std::bad_alloc();
}

HttpLoader::~HttpLoader() { curl_multi_cleanup(multi_); }

const std::shared_ptr<HttpLoader>& HttpLoader::ofThisThread() {
    thread_local const auto loader = std::make_shared<HttpLoader>();
    return loader;
}

void HttpLoader::step(std::chrono::milliseconds longest) {
    curl_multi_poll(multi_, nullptr, 0, static_cast<int>(longest.count()), nullptr);
    int running = 0;
    curl_multi_perform(multi_, &running);
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi_, &left)) {
        if (message->msg != CURLMSG_DONE) continue;
        URLConnection* connection = nullptr;
        curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &connection);
        connection->transfer_->result = message->data.result;
        connection->detach();
    }
}

void HttpLoader::wakeUp() noexcept { curl_multi_wakeup(multi_); }

}  // namespace detail

using detail::urlError;

URLConnection::URLConnection(std::shared_ptr<detail::HttpLoader> loader, const URLRequest& request,
                             detail::LoadReceiver& receiver,
                             std::shared_ptr<detail::CookieJar> cookies)
    : loader_(std::move(loader)), receiver_(receiver), cookies_(std::move(cookies)) {
    begin(request);
}

URLConnection::~URLConnection() { cancel(); }

void URLConnection::begin(const URLRequest& request) {
    transfer_ = std::make_unique<detail::Transfer>(request);
    if (transfer_->answerWithoutLoading()) return;
    if (cookies_ && request.shouldHandleCookies) transfer_->useCookies(cookies_->handle().share);
    curl_easy_setopt(transfer_->handle(), CURLOPT_PRIVATE, this);
    if (curl_multi_add_handle(loader_->multi_, transfer_->handle()) != CURLM_OK)
        throw std::bad_alloc();
    isAttached_ = true;
}

void URLConnection::detach() noexcept {
    if (isAttached_) curl_multi_remove_handle(loader_->multi_, transfer_->handle());
    isAttached_ = false;
}

void URLConnection::cancel() noexcept {
    isOver_ = true;
    detach();
}

bool URLConnection::hasNews() const noexcept { return !isOver_ && transfer_->hasNews(); }

void URLConnection::dispatch() {
    if (!isOver_) tellResponse();
    if (!isOver_) tellData();
    if (!isOver_ && transfer_->result) end();
}

void URLConnection::tellResponse() {
    if (transfer_->isResponseToTell()) receiver_.didReceiveResponse(transfer_->tellableResponse());
}

void URLConnection::tellData() {
    if (transfer_->isDataToTell()) receiver_.didReceiveData(transfer_->takeData());
}

void URLConnection::end() {
    if (transfer_->failure) return fail(*transfer_->failure);
    if (transfer_->isRedirect()) return redirect();
    if (*transfer_->result != CURLE_OK)
        return fail(transfer_->wasRefused()
                        ? detail::Transfer::networkError()
                        : detail::errorOfCurl(*transfer_->result, transfer_->errorText()));
    endWell();
}

void URLConnection::endWell() {
    // What the server has confirmed is told only now, as it had to be asked first.
    if (transfer_->takeConfirmedAnswer()) {
        tellResponse();
        if (!isOver_) tellData();
        if (isOver_) return;
    }
    keepInCache();
    if (isOver_) return;
    isOver_ = true;
    receiver_.didFinishLoading();
}

void URLConnection::keepInCache() {
    if (transfer_->isCacheable() && receiver_.willCacheResponse()) transfer_->keep();
}

void URLConnection::redirect() {
    const URLRequest& former = transfer_->request();
    if (redirects_++ == former.limits.redirects)
        return fail(urlError(URLErrorHTTPTooManyRedirects, u"too many redirects"));
    const URLResponse response = *transfer_->response();
    const URLRequest next = detail::redirectedRequest(former, response);
    if (next.isAbsent())
        return fail(urlError(URLErrorRedirectToNonExistentLocation, u"redirect to no URL"));
    if (!isHTTPURL(next.url))
        return fail(urlError(URLErrorUnsupportedURL, u"redirect to neither http nor https"));
    const std::optional<URLRequest> accepted = receiver_.willSendRequest(next, response);
    if (isOver_) return;
    if (accepted && !accepted->isAbsent())
        begin(*accepted);
    else
        isOver_ = true;
}

void URLConnection::fail(const Error& error) {
    isOver_ = true;
    receiver_.didFailWithError(error);
}

}  // namespace velmo
