#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include <velmocore/net/HTTPHeaders.h>
#include <velmocore/net/Networks.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/url/URL.h>

namespace velmo {

class URLCache;

/// Whether a download may be answered by a cache, with the numbers that programs keep.
enum class RequestCachePolicy : std::uint8_t {
    UseProtocolCachePolicy = 0,        ///< as HTTP tells
    ReloadIgnoringLocalCacheData = 1,  ///< never
    ReturnCacheDataElseLoad = 2,       ///< whenever it can, however old the answer
};

/// What a download never goes beyond. What would is dropped and is an error.
struct DownloadLimits {
    std::size_t body = std::size_t{1} << 28;    ///< bytes, after decompression
    std::size_t header = std::size_t{1} << 18;  ///< bytes of all heads of one response
    std::size_t redirects = 20;
    /// Seconds from its start to its end, redirects too; 0 for as long as it takes.
    double seconds = 0;
    /// Where connections may go, redirects too. The address that is connected to is what counts,
    /// so that no name can lead elsewhere than it did when it was looked up before. A proxy looks
    /// names up itself and is trusted with it: with a proxy in the environment all goes through
    /// it, whatever no_proxy says, and only what networksOfHostName() tells is refused here.
    NetworkKinds networks = AllNetworks;
};

/// What to load and how. A request without a URL is *absent*. A plain value: any thread may read
/// one that none changes.
struct URLRequest {
    URL url = {};  ///< what is loaded
    /// Whether a cache may answer.
    RequestCachePolicy cachePolicy = RequestCachePolicy::UseProtocolCachePolicy;
    /// The longest silence, in seconds: each response and each piece of data restarts it.
    double timeoutInterval = 60;
    String method = u"GET";         ///< GET, HEAD, POST or another one
    HTTPHeaders headers = {};       ///< besides those that every request has
    std::optional<Data> body = {};  ///< what is sent
    /// Whether cookies are kept, in memory, for as long as the process or the session lives.
    bool shouldHandleCookies = false;

    // Ours.
    DownloadLimits limits = {};
    /// Where answers are kept; not owned, and must outlive the download. None is kept without one.
    URLCache* cache = nullptr;
    /// A file of certificates, in PEM, that are trusted instead of the system's.
    Path certificateAuthorities = {};
    /// Without it the response that asks for a redirect is the answer.
    bool followsRedirects = true;

    /// Whether it has no URL.
    [[nodiscard]] bool isAbsent() const noexcept { return url.isAbsent(); }
};

/// A referrer: a text or a URL, or none.
class Referrer {
public:
    /// None; or a text or a URL, of which the absent ones are none.
    Referrer() noexcept = default;
    Referrer(String text) noexcept : text_(std::move(text)) {}
    Referrer(const char16_t* text) : text_(text) {}
    Referrer(const URL& url) : text_(url.absoluteString()) {}

    /// Its text; absent for none.
    [[nodiscard]] const String& string() const noexcept VELMO_LIFETIME { return text_; }

private:
    String text_;
};

// Requests as the library makes them. WebKitURL() of the URL is loaded; what is absent is not set.
//
//     const URL page = URL::URLWithString(u"http://h.org/a");
//     const URLRequest request = requestWithURL(page, {.referrer = u"http://h.org/"});
//     referrer(request);    // http://h.org/
//     userAgent(request);   // absent

/// What a request is made with.
struct RequestOptions {
    Referrer referrer = {};  ///< see setReferrer()
    String userAgent = {};   ///< see setUserAgent()
    /// Whether a cache may answer.
    RequestCachePolicy cachePolicy = RequestCachePolicy::UseProtocolCachePolicy;
};
/// A request for a URL; absent for an absent one.
[[nodiscard]] VELMO_API URLRequest requestWithURL(const URL& url,
                                                  const RequestOptions& options = {});

/// The field "User-Agent".
[[nodiscard]] VELMO_API String userAgent(const URLRequest& request);
VELMO_API void setUserAgent(URLRequest& request, const String& userAgent);
/// The field "Referer".
[[nodiscard]] VELMO_API String referrer(const URLRequest& request);
/// Nothing happens for what is no address of the web, nor for names within a local network, which
/// are nobody else's business: those that end with ".local".
VELMO_API void setReferrer(URLRequest& request, const Referrer& referrer);

// Bodies of posts.

/// The fields of a form, in the order in which they are sent.
using HTTPPostFields = std::vector<std::pair<String, String>>;
/// What is posted: fields, a text of ASCII, bytes, or nothing.
using HTTPPost = std::variant<std::monostate, String, HTTPPostFields, Data>;

/// Whether a download posts this: a text or fields, and not empty. Bytes are not; set them by
/// setHTTPPost().
///
///     isValidHTTPPost(String(u"a=b"));    // true
///     isValidHTTPPost(Data{1, 2});        // false
[[nodiscard]] VELMO_API bool isValidHTTPPost(const HTTPPost& post) noexcept;

/// Sets the body. Of fields it is NAME=VALUE, joined by &: both are escaped as URLs are, in the
/// encoding, or in UTF-8 if that is unknown, so that & and = of their own stay as they are; see
/// formEncodedFields(). What the encoding cannot hold is left out, a value with "Couldn't escape
/// POST value: " in the log. A text that is not ASCII gives no body, and neither does nothing.
/// The method is not changed.
VELMO_API void setHTTPPost(URLRequest& request, const HTTPPost& post,
                           TextEncoding encoding = UnknownTextEncoding);

/// Fields as a server reads them again: & = + ; % and # of their own are escaped too. Ours; the
/// result is a text to be posted.
///
///     formEncodedFields({{u"q", u"tea & milk"}, {u"n", u"1"}});    // q=tea%20%26%20milk&n=1
[[nodiscard]] VELMO_API String formEncodedFields(const HTTPPostFields& fields);

}  // namespace velmo
