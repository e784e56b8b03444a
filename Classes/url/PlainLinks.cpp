// A link is plain if it has up to 128 units, all of them of those that a URL may hold; no colon, or
// one behind http or https that is followed by two slashes; and neither dots nor further slashes
// beside a slash, but for "./" and "../" at its start. Trimming, the schemes that people get wrong,
// the filter of links, escapes, standardizing and dot segments then have nothing to do, each of
// which costs as much as all of this: the text of the result is that of the base up to the folder
// and the link behind it.
#include "url/PlainLinks.h"

#include <velmocore/url/LinkFilter.h>

#include <algorithm>

#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "url/Grammar.h"
#include "url/Reductions.h"
#include "url/URLMaker.h"
#include "url/WebHosts.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;
using grammar::Parts;
using grammar::Span;

/// In units; keeps the parts of what is joined within the range of Span.
constexpr std::size_t LongestBase = 1'000'000;

/// Where a slash has a dot or another slash beside it, unless both follow a colon.
UnitBits unevenSlashes(const URLMarks& marks, UnitBits part) {
    const UnitBits slash = marks.slash & part, dot = marks.dot & part;
    const UnitBits doubled = slash.before(slash);
    return doubled.without(doubled.behind(marks.colon)) | dot.before(slash) | dot.behind(slash);
}

/// Whether a text of any length may have one.
bool hasUnevenSlash(Units text) {
    for (std::size_t i = indexOf(text, u'/'); i < text.size(); i = indexOf(text, u'/', i + 1)) {
        const bool isAfterDot = i > 0 && text[i - 1] == u'.';
        const char16_t next = i + 1 < text.size() ? text[i + 1] : u'a';
        if (isAfterDot || next == u'/' || next == u'.') return true;
    }
    return false;
}

/// A link whose anchor is cut off, and which holds nothing but what a URL may.
struct PlainLink {
    Units text;
    URLMarks marks;
    std::uint32_t size;   ///< of the text
    std::uint32_t query;  ///< where its ? stands; else the size

    UnitBits beforeQuery() const { return UnitBits::below(query); }
};

std::optional<PlainLink> plainLinkOf(Units link, bool trimAnchor) {
    if (link.size() > UnitBits::MostUnits) return std::nullopt;
    URLMarks marks = urlMarksOf(link);
    const auto length = static_cast<std::uint32_t>(link.size());
    const std::uint32_t size = marks.hash.first(0, length);
    if (size < length && (!trimAnchor || withoutAnchor(link).size() > size)) return std::nullopt;
    link = link.substr(0, size);
    if ((marks.other & UnitBits::below(size)) || !grammar::hasWholeEscapes(link, marks))
        return std::nullopt;
    return PlainLink{link, marks, size, marks.question.first(0, size)};
}

/// The length of "http://" or "https://" in front of a text; 0 if neither is there.
std::uint32_t lengthOfWebScheme(Units text) {
    // A literal would be measured each time.
    constexpr Units HTTP = u"http://", HTTPS = u"https://";
    const auto startsWith = [text](Units scheme) {
        return text.size() >= scheme.size() && isSame(text.substr(0, scheme.size()), scheme);
    };
    return startsWith(HTTP) ? 7 : startsWith(HTTPS) ? 8 : 0;
}

/// A URL of its own.
std::optional<URL> absoluteURL(PlainLink& link) {
    const std::uint32_t scheme = lengthOfWebScheme(link.text);
    // Some write the scheme twice.
    if (!scheme || keyword::beginsWith(link.text.substr(scheme), "HTTP:")) return std::nullopt;
    if (unevenSlashes(link.marks, link.beforeQuery())) return std::nullopt;
    link.marks.hash = UnitBits();
    Parts parts;
    if (!grammar::cutByMarks(link.text, link.marks, parts)) return URL();
    return URLMaker::made(link.text, {parts});
}

/// Whether a dot is written as an escape, which the URL standard takes for one in dot segments.
bool hasEscapedDot(Units text) {
    for (std::size_t i = indexOf(text, u'%'); i < text.size(); i = indexOf(text, u'%', i + 1))
        if (text.size() - i > 2 && text[i + 1] == u'2' && (text[i + 2] | 0x20) == u'e') return true;
    return false;
}

/// Whether the standard escapes nothing of the link, and has no dot segments that the marks do not
/// tell.
bool isPlainOnTheWeb(const PlainLink& link) {
    if (link.marks.percent && hasEscapedDot(link.text.substr(0, link.query))) return false;
    const Units query = link.text.substr(link.query);
    return indexOf(query, u'\'') == query.size();
}

/// Whether the standard leaves the authority as it is: a domain in lower case, and no port.
bool isPlainAuthority(Units text, const Parts& parts) {
    const Units host = parts[URLPart::Host].of(text);
    return host.size() == parts[URLPart::Authority].length && isPlainDomain(host) &&
           indexOf(host, u'%') == host.size() &&
           std::none_of(host.begin(), host.end(), ascii::isUpper<char16_t>);
}

