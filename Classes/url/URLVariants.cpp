// A URL with one part exchanged. Each is put together as text and cut anew, which proves that the
// result is a URL: an argument that would break it gives the absent one.
#include <velmocore/url/URLVariants.h>

#include <unistd.h>

#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/URLPaths.h>
#include <velmocore/url/URLSchemes.h>

#include "text/Format.h"
#include "text/Keyword.h"
#include "url/Reductions.h"
#include "url/WebResolution.h"

namespace velmo {
namespace {

using detail::formatted;
using detail::urlLike;

/// With % and all that separates escaped, which leaves what user information may hold.
String escapedCredential(const String& text) {
    return stringByAddingPercentEscapesToURL(text, {.toBeEscaped = u"%:/?#[]@"});
}

bool fileExists(const String& path) {
    const std::string bytes = path.utf8();
    return bytes.find('\0') == bytes.npos && access(bytes.c_str(), F_OK) == 0;
}

/// feed: stands in front of a whole URL or in place of its scheme; both are found on pages.
URL withHTTPForFeed(const URL& url) {
    const String specifier = url.resourceSpecifier();
    return detail::keyword::beginsWith(specifier, "HTTP:") ? urlLike(url, specifier)
                                                           : urlLike(url, u"http:" + specifier);
}

}  // namespace

URL URLWithSchemeHostUserPassword(const URL& url, const String& scheme, const String& host,
                                  const String& user, const String& password) {
    if (url.isAbsent()) return url;
    const String path = pathWithParamsAndQueryAndFragment(url);
    const std::uint32_t port = url.port().value_or(0);
    // One without the other counts as none.
    const bool hasCredentials = !user.isEmpty() && !password.isEmpty();
    if (hasCredentials && port)
        return urlLike(
            url, formatted(u"%@://%@:%@@%@:%d%@", {scheme, user, password, host, port, path}));
    if (hasCredentials)
        return urlLike(url, formatted(u"%@://%@:%@@%@%@", {scheme, user, password, host, path}));
    if (port) return urlLike(url, formatted(u"%@://%@:%d%@", {scheme, host, port, path}));
    return urlLike(url, formatted(u"%@://%@%@", {scheme, host, path}));
}

URL URLWithUser(const URL& url, const String& user, const String& password) {
    if (user.isEmpty() || password.isEmpty()) return url;
    return URLWithSchemeHostUserPassword(url, url.scheme(), url.host(), escapedCredential(user),
                                         escapedCredential(password));
}

URL URLWithoutCredentials(const URL& url) {
    const String text = detail::withoutCredentials(url);
    return text.isIdenticalTo(url.absoluteString()) ? url : urlLike(url, text);
}

URL URLWithScheme(const URL& url, const String& scheme) {
    if (url.isAbsent() || url.isFileURL() || scheme.isEmpty()) return url;
    return urlLike(url, formatted(u"%@:%@", {scheme, url.resourceSpecifier()}));
}

URL URLWithoutAnchor(const URL& url) {
    const std::u16string_view text = url.absoluteString(), rest = detail::withoutAnchor(text);
    return rest.size() == text.size() ? url : urlLike(url, rest);
}

URL URLWithAnchor(const URL& url, const String& anchor) {
    if (url.isAbsent() || anchor.isEmpty()) return url;
    return urlLike(
        url, formatted(u"%@#%@", {String(detail::withoutAnchor(url.absoluteString())), anchor}));
}

URL WebKitURL(const URL& url) {
    if (url.isFileURL()) return url;
    // A web view may be kept from looking up names, and this one is known.
    if (detail::keyword::equals(url.part(URLPart::Host), "LOCALHOST"))
        return URLWithSchemeHostUserPassword(url, url.scheme(), u"127.0.0.1", url.user(),
                                             url.password());
    return isFeedURL(url) ? withHTTPForFeed(url) : url;
}

URL baseURLForWebKit(const URL& url) {
    if (url.isFileURL()) return fileExists(url.path()) ? url : URL();
    if (isFeedURL(url)) return withHTTPForFeed(url);
    return isHTTPURL(url) ? url : URL();
}

URL baseURLForWebKitUsingAnchor(const URL& url, const String& anchor) {
    return URLWithAnchor(baseURLForWebKit(url), anchor);
}

}  // namespace velmo
