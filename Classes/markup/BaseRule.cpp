#include "markup/BaseRule.h"

#include <fmt/format.h>

#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/platform/Log.h>
#include <velmocore/url/URLConstruction.h>
#include <velmocore/url/URLSchemes.h>

#include "markup/TagSupport.h"

namespace velmo::detail {

namespace {

/// The first base of a page counts, and is relative to the page. A page of the disk may have its
/// base there.
void applyWebBaseRule(const String& href, const URL& page, URL& baseURL) {
    if (!baseURL.isAbsent()) return;
    URL url = page.isAbsent() ? URLWithNormalizedStringURL(href) : URL::URLWithString(href, page);
    if (isRemoteWebKitURL(url) || (url.isFileURL() && page.isFileURL()))
        baseURL = std::move(url);
    else
        log(fmt::format("Invalid base: '{}'", href.utf8()));
}

}  // namespace

void applyBaseRule(const Tag& tag, const URL& page, URL& baseURL) {
    String href = normalizedStringURL(attributeOf(tag, "HREF"), tag.web);
    if (href.isAbsent()) return;
    if (tag.web.relativeBase) return applyWebBaseRule(href, page, baseURL);
    // A later base that is no good takes the earlier one back: it was meant to replace it.
    baseURL = URL();
    const bool isRelative = href[0] == u'.' || href[0] == u'/';
    if (href[0] == u'#' || (isRelative && href.length() < 2)) return;
    // The scheme of the page is not known here, and http is what servers redirect from.
    if (href.view().starts_with(u"//")) href = u"http:" + std::u16string(href);
    URL url = URLWithNormalizedStringURL(href);
    if (isRemoteWebKitURL(url))
        baseURL = std::move(url);
    else
        log(fmt::format("Invalid base: '{}'", href.utf8()));
}

}  // namespace velmo::detail
