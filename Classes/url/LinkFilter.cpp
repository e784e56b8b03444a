// Which links are not worth resolving, told by their first units alone, as the filter is asked for
// every link of a page. What has no scheme passes: it may be relative.
#include <velmocore/url/LinkFilter.h>

#include <algorithm>
#include <iterator>

#include <velmocore/url/URLSchemes.h>

#include "platform/Ascii.h"
#include "text/Keyword.h"

namespace velmo {
namespace {

/// Schemes of programs that show no documents, with their colons.
constexpr std::string_view Filtered[] = {
    "IRC:",    "ICQ:",    "AIM:",      "RDAR:",       "YMSGR:",        "SWORD:",
    "WEBCAL:", "CALLTO:", "SHERLOCK:", "X-MAN-PAGE:", "VELMOADDRESS:",
};

bool isSchemeUnit(char16_t unit) { return unit == u'-' || detail::ascii::isLetter(unit); }

}  // namespace

bool filterLink(std::u16string_view link) {
    if (link.empty()) return false;
    // Single units that pages have as links to nowhere.
    if (link.size() == 1) return std::u16string_view(u"#&-:").find(link[0]) != link.npos;
    const auto colon = static_cast<std::size_t>(
        std::find_if_not(link.begin(), link.end(), isSchemeUnit) - link.begin());
    if (colon == 0 || colon == link.size() || link[colon] != u':') return false;
    // Without a slash a scheme leads to a program, but for a feed, which stands before a host.
    if (colon + 1 == link.size() || link[colon + 1] != u'/') return !isFeedStringURL(link);
    const std::u16string_view scheme = link.substr(0, colon + 1);
    if (std::any_of(std::begin(Filtered), std::end(Filtered), [scheme](std::string_view other) {
            return detail::keyword::equals(scheme, other);
        }))
        return true;
    if (isDataStringURL(scheme) || isAboutStringURL(scheme) || isJavaScriptStringURL(scheme) ||
        isAppleScriptStringURL(scheme))
        return true;
    return scheme.size() >= 8 && detail::keyword::beginsWith(scheme, "X-VELMO");
}

}  // namespace velmo
