// The settings that make libcurl the loader that the library promises, and its callbacks.
//
// A callback only gathers. What goes beyond a limit is refused there and then, so that nothing is
// ever read that is not kept; refusing makes libcurl end the transfer. The bodies of redirects are
// read and dropped, so that the connection can go on, but not without end.
#include "net/Transfer.h"

#include <velmocore/net/UserAgents.h>
#include <velmocore/url/URLSchemes.h>

#include <algorithm>
#include <chrono>
#include <new>

#include "net/AddressCheck.h"
#include "net/CacheRules.h"
#include "net/LoadErrors.h"
#include "net/Redirects.h"
#include "platform/Ascii.h"

namespace velmo::detail {
namespace {

/// Bytes of the body of a redirect, which nobody sees.
constexpr std::size_t LargestDroppedBody = std::size_t{1} << 18;
/// Room that is made for a body because its server says how long it is, which may be a lie.
constexpr std::size_t LargestTrustedLength = std::size_t{1} << 20;
constexpr long BufferSize = 1L << 16;
constexpr std::int64_t NotModified = 304;

Date now() { return std::chrono::system_clock::now(); }

/// Whether units can stand in a line of a request, and nothing behind them be taken for more.
bool isLine(std::u16string_view units) {
    return std::ranges::none_of(units, [](char16_t unit) { return unit < u' ' && unit != u'\t'; });
}

/// A name of a field or a method.
bool isToken(std::u16string_view units) {
    return !units.empty() && std::ranges::all_of(units, [](char16_t unit) {
        return ascii::isLetterOrDigit(unit) ||
               std::u16string_view(u"!#$%&'*+-.^_`|~").find(unit) != std::u16string_view::npos;
    });
}

std::string lineOf(const HTTPHeader& header) {
    // With a semicolon it is a field without a value; with a colon it would be left out.
    if (header.value.isEmpty()) return header.name.utf8() + ';';
    return header.name.utf8() + ": " + header.value.utf8();
}

}  // namespace

void startLibrary() {
    static const CURLcode status = curl_global_init(CURL_GLOBAL_DEFAULT);
    if (status != CURLE_OK) throw std::bad_alloc();
}

Transfer::Transfer(const URLRequest& request) : request_(request), handle_(curl_easy_init()) {
    if (!handle_) throw std::bad_alloc();
}

bool Transfer::answerWithoutLoading() {
    if (!isHTTPURL(request_.url))
        failure = urlError(URLErrorUnsupportedURL, u"neither http nor https");
    else if (!isToken(request_.method))
        failure = urlError(URLErrorBadURL, u"no method of HTTP");
    else if (!mayReach(networksOfHostName(request_.url)))
        failure = networkError();
    if (failure) result = CURLE_OK;
    usesCache_ = !failure && canUseCache(request_);
    if (failure || (usesCache_ && useCache())) return true;
    prepare();
    return false;
}

/// Whether the cache answers. If it has an answer that may be out of date, the server is asked.
bool Transfer::useCache() {
    if (request_.cachePolicy == RequestCachePolicy::ReloadIgnoringLocalCacheData) return false;
    auto kept = request_.cache->cachedResponse(request_.url);
    if (!kept) return false;
    if (isUsable(*kept, request_.cachePolicy, now())) {
        answer(std::move(*kept));
        result = CURLE_OK;
        return true;
    }
    URLRequest asking = request_;
    if (addValidators(asking, kept->response)) {
        request_.headers = asking.headers;
        kept_ = std::move(kept);
    }
    return false;
}

void Transfer::answer(CachedURLResponse&& kept) {
    response_ = std::move(kept.response);
    data_ = std::move(kept.data);
}

bool Transfer::takeConfirmedAnswer() {
    if (!kept_ || !response_ || response_->statusCode != NotModified) return false;
    CachedURLResponse answered = confirmed(std::move(*kept_), *response_, now());
    kept_.reset();
    request_.cache->storeCachedResponse(request_.url, answered);
    answer(std::move(answered));
    return true;
}

void Transfer::keep() {
    request_.cache->storeCachedResponse(request_.url, {*response_, std::move(copy_), now()});
}

void Transfer::prepare() {
    CURL* const handle = handle_.get();
    const std::string url = request_.url.absoluteString().utf8();
    curl_easy_setopt(handle, CURLOPT_URL, url.substr(0, url.find('#')).c_str());
    curl_easy_setopt(handle, CURLOPT_PATH_AS_IS, 1L);
    curl_easy_setopt(handle, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, errorText_.data());
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, takeBody);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, takeHeader);
    curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(handle, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    prepareHeaders();
    prepareMethod();
    prepareLimits();
}

void Transfer::prepareLimits() {
    CURL* const handle = handle_.get();
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, BufferSize);
    // A name that is still being resolved does not hold up who gives the load up.
    curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
    if (request_.limits.networks != AllNetworks) prepareNetworks();
    if (request_.certificateAuthorities.isAbsent()) return;
    curl_easy_setopt(handle, CURLOPT_CAINFO, request_.certificateAuthorities.c_str());
    curl_easy_setopt(handle, CURLOPT_CAPATH, nullptr);
}

