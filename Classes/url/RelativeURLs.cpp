// A link on its road from a page to a URL: trimmed, its scheme put right, told apart by whether it
// stands alone, is absolute or relative, and resolved. The anchor is cut first and links that lead
// nowhere are filtered once, in the middle; who has done so before need not, and who comes after
// neither.
//
// Most links need none of this; PlainLinks.h resolves them.
//
// A text that is no URL gets a second chance with escapes for what a URL may not hold.
#include <velmocore/url/RelativeURLs.h>

#include <algorithm>
#include <optional>

#include <velmocore/text/Comparison.h>
#include <velmocore/text/HomeFolder.h>
#include <velmocore/text/Paths.h>
#include <velmocore/url/LinkFilter.h>
#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>
#include <velmocore/url/URLSimplification.h>
#include <velmocore/url/URLVariants.h>

#include "platform/Ascii.h"
#include "platform/Unicode.h"
#include "text/Keyword.h"
#include "text/PathParts.h"
#include "text/Pieces.h"
#include "text/Trim.h"
#include "url/PlainLinks.h"
#include "url/Reductions.h"
#include "url/WebResolution.h"

namespace velmo {
namespace {

using Units = std::u16string_view;
using detail::concatenated;
using detail::indexOf;
using detail::pieceOf;

bool begins(Units text, std::string_view capitals) {
    return detail::keyword::beginsWith(text, capitals);
}

/// The link without its anchor and the white space around it.
String trimmed(const String& link, bool trimAnchor) {
    const Units rest = trimAnchor ? detail::withoutAnchor(link) : link.view();
    return pieceOf(link, detail::trimmedView(rest, detail::Ends::Both,
                                             detail::unicode::isWhiteSpaceOrNewline));
}

/// How many units in front of an address of the web are there twice, or by mistake.
std::size_t extraUnits(Units link) {
    if (begins(link, "HHTTP:")) return 1;
    if (begins(link, "HTTP://HTTP://")) return 7;
    return begins(link, "HTTP:// HTTP://") ? 8 : 0;
}

/// A mail link without the slashes, or the address of the web that follows.
String repairedMail(const String& link) {
    constexpr std::size_t Slashes = 9;  // the length of "mailto://"
    if (begins(link, "MAILTO://"))
        return link.length() <= Slashes ? String()
                                        : concatenated(u"mailto:", link.view().substr(Slashes));
    return begins(link, "MAILTO:HTTP://") ? String(link.view().substr(7)) : link;
}

/// The link with a scheme that people got wrong put right; absent if nothing is left.
String repaired(const String& link) {
    switch (detail::keyword::upper(link[0])) {
        case u':':
            return begins(link, ":HTTP://") ? String(link.view().substr(1)) : link;
        case u'E':
            return begins(link, "EMAILTO:") ? String(link.view().substr(1)) : link;
        case u'F':
            return validFeedStringURL(link);
        case u'H':
            return pieceOf(link, link.view().substr(extraUnits(link)));
        case u'M':
            return repairedMail(link);
        case u'T':
            return begins(link, "TTP://") ? concatenated(u"h", link) : link;
        default:
            return link;
    }
}

/// Links of programs that show no pages stand alone.
bool standsAlone(Units link) {
    constexpr std::string_view Schemes[] = {
        "AIM:", "ICQ:", "IRC:", "MAILTO:", "MESSAGE:", "YMSGR:"};
    return std::any_of(std::begin(Schemes), std::end(Schemes),
                       [link](std::string_view scheme) { return begins(link, scheme); });
}

/// Whether the text has a scheme in front of "://", which stands at a position: letters, and
/// colons of schemes before it.
bool isAbsolute(Units text, std::size_t position) {
    return std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position),
                       [](char16_t unit) { return unit == u':' || detail::ascii::isLetter(unit); });
}

/// The URL that make() gives of a text, if need be with escapes for what it may not hold. Raw
/// and escaped quote marks in one text are all made escaped ones.
template <class Make>
URL madeOf(const String& text, StringEncoding encoding, Make make) {
    URL url = make(text);
    if (!url.isAbsent()) return url;
    const String escaped = stringByAddingPercentEscapesToURL(text, {.encoding = encoding});
    return escaped.isAbsent() || escaped.isIdenticalTo(text) ? URL() : make(escaped);
}

bool hasDotBesideSlash(Units path) {
    for (std::size_t i = indexOf(path, u'.'); i < path.size(); i = indexOf(path, u'.', i + 1))
        if ((i > 0 && path[i - 1] == u'/') || (i + 1 < path.size() && path[i + 1] == u'/'))
            return true;
    return false;
}

/// The position of the first "://"; the size if there is none.
std::size_t indexOfScheme(Units text) {
    std::size_t i = indexOf(text, u':');
    while (i < text.size() && !text.substr(i + 1).starts_with(u"//"))
        i = indexOf(text, u':', i + 1);
    return i;
}

