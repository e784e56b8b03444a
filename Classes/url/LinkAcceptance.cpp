// Engines wrap the targets of their results in links to themselves. How, differs from one to the
// next and changes with the years; old forms stay, as pages that were kept have them still. One
// function a group of engines takes the target out; what comes out of it is a link like any other,
// or a target that is taken as it is, or nothing.
#include <velmocore/url/LinkAcceptance.h>

#include <algorithm>
#include <optional>
#include <span>
#include <string>

#include <velmocore/text/Finding.h>
#include <velmocore/text/Replacing.h>
#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/SearchEngines.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/url/URLSchemes.h>

#include "url/RedirectorMarkers.h"

namespace velmo {
namespace {

namespace markers = detail::markers;
using Units = std::u16string_view;

constexpr std::size_t npos = Units::npos;

enum class Purpose { Resolve, Accept };

/// What an engine's rules make of a link: nothing, a link to finish with, or a target that
/// is not looked at any further.
struct Unwrapped {
    enum Kind { Refused, Link, Target } kind = Refused;
    String link;
};

Unwrapped refused() { return {}; }
Unwrapped asLink(const String& link) { return {Unwrapped::Link, link}; }
Unwrapped asTarget(const String& link) { return {Unwrapped::Target, link}; }

bool contains(Units text, Units marker) { return text.find(marker) != npos; }

bool containsAny(Units text, std::span<const Units> markers) {
    return std::any_of(markers.begin(), markers.end(),
                       [text](Units marker) { return contains(text, marker); });
}

bool containsAnyNoCase(Units text, std::span<const Units> markers) {
    return std::any_of(markers.begin(), markers.end(), [text](Units marker) {
        return containsSubstring(text, marker, Case::Insensitive);
    });
}

/// What stands behind the mark; no data if the mark is not there. Where a mark ends in
/// "http", that is the start of what stands behind it.
Units behind(Units text, Units mark) {
    const std::size_t at = text.find(mark);
    if (at == npos) return {};
    return text.substr(at + mark.size() - (mark.ends_with(u"http") ? 4 : 0));
}

/// What stands behind the first of the marks that the text has.
Units behindOneOf(Units text, std::span<const Units> marks) {
    for (Units mark : marks)
        if (const Units rest = behind(text, mark); rest.data()) return rest;
    return {};
}

Units upTo(Units text, Units mark) { return text.substr(0, text.find(mark)); }

/// The link behind the mark, up to the end mark if there is one; refused without the mark.
Unwrapped linkBehind(Units text, Units mark, Units end = {}) {
    const Units rest = behind(text, mark);
    if (!rest.data()) return refused();
    return asLink(end.empty() ? rest : upTo(rest, end));
}

String unescaped(Units value) {
    return stringByReplacingPercentEscapesOfURL(value, UTF8StringEncoding);
}

// One function for each group of engines. The rules apply in their order.

Unwrapped unwrapBing(const String& s) {
    if (containsAnyNoCase(s, markers::BingsOwn)) return refused();
    if (const Units value = behind(s, u"&furl=http"); value.data())
        return asTarget(upTo(value, u"&"));
    return asLink(s);
}

Unwrapped unwrapAsk(const String& s) {
    if (s.view().starts_with(markers::AskRedirect)) return linkBehind(s, u"bu=http", u"&qte=");
    for (Units tracking : markers::AskTracking)
        if (s.view().starts_with(tracking)) return linkBehind(s, u"u=http");
    return containsAnyNoCase(s, markers::AsksOwn) ? refused() : asLink(s);
}

/// The last target in a link of Info's free results; refused without its end.
Unwrapped unwrapInfoRedirect(Units s) {
    const std::size_t start = s.rfind(u"http://");
    if (start == npos) return refused();
    const Units rest = s.substr(start);
    for (Units end : {Units(u"&time="), Units(u"&pg=")})
        if (contains(rest, end)) return asLink(upTo(rest, end));
    return refused();
}

Unwrapped unwrapInfo(const String& s) {
    if (containsSubstring(s, u"redirpaid.htm?", Case::Insensitive) ||
        containsAnyNoCase(s, markers::InfoAdvertisers))
        return refused();
    if (containsSubstring(s, u"redirfree.htm?", Case::Insensitive)) return unwrapInfoRedirect(s);
    if (contains(s, u"&rawto=http")) return linkBehind(s, u"&rawto=http");
    constexpr Units Clicks[] = {u"ClickHandler.ashx?ru=", u"ClickHandler.ashx?du="};
    if (const Units value = behindOneOf(s, Clicks); value.data())
        return asLink(unescaped(upTo(value, u"&")));
    return asLink(s);
}

Unwrapped unwrapDuckDuckGo(const String& s) {
    const Units value = behind(s, u"uddg=http");
    return asLink(value.data() ? unescaped(upTo(value, u"&")) : s);
}

/// The target in a link of the Yahoo group; absent if there is none.
String yahooTarget(Units s) {
    if (containsSubstring(s, markers::MSNRedirect, Case::Insensitive)) return {};
    if (contains(s, markers::AlltheWebClick) && contains(s, u"/http/"))
        return u"http://" + std::u16string(behind(s, u"/http/"));
    if (const Units value = behind(s, u"&rurl=http"); value.data()) return upTo(value, u"&");
    if (const Units value = behind(s, u"%26rurl=http"); value.data())
        return unescaped(upTo(value, u"%26"));
    if (const Units value = behind(s, u"?u=http"); value.data()) return upTo(value, u"&");
    constexpr Units ToTheEnd[] = {u"&r=http", u"/*-http", u"/**http"};
    if (const Units value = behindOneOf(s, ToTheEnd); value.data()) {
        // The two slashes of the scheme may have become one.
        constexpr Units Cut = u"http%3a/";
        if (value.size() > Cut.size() && value.starts_with(Cut) && value[Cut.size()] != u'/')
            return u"http://" + std::u16string(value.substr(Cut.size()));
        return value;
    }
    if (const Units value = behind(s, u"/RU=http"); value.data())
        return unescaped(upTo(value, u"/"));
    return {};
}

Unwrapped unwrapYahoo(const String& s) {
    const String value = yahooTarget(s);
    if (value.isAbsent()) return refused();
    return asLink(
        stringByReplacingString(stringByReplacingString(value, u"%3a", u":"), u"%23", u"#"));
}

/// The target that a link of Google's carries; none if it is of no known form.
std::optional<Unwrapped> googleTarget(const String& s, Units host) {
    if (const Units value = behindOneOf(s, markers::GoogleUrl); value.data()) return asLink(value);
    constexpr Units RelativeQuery = u"/url?q=";
    const Units query = s.view().starts_with(RelativeQuery) ? behind(s, RelativeQuery)
                                                            : behindOneOf(s, markers::GoogleQuery);
    if (query.data()) return asLink(upTo(query, u"&sa="));
    if (contains(host, markers::Scholar) && contains(s, u"url?q=http"))
        return linkBehind(s, u"url?q=http");
    if (contains(s, u"/imgres?imgurl=") && contains(s, u"imgrefurl="))
        return asTarget(upTo(behind(s, u"imgrefurl="), u"&"));
    if (contains(s, u"url?sa=") && contains(s, u"q=http")) return linkBehind(s, u"q=http", u"&");
    if (contains(s, u"/codesearch"))
        return contains(s, u"ct=rc") && contains(s, u"cs_p=") ? asTarget(s) : refused();
    return std::nullopt;
}

Unwrapped unwrapGoogle(const String& s, Units host, Purpose purpose) {
    // What is refused here is the engine's own: a good link to resolve, but no result.
    const bool accepting = purpose == Purpose::Accept;
    if (accepting && contains(s, markers::BloggerStart)) return refused();
    const std::optional<Unwrapped> found = googleTarget(s, host);
    if (!found && accepting && contains(s, markers::YouTube)) return refused();
    const Unwrapped result = found.value_or(asLink(s));
    const bool isHome =
        result.kind == Unwrapped::Link && result.link.view().ends_with(markers::BloggerHome);
    return accepting && isHome ? refused() : result;
}

/// The first group that the host belongs to decides.
Unwrapped unwrap(const String& s, Units host, Purpose purpose) {
    if (contains(host, markers::Bing)) return unwrapBing(s);
    if (containsAny(host, markers::AskGroup)) return unwrapAsk(s);
    if (contains(host, markers::Info)) return unwrapInfo(s);
    if (contains(host, markers::DuckDuckGo)) return unwrapDuckDuckGo(s);
    if (containsAny(host, markers::YahooGroup)) return unwrapYahoo(s);
    if (containsAny(host, markers::GoogleGroup)) return unwrapGoogle(s, host, purpose);
    if (host.ends_with(markers::Medline) && contains(s, u"/cgi-bin/query-meta?"))
        return linkBehind(s, u"&url=http", u"&rid=");
    if (host.ends_with(markers::LexisWeb) && contains(s, u"Refer.aspx?Type=WebResult"))
        return linkBehind(s, u"&url=http");
    return asLink(s);
}

URL ifRemote(const URL& url) { return isRemoteWebKitURL(url) ? url : URL(); }

/// An absolute URL that is a real result.
URL acceptedURL(const String& link, const String& decoded) {
    // A relative link leads to the engine itself.
    if (decoded[0] == u'.' || decoded[0] == u'/' || !contains(decoded, u"://")) return {};
    URL url = URL::URLWithString(decoded);
    if (url.isAbsent()) url = URL::URLWithString(link);
    const String& judged = url.absoluteString();
    return isSearchEngine(url) || stringURLIsCached(judged) ? URL() : ifRemote(url);
}

URL resolve(const String& link, const URL& base, Purpose purpose) {
    if (link.isEmpty()) return {};
    // The engine's own copies are refused before anything is unwrapped: they carry the target too.
    if (purpose == Purpose::Accept) {
        const URLClasses classes = classesOfStringURL(link);
        if (classes.cached || classes.translation || classes.recaptcha) return {};
    }
    const Units host = base.part(URLPart::Host);
    const Unwrapped found = host.empty() ? asLink(link) : unwrap(link, host, purpose);
    if (found.kind == Unwrapped::Target) return ifRemote(URL::URLWithString(found.link));
    // A target in a parameter was escaped once more than a link; what that breaks is tried again
    // as it stood.
    const String decoded = stringByReplacingStandardPercentEscapesOfURL(found.link);
    if (decoded.isEmpty()) return {};
    if (purpose == Purpose::Accept) return acceptedURL(found.link, decoded);
    const URL url = URLRelativeTo(base, decoded);
    return url.isAbsent() ? URLRelativeTo(base, found.link) : url;
}

}  // namespace

URL resolveStringURL(const String& link, const URL& base) {
    return resolve(link, base, Purpose::Resolve);
}
URL acceptStringURL(const String& link, const URL& base) {
    return resolve(link, base, Purpose::Accept);
}

}  // namespace velmo