/// A URL of its own that the standard leaves as it is, but for a slash behind a host that ends it.
std::optional<URL> absoluteWebURL(PlainLink& link) {
    if (!lengthOfWebScheme(link.text)) return std::nullopt;
    if (unevenSlashes(link.marks, link.beforeQuery())) return std::nullopt;
    link.marks.hash = UnitBits();
    Parts parts;
    if (!grammar::cutByMarks(link.text, link.marks, parts)) return std::nullopt;
    if (!isPlainAuthority(link.text, parts)) return std::nullopt;
    if (parts[URLPart::Path].length > 0) return URLMaker::made(link.text, {parts, true});
    if (parts[URLPart::Authority].end() < link.size) return std::nullopt;
    StringBuilder out(link.size + 1 + grammar::TailUnits);
    out.append(link.text);
    out.append(u'/');
    parts[URLPart::Path].length = 1;
    ++parts[URLPart::ResourceSpecifier].length;
    return URLMaker::made(grammar::finishedWith({parts, true}, out));
}

/// The folder of the base without the last of its own: no folder is above the root.
Units parentOf(Units folder) {
    if (folder.size() <= 1) return folder;
    return folder.substr(0, folder.rfind(u'/', folder.size() - 2) + 1);
}

/// What the parts of a URL are that begins as the base, up to a path, and ends with a query.
Parts partsBehind(const Parts& base, Units text, std::size_t path, std::size_t query) {
    Parts parts = base;
    const auto from = [&](std::size_t start, std::size_t end) {
        return Span{static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end - start)};
    };
    parts[URLPart::ResourceSpecifier] =
        from(base[URLPart::ResourceSpecifier].location, text.size());
    parts[URLPart::Parameters] = parts[URLPart::Query] = parts[URLPart::Fragment] = Span();
    grammar::notePathParts(text, static_cast<std::uint32_t>(path),
                           static_cast<std::uint32_t>(query), parts);
    if (query < text.size()) parts[URLPart::Query] = from(query + 1, text.size());
    return parts;
}

/// The link in a folder of the base.
URL joined(const URL& base, Units folder, Units link, std::uint32_t query, bool isOfWeb) {
    const Parts& known = URLMaker::tailOf(base).parts;
    const std::size_t path = known[URLPart::Authority].end();
    const std::size_t start = path + folder.size();
    StringBuilder out(start + link.size() + grammar::TailUnits);
    out.append(base.absoluteString().view().substr(0, path));
    out.append(folder);
    out.append(link);
    const Parts parts = partsBehind(known, out.view(), path, start + query);
    return URLMaker::made(grammar::finishedWith({parts, isOfWeb}, out));
}

std::optional<URL> relativeURL(const URL& base, const PlainLink& link, bool isOfWeb) {
    if (link.query == 0) return std::nullopt;
    Units folder, rest = link.text;
    if (rest[0] != u'/') {
        const Units path = wholePathOf(base);
        folder = path.empty() ? Units(u"/") : path.substr(0, path.rfind(u'/') + 1);
        if (hasUnevenSlash(folder)) return std::nullopt;
        for (;;) {
            const bool up = rest.starts_with(u"../");
            if (!up && !rest.starts_with(u"./")) break;
            rest.remove_prefix(up ? 3 : 2);
            if (up) folder = parentOf(folder);
        }
        if (rest.starts_with(u'.') || rest.starts_with(u'/')) return std::nullopt;
    }
    const std::uint32_t taken = link.size - static_cast<std::uint32_t>(rest.size());
    const UnitBits others = link.beforeQuery().without(UnitBits::below(taken));
    if (unevenSlashes(link.marks, others)) return std::nullopt;
    return joined(base, folder, rest, link.query - taken, isOfWeb);
}

bool isPlainBase(const URL& base) {
    const Parts& parts = URLMaker::tailOf(base).parts;
    return parts[URLPart::Scheme].isPresent() && parts[URLPart::Host].isPresent() &&
           !parts[URLPart::User].isPresent() && !base.isFileURL() &&
           base.absoluteString().length() <= LongestBase;
}

}  // namespace

std::optional<URL> plainURLRelativeTo(const URL& base, Units text, bool trimAnchor) {
    if (text.empty() || !isPlainBase(base)) return std::nullopt;
    std::optional<PlainLink> link = plainLinkOf(text, trimAnchor);
    if (!link) return std::nullopt;
    if (link->size == 0) return URL();
    const bool hasColon = link->marks.colon.first(0, link->size) < link->size;
    if (hasColon) return absoluteURL(*link);
    if (link->size == 1 && filterLink(link->text)) return URL();
    return relativeURL(base, *link, false);
}

std::optional<URL> plainWebURLRelativeTo(const URL& base, Units text, bool trimAnchor) {
    if (text.empty()) return std::nullopt;
    std::optional<PlainLink> link = plainLinkOf(text, trimAnchor);
    if (!link || !isPlainOnTheWeb(*link)) return std::nullopt;
    const bool hasColon = link->marks.colon.first(0, link->size) < link->size;
    if (hasColon) return absoluteWebURL(*link);  // for which there need not be a base
    const bool isPlain =
        URLMaker::isOfWeb(base) && isPlainBase(base) && lengthOfWebScheme(base.absoluteString());
    if (!isPlain) return std::nullopt;
    return link->size == 0 ? URL() : relativeURL(base, *link, true);
}

}  // namespace velmo::detail
