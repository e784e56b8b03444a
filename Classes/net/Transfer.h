// One request and its answer on a handle of libcurl: what is sent, and what came of it so far.
#pragma once

#include <curl/curl.h>

#include <array>
#include <memory>
#include <optional>
#include <string>

#include <velmocore/net/URLCache.h>
#include <velmocore/net/URLRequest.h>
#include <velmocore/net/URLResponse.h>
#include <velmocore/platform/Error.h>

namespace velmo::detail {

/// Makes libcurl ready, once.
void startLibrary();

class Transfer {
public:
    explicit Transfer(const URLRequest& request);
    ~Transfer() = default;
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    /// Whether there is nothing to send: the request cannot be, or the cache has the answer.
    bool answerWithoutLoading();
    void useCookies(CURLSH* share);
    [[nodiscard]] CURL* handle() noexcept { return handle_.get(); }
    [[nodiscard]] const URLRequest& request() const noexcept { return request_; }
    [[nodiscard]] const std::optional<URLResponse>& response() const noexcept { return response_; }
    [[nodiscard]] const char* errorText() const noexcept { return errorText_.data(); }

    /// Whether an address was refused, as it is in a network that the request may not reach.
    [[nodiscard]] bool wasRefused() const noexcept { return wasRefused_; }
    [[nodiscard]] static Error networkError();

    [[nodiscard]] bool isRedirect() const noexcept { return isRedirect_; }
    [[nodiscard]] bool hasNews() const noexcept;
    [[nodiscard]] bool isResponseToTell() const noexcept;
    [[nodiscard]] const URLResponse& tellableResponse() noexcept;
    [[nodiscard]] bool isDataToTell() const noexcept { return !data_.empty(); }
    [[nodiscard]] Data takeData() noexcept { return std::exchange(data_, {}); }

    /// Puts the answer that is kept in the place of the server's, if that has confirmed it.
    bool takeConfirmedAnswer();
    [[nodiscard]] bool isCacheable() const noexcept { return isCopied_; }
    /// Keeps the answer in the cache.
    void keep();

    std::optional<CURLcode> result = {};  ///< when it has ended
    std::optional<Error> failure = {};    ///< one that libcurl does not know of

private:
    static std::size_t takeHeader(char* bytes, std::size_t size, std::size_t count, void* self);
    static std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* self);
    static curl_socket_t openSocket(void* self, curlsocktype purpose, curl_sockaddr* address);
    static int checkAddress(void* self, char* address, char* own, int port, int ownPort);
    bool mayReach(NetworkKinds kind);
    bool addHeader(std::string_view line);
    bool endHead();
    bool addBody(Bytes bytes);
    bool exceed(const char16_t* text);

    bool useCache();
    void answer(CachedURLResponse&& kept);
    void prepare();
    void prepareHeaders();
    void prepareMethod();
    void prepareLimits();
    void prepareNetworks();

    struct Cleanup {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    URLRequest request_;
    std::optional<CachedURLResponse> kept_ = {};  // which the server is asked about
    std::unique_ptr<curl_slist, Cleanup> fields_ = {};
    std::array<char, CURL_ERROR_SIZE> errorText_ = {};

    std::string head_ = {};
    std::size_t headerBytes_ = 0, bodyBytes_ = 0;
    std::optional<URLResponse> response_ = {};
    Data data_ = {};  // not yet told
    Data copy_ = {};  // all of it, for the cache
    bool usesCache_ = false, isCopied_ = false, isRedirect_ = false, isResponseTold_ = false;
    bool wasRefused_ = false;
    std::unique_ptr<CURL, Cleanup> handle_;  // the last: it uses what stands above
};

}  // namespace velmo::detail