/// The URL with the dot segments of its path resolved, as long as there are any.
URL withoutDotSegments(URL url) {
    for (;;) {
        const Units path = url.part(URLPart::Path);
        if (!hasDotBesideSlash(path)) return url;
        // Removing segments may bring dots beside a slash once more; the loop ends when nothing
        // changes.
        const URL next = url.standardizedURL();
        if (next.isAbsent() || next == url) return url;
        url = next;
    }
}

bool areEqual(const URL& a, const URL& b, URLPart part) {
    return isEqualToStringNoCase(a.part(part), b.part(part));
}

/// The URL with the user and password of the base, as they stand there, if it has both.
URL withCredentialsOf(const URL& base, const URL& url) {
    const String user = base.user(), password = base.password();
    if (user.isEmpty() || password.isEmpty()) return url;
    return URLWithSchemeHostUserPassword(url, url.scheme(), url.host(), user, password);
}

/// A link that is a URL of its own, with or without the scheme.
URL absoluteURL(const URL& base, const String& link, bool hasScheme,
                const RelativeURLOptions& options) {
    const String text = options.standardize ? standardizedStringURL(link) : link;
    URL url = madeOf(text, options.encoding, [](const String& s) { return URL::URLWithString(s); });
    if (url.isAbsent()) return url;
    // A page that was read with a password links to its own site without it.
    if (areEqual(base, url, URLPart::Host) && (!hasScheme || areEqual(base, url, URLPart::Scheme)))
        url = withCredentialsOf(base, url);
    return options.standardize ? withoutDotSegments(url) : url;
}

/// Pages in files are often written for folders and not for browsers: a link is a path, in which
/// # and % stand for themselves.
URL fileURL(const URL& base, const String& link) {
    String path = link;
    if (link[0] == u'~') {
        if (link.length() == 1 || link[1] == u'/')
            path = concatenated(homeDirectory(), link.view().substr(1));
    } else if (link[0] != u'/') {
        path = detail::appendedComponent(stringByDeletingFileComponent(base.path()), link);
    }
    // What climbs above the root is a path from the root still, not from the current folder.
    return URL::fileURLWithPath(detail::appendedComponent(u"/", standardizedPath(path)));
}

URL webURL(const URL& base, const String& link, const RelativeURLOptions& options) {
    URL url = madeOf(link, options.encoding,
                     [&base](const String& string) { return URL::URLWithString(string, base); });
    if (!options.standardize || url.isAbsent()) return url;
    const String standard = standardizedStringURL(url);
    const bool isSame = standard.isIdenticalTo(url.absoluteString());
    return withoutDotSegments(isSame ? url : URL::URLWithString(standard));
}

/// The link as the URL standard reads it.
URL asOnTheWeb(const URL& base, const String& link, const RelativeURLOptions& options) {
    if (link.isAbsent()) return {};
    if (options.encoding == UTF8StringEncoding)
        if (std::optional<URL> url = detail::plainWebURLRelativeTo(base, link, options.trimAnchor))
            return *std::move(url);
    const Units text = options.trimAnchor ? detail::withoutAnchor(link) : link.view();
    if (options.trimAnchor && detail::withoutControlsAround(text).empty()) return {};
    return detail::webURL(text, base, options.encoding);
}

}  // namespace

URL URLRelativeTo(const URL& base, const String& link, const RelativeURLOptions& options) {
    if (base.isAbsent()) return {};
    if (options.web.resolution) return asOnTheWeb(base, link, options);
    if (options.standardize)
        if (std::optional<URL> url = detail::plainURLRelativeTo(base, link, options.trimAnchor))
            return *std::move(url);
    const String text = trimmed(link, options.trimAnchor && !base.isFileURL());
    if (text.isEmpty()) return {};
    const String string = repaired(text);
    if (string.isEmpty()) return {};
    if (standsAlone(string)) return URL::URLWithString(string);
    if (filterLink(string)) return {};
    if (string.view().starts_with(u"//"))
        return absoluteURL(base, concatenated(base.scheme(), concatenated(u":", string)), false,
                           options);
    const std::size_t scheme = indexOfScheme(string);
    if (scheme == 0) return {};
    if (scheme < string.length() && isAbsolute(string, scheme))
        return absoluteURL(base, string, true, options);
    return base.isFileURL() ? fileURL(base, string) : webURL(base, string, options);
}

URL URLWithStringRelativeTo(const String& string, const URL& base,
                            const RelativeURLOptions& options) {
    if (!base.isAbsent()) return URLRelativeTo(base, string, options);
    return options.web.resolution ? asOnTheWeb(base, string, options)
                                  : URLWithNormalizedStringURL(string, options.encoding);
}

}  // namespace velmo
