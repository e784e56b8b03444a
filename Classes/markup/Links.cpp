// One handler for links with and without their text. Where no text is asked for, a link counts
// when it is opened; else when it is closed, as only then all of its text is known. A link is
// stored once, however often a page has it.
#include <velmocore/markup/Links.h>

#include <string>

#include <velmocore/text/Finding.h>
#include <velmocore/url/LinkFilter.h>

#include "markup/BaseRule.h"
#include "markup/NormalizedLink.h"
#include "markup/TagScan.h"
#include "markup/TagSupport.h"
#include "markup/TagWalk.h"
#include "markup/UniqueLinks.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// Gathers links as they come, or, if their text is asked for, when they are closed.
class RetrieveLinksHandler {
public:
    RetrieveLinksHandler(HtmlLinks& result, const LinkOptions& options)
        : options_(options),
          wantsText_(options.handler || !options.containing.empty()),
          baseURL_(result.baseURL),
          links_(result.links) {}

    bool operator()(const Tag& tag) {
        // The text of a link may hold tags of its own, as images or bold type.
        if (hasLinkText_) linkText_ += tag.text();
        if (tag.nameLength == 1) {
            if (keyword::upper(tag.name()[0]) == u'A') retrieveAnchor(tag);
        } else if (tag.nameLength == 4 && isOpening(tag)) {
            if (tag.isNamed("BASE")) applyBaseRule(tag, options_.url, baseURL_);
            if (!wantsText_ && tag.isNamed("AREA")) add(hrefOf(tag));
        }
        return false;
    }

    /// Whether a tag that begins with the unit is none of those that count: it closes an element, or
    /// its name begins with another letter than theirs, and than those of scripts and styles.
    static bool passesOver(char16_t unit) {
        if (unit == u'/') return true;
        return ascii::isLetter(unit) && (unit | 0x20) > u'b' && (unit | 0x20) != u's';
    }

private:
    void retrieveAnchor(const Tag& tag) {
        if (!wantsText_) {
            if (isOpening(tag)) add(hrefOf(tag));
        } else if (isOpening(tag)) {
            openLink(hrefOf(tag));
        } else {
            // Only now all of the text is known; a link that is never closed has none.
            if (hasLinkText_ && isKept()) add(href_);
            openLink({});
        }
    }

    /// The raw reference; null if there is none, or none to follow.
    Units hrefOf(const Tag& tag) const {
        if (options_.useRelNoFollow && keyword::contains(attributeOf(tag, "REL"), "NOFOLLOW"))
            return {};
        return attributeOf(tag, "HREF");
    }

    /// Starts to gather the text of a link; of null, nothing.
    void openLink(Units href) {
        href_ = href;
        // A link without a reference gathers nothing, so that its text is not that of the next
        // one.
        hasLinkText_ = !href.empty();
        linkText_.clear();
    }

    bool isKept() const {
        if (!options_.containing.empty() && !containsSubstring(linkText_, options_.containing))
            return false;
        return !options_.handler || options_.handler(href_, linkText_);
    }

    void add(Units href) {
        if (href.empty() || (options_.filter && filterLink(href))) return;
        const NormalizedLink link(href, {.web = options_.web});
        if (!link.view().empty()) links_.add(link.view());
    }

    const LinkOptions& options_;
    const bool wantsText_;
    URL& baseURL_;
    UniqueLinks links_;
    Units href_;
    bool hasLinkText_ = false;
    std::u16string linkText_;
};

}  // namespace

HtmlLinks detail::linksOf(TagWalk walk, const LinkOptions& options) {
    HtmlLinks result;
    RetrieveLinksHandler handler(result, options);
    walk(handler);
    return result;
}

HtmlLinks htmlLinks(Units page, const LinkOptions& options) {
    // With their text links are closed too, and all tags stand in it.
    if (options.handler || !options.containing.empty())
        return linksOf(scanOf(page, options.web), options);
    HtmlLinks result;
    RetrieveLinksHandler handler(result, options);
    scanTags(page, handler, options.web);
    return result;
}

}  // namespace velmo
