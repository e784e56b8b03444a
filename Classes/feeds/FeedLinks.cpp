#include "feeds/FeedLinks.h"

#include <algorithm>

#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLSchemes.h>

#include "feeds/FeedHostTables.h"
#include "text/Keyword.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

/// What stands between :// and the next slash.
Units hostOf(Units link) {
    const std::size_t colon = link.find(u"://");
    if (colon == Units::npos) return {};
    const Units rest = link.substr(colon + 3);
    return rest.substr(0, rest.find_first_of(u"/:?#"));
}

bool isShortLink(Units link) {
    const Units host = hostOf(link);
    return std::ranges::any_of(ShortLinkHosts,
                               [&](auto name) { return keyword::equals(host, name); });
}

bool isNewsRedirection(Units link) {
    return std::ranges::any_of(NewsRedirectors,
                               [&](auto prefix) { return keyword::beginsWith(link, prefix); });
}

/// What stands from a place on up to the first of some marks that is there; the whole link if
/// none is.
Units partUpTo(Units link, std::size_t from, std::initializer_list<char16_t> marks) {
    for (const char16_t mark : marks)
        if (const std::size_t end = link.find(mark, from); end != Units::npos)
            return link.substr(from, end - from);
    return link;
}

/// The link within what a feed put into its place: a redirector, or an anchor as a page has it.
Units withoutWrapping(Units link) {
    constexpr Units Target = u"&url=http";
    if (isNewsRedirection(link)) {
        if (const std::size_t target = link.find(Target); target != Units::npos) {
            const Units real = link.substr(target + Target.size() - 4);
            return real.substr(0, real.find(u"&cid="));
        }
    }
    if (keyword::beginsWith(link, "<A HREF=\"")) return partUpTo(link, 9, {u'"'});
    if (keyword::beginsWith(link, "<A HREF=")) return partUpTo(link, 8, {u' ', u'>'});
    return link;
}

}  // namespace

Units linkOfItem(Units guid, Units link, const URL& base, bool joinsAll, String& joined) {
    const bool isGuid = !guid.empty() && isRemoteWebKitStringURL(guid) && !isShortLink(guid);
    Units chosen = isGuid ? guid : link;
    // An anchor as a page has it, which is unwrapped below, is no path.
    const bool isRelative =
        chosen.starts_with(u'/') || (joinsAll && !chosen.empty() && !chosen.starts_with(u'<') &&
                                     stringURLScheme(chosen).isAbsent());
    if (!base.isAbsent() && isRelative) {
        joined = URLRelativeTo(base, chosen).absoluteString();
        if (!joined.isAbsent()) chosen = joined;
    }
    return withoutWrapping(chosen);
}

}  // namespace velmo::detail
