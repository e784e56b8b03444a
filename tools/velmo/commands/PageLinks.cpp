// Two readings of the same links. People and programs want to see where each leads, whatever it
// is; a gatherer wants pages to fetch, each once, and no advertisements. Both resolve by the
// library's repairing resolver, and fall back on the plain rules only where it refuses.
#include "PageLinks.h"

#include <velmocore/url/LinkFilter.h>
#include <velmocore/url/LinkFollowing.h>
#include <velmocore/url/PercentEscapes.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLClassification.h>
#include <velmocore/url/URLSimplification.h>
#include <velmocore/url/URLVariants.h>

namespace velmo::tool {
namespace {

/// By the rules of URLs alone; what no URL may hold is escaped.
URL resolvedPlainly(const String& link, const URL& base) {
    const URL url = URL::URLWithString(link, base);
    return url.isAbsent() ? URL::URLWithString(stringByAddingPercentEscapesToURL(link), base) : url;
}

/// The URL of a link; absent if it leads to no page, or to an advertisement.
URL pageOfLink(const String& link, const URL& base, WebRules web) {
    // Before it is resolved, as the text alone tells of a script or a mail address; what only
    // shows in the whole URL is looked at once more below.
    if (filterLink(link)) return {};
    // On a file base the resolver takes a # for a part of the path.
    const URL url = URLRelativeTo(base, stringURLWithoutAnchor(link), {.web = web});
    const bool isRefused = filterLink(url.absoluteString()) || stringURLIsAdvertisement(url);
    return isRefused ? URL() : url;
}

}  // namespace

URL urlOfLink(const String& link, const URL& base, bool keepAnchor, WebRules web) {
    const String text = keepAnchor ? link : stringURLWithoutAnchor(link);
    URL url = URLRelativeTo(base, text, {.trimAnchor = !keepAnchor, .web = web});
    if (!url.isAbsent()) return url;
    // What is no URL to a browser leads nowhere in one; what is only an anchor to where it stands.
    if (web.resolution) return text.isEmpty() && !link.isEmpty() ? URLWithoutAnchor(base) : URL();
    return resolvedPlainly(link, base);
}

PageLinks linksOfPage(std::span<const String> found, const URL& ownBase, const URL& url,
                      const PageLinkOptions& options) {
    const URL& base = ownBase.isAbsent() ? url : ownBase;
    PageLinks links;
    links.number = found.size();
    for (const String& link : found) {
        const URL target = options.all ? urlOfLink(link, base, false, options.web)
                                       : pageOfLink(link, base, options.web);
        // The first of several URLs of one page is kept, as emplace() changes nothing that is
        // there.
        if (!target.isAbsent()) links.distinct.emplace(simplifiedStringURL(target), target);
    }
    if (options.follow)
        for (const auto& [key, target] : links.distinct)
            // One step from the page itself, so the depth is 1; against the URL of the page and
            // not its base, which may name another site.
            if (shouldFollowLink(target, *options.follow, 1, url)) links.followed.push_back(target);
    return links;
}

}  // namespace velmo::tool
