// From texts as people and pages write them to URLs. A text is first taken as it is, and escaped
// only if it is no URL: escapes that it has already would otherwise be escaped once more.
#include <velmocore/url/URLConstruction.h>

#include <algorithm>

#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/URLSchemes.h>

#include "text/Format.h"
#include "text/Keyword.h"

namespace velmo {
namespace {

bool hasScheme(const URL& url) { return !url.part(URLPart::Scheme).empty(); }
URL ifItHasScheme(const URL& url) { return hasScheme(url) ? url : URL(); }

/// Mail and message links often hold what a URL may not.
bool isMessageLink(std::u16string_view string) {
    return detail::keyword::beginsWith(string, "MAILTO:") ||
           detail::keyword::beginsWith(string, "MESSAGE:");
}

/// Raw and escaped quote marks in one text are all made escaped ones.
String withEscapes(const String& string, StringEncoding encoding) {
    return stringByAddingPercentEscapesToURL(string, {.encoding = encoding});
}

/// The scheme that a text without one stands for; empty if that is not safe to tell.
std::u16string_view impliedScheme(std::u16string_view string) {
    if (isMailStringURL(string)) return u"mailto:";
    // With a single full stop it may as well be the name of a file.
    if (std::count(string.begin(), string.end(), u'.') < 2) return {};
    if (string.starts_with(u"ftp")) return u"ftp://";
    return string.starts_with(u"www") ? u"http://" : u"";
}

}  // namespace

URL URLWithFormat(std::u16string_view format, std::initializer_list<FormatArgument> arguments) {
    return format.empty() ? URL() : URL::URLWithString(detail::formatted(format, arguments));
}

URL URLWithStringOrPath(const String& string) {
    if (string.isEmpty() || string[0] == u'.') return {};
    if (string[0] == u'/' || string[0] == u'~') return URL::fileURLWithPath(string);
    URL url = URL::URLWithString(string);
    if (url.isAbsent() && isMessageLink(string))
        url = URL::URLWithString(withEscapes(string, UTF8StringEncoding));
    if (hasScheme(url)) return url;
    if (string.view().find(u"://") != std::u16string_view::npos) return {};
    const std::u16string_view scheme = impliedScheme(string);
    return scheme.empty() ? URL() : ifItHasScheme(URLWithFormat(u"%@%@", {String(scheme), string}));
}

URL URLWithNormalizedStringURL(const String& string, StringEncoding encoding) {
    if (string.isEmpty()) return {};
    URL url = URLWithStringOrPath(string);
    if (!url.isAbsent() || isMessageLink(string)) return url;
    const String escaped = withEscapes(string, encoding);
    return escaped.isIdenticalTo(string) ? url : URLWithStringOrPath(escaped);
}

URL URLWithUserTypedString(const String& string) { return URLWithNormalizedStringURL(string); }

}  // namespace velmo
