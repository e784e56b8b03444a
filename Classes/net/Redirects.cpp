#include "net/Redirects.h"

#include <velmocore/text/Comparison.h>
#include <velmocore/url/PercentEscapes.h>

namespace velmo::detail {
namespace {

constexpr std::int64_t MovedPermanently = 301, Found = 302, SeeOther = 303, TemporaryRedirect = 307,
                       PermanentRedirect = 308;

String locationOf(const URLResponse& response) { return response.headers.value(u"Location"); }

/// The fragment goes along to an address that has none of its own.
URL withFragmentOf(const URL& former, const URL& url) {
    const String fragment = former.fragment();
    if (url.isAbsent() || fragment.isAbsent() || !url.fragment().isAbsent()) return url;
    return URL::URLWithString(url.absoluteString() + u"#" + fragment);
}

bool isSameSchemeName(const URL& a, const URL& b) {
    return isEqualToStringNoCase(a.part(URLPart::Scheme), b.part(URLPart::Scheme));
}

bool isSameServer(const URL& a, const URL& b) {
    return isSameSchemeName(a, b) && a.port() == b.port() &&
           isEqualToStringNoCase(a.part(URLPart::Host), b.part(URLPart::Host));
}

void dropBody(URLRequest& request) {
    request.method = u"GET";
    request.body.reset();
    for (const char16_t* name : {u"Content-Type", u"Content-Length", u"Content-Encoding"})
        request.headers.setValue(name, {});
}

bool becomesGet(const String& method, std::int64_t status) {
    if (status == SeeOther) return method != u"HEAD";
    return method == u"POST" && (status == MovedPermanently || status == Found);
}

}  // namespace

bool isRedirect(const URLResponse& response) {
    switch (response.statusCode) {
        case MovedPermanently:
        case Found:
        case SeeOther:
        case TemporaryRedirect:
        case PermanentRedirect:
            return !locationOf(response).isEmpty();
        default:
            return false;
    }
}

URLRequest redirectedRequest(const URLRequest& former, const URLResponse& response) {
    URLRequest next = former;
    const String location = stringByAddingPercentEscapesToURL(locationOf(response));
    next.url = withFragmentOf(former.url, URL::URLWithString(location, former.url));
    if (next.isAbsent()) return {};
    if (becomesGet(former.method, response.statusCode)) dropBody(next);
    if (!isSameServer(former.url, next.url))
        for (const char16_t* name : {u"Authorization", u"Cookie", u"Host"})
            next.headers.setValue(name, {});
    const bool wasEncrypted = isEqualToStringNoCase(former.url.part(URLPart::Scheme), u"https");
    if (wasEncrypted && !isSameSchemeName(former.url, next.url))
        next.headers.setValue(u"Referer", {});
    return next;
}

}  // namespace velmo::detail