/// The address is looked at twice: when a connection is made, so that nothing is sent to a wrong
/// one, and when a request is about to go out, as that may use a connection which another one made
/// that may go anywhere.
void Transfer::prepareNetworks() {
    CURL* const handle = handle_.get();
    if (hasProxy(request_.url)) {
        curl_easy_setopt(handle, CURLOPT_NOPROXY, "");
        return;
    }
    curl_easy_setopt(handle, CURLOPT_PROXY, "");
    curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, openSocket);
    curl_easy_setopt(handle, CURLOPT_OPENSOCKETDATA, this);
    curl_easy_setopt(handle, CURLOPT_PREREQFUNCTION, checkAddress);
    curl_easy_setopt(handle, CURLOPT_PREREQDATA, this);
}

curl_socket_t Transfer::openSocket(void* self, curlsocktype, curl_sockaddr* address) {
    if (!static_cast<Transfer*>(self)->mayReach(networkOf(address->addr))) return CURL_SOCKET_BAD;
    return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

int Transfer::checkAddress(void* self, char* address, char*, int, int) {
    const bool isRight = static_cast<Transfer*>(self)->mayReach(networkOfNumbers(address));
    return isRight ? CURL_PREREQFUNC_OK : CURL_PREREQFUNC_ABORT;
}

Error Transfer::networkError() {
    return urlError(URLErrorCannotConnectToHost, u"in a network that may not be reached");
}

bool Transfer::mayReach(NetworkKinds kind) {
    if ((request_.limits.networks & kind) != 0) return true;
    wasRefused_ = true;
    return false;
}

void Transfer::prepareHeaders() {
    curl_slist* list = nullptr;
    const auto append = [&](const std::string& line) {
        list = curl_slist_append(list, line.c_str());
        if (!list) throw std::bad_alloc();
        static_cast<void>(fields_.release());
        fields_.reset(list);
    };
    append("Expect:");  // which would make servers wait that do not know it
    for (const HTTPHeader& header : request_.headers.all())
        if (isToken(header.name) && isLine(header.value)) append(lineOf(header));
    curl_easy_setopt(handle_.get(), CURLOPT_HTTPHEADER, list);
    curl_easy_setopt(handle_.get(), CURLOPT_USERAGENT, libraryUserAgent().utf8().c_str());
}

void Transfer::prepareMethod() {
    CURL* const handle = handle_.get();
    const std::string method = request_.method.utf8();
    if (request_.body || method == "POST") {
        const Data& body = request_.body ? *request_.body : request_.body.emplace();
        curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
        curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body.empty() ? "" : charsOf(body).data());
    }
    if (method == "HEAD")
        curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
    else if (method != (request_.body ? "POST" : "GET"))
        curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, method.c_str());
}

void Transfer::useCookies(CURLSH* share) {
    curl_easy_setopt(handle_.get(), CURLOPT_SHARE, share);
    curl_easy_setopt(handle_.get(), CURLOPT_COOKIEFILE, "");
}

bool Transfer::hasNews() const noexcept {
    return result.has_value() || isResponseToTell() || isDataToTell();
}

bool Transfer::isResponseToTell() const noexcept {
    const bool isAwaited = kept_ && response_ && response_->statusCode == NotModified;
    return response_ && !isResponseTold_ && !isRedirect_ && !isAwaited;
}

const URLResponse& Transfer::tellableResponse() noexcept {
    isResponseTold_ = true;
    return *response_;
}

std::size_t Transfer::takeHeader(char* bytes, std::size_t, std::size_t count, void* self) {
    try {
        return static_cast<Transfer*>(self)->addHeader({bytes, count}) ? count : 0;
    } catch (...) {
        return 0;  // no memory, which libcurl tells as an error of writing
    }
}

std::size_t Transfer::takeBody(char* bytes, std::size_t, std::size_t count, void* self) {
    try {
        const Bytes piece(reinterpret_cast<const std::uint8_t*>(bytes), count);
        return static_cast<Transfer*>(self)->addBody(piece) ? count : 0;
    } catch (...) {
        return 0;
    }
}

bool Transfer::exceed(const char16_t* text) {
    failure = urlError(URLErrorDataLengthExceedsMaximum, text);
    data_ = {};
    return false;
}

bool Transfer::addHeader(std::string_view line) {
    headerBytes_ += line.size();
    if (headerBytes_ > request_.limits.header) return exceed(u"header too large");
    if (response_) return true;  // behind the body
    head_ += line;
    return line != "\r\n" && line != "\n" ? true : endHead();
}

bool Transfer::endHead() {
    auto head = responseHeadOfBytes(std::exchange(head_, {}));
    // One that only tells to go on is not the answer.
    if (!head || (head->statusCode >= 100 && head->statusCode < 200)) return true;
    response_ = responseOfHead(request_.url, std::move(*head));
    isRedirect_ = request_.followsRedirects && velmo::detail::isRedirect(*response_);
    const std::int64_t expected = response_->expectedContentLength;
    if (isRedirect_ || request_.method == u"HEAD") return true;
    if (expected > 0 && static_cast<std::uint64_t>(expected) > request_.limits.body)
        return exceed(u"body too large");
    isCopied_ = usesCache_ && isKeepable(*response_, now());
    if (expected > 0)
        data_.reserve(std::min(static_cast<std::size_t>(expected), LargestTrustedLength));
    return true;
}

bool Transfer::addBody(Bytes bytes) {
    bodyBytes_ += bytes.size();
    if (isRedirect_) return bodyBytes_ <= LargestDroppedBody;
    if (bodyBytes_ > request_.limits.body) return exceed(u"body too large");
    data_.insert(data_.end(), bytes.begin(), bytes.end());
    if (isCopied_) copy_.insert(copy_.end(), bytes.begin(), bytes.end());
    return true;
}

}  // namespace velmo::detail
