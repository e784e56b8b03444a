// One handler for links with and without their text. Where no text is asked for, a link counts
// when it is opened; else when it is closed, as only then all of its text is known. A link is
// stored once, however often a page has it.
#include <velmocore/markup/Links.h>

#include <string>

#include <velmocore/text/Finding.h>
#include <velmocore/url/LinkFilter.h>

#include "markup/BaseRule.h"
#include "markup/MarkupReading.h"
#include "markup/NormalizedLink.h"
#include "markup/PlainHref.h"
#include "markup/TagScan.h"
#include "markup/TagSupport.h"
#include "markup/TagWalk.h"
#include "markup/UniqueLinks.h"
#include "text/ByteScan.h"
#include "text/SmallBuffer.h"

namespace velmo {
namespace {

using namespace detail;

using Units = std::u16string_view;

/// The raw reference of a tag; null if there is none, or none to follow.
Units hrefOf(const Tag& tag, const LinkOptions& options) {
    if (options.useRelNoFollow && keyword::contains(attributeOf(tag, "REL"), "NOFOLLOW")) return {};
    return attributeOf(tag, "HREF");
}

void addLink(Units href, const LinkOptions& options, UniqueLinks& links) {
    if (href.empty() || (options.filter && filterLink(href))) return;
    const NormalizedLink link(href, {.web = options.web});
    if (!link.view().empty()) links.add(link.view());
}

/// Adds the link of a tag that is told by one look, as most are. Else false: it takes more.
template <class AnyTag>
bool addPlainLink(const AnyTag& tag, const LinkOptions& options, UniqueLinks& links) {
    if (options.useRelNoFollow || options.filter) return false;
    const auto href = plainHref(tag);
    if (href.empty()) return false;
    links.add(href);
    return true;
}

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
            if (!wantsText_ && tag.isNamed("AREA")) addLinkOf(tag);
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
            if (isOpening(tag)) addLinkOf(tag);
        } else if (isOpening(tag)) {
            openLink(hrefOf(tag));
        } else {
            // Only now all of the text is known; a link that is never closed has none.
            if (hasLinkText_ && isKept()) add(href_);
            openLink(Units());
        }
    }

    Units hrefOf(const Tag& tag) const { return velmo::hrefOf(tag, options_); }

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

    void addLinkOf(const Tag& tag) {
        if (!addPlainLink(tag, options_, links_)) add(hrefOf(tag));
    }
    void add(Units href) { addLink(href, options_, links_); }

    const LinkOptions& options_;
    const bool wantsText_;
    URL& baseURL_;
    UniqueLinks links_;
    std::u16string href_;  ///< a copy, as tags of bytes come one at a time
    bool hasLinkText_ = false;
    std::u16string linkText_;
};

/// Whether links count when they are closed only.
bool wantsText(const LinkOptions& options) {
    return options.handler || !options.containing.empty();
}

/// The same, but for texts, from tags of bytes. Nearly all that name a link are ASCII, and so is the
/// link, and is normal: it is looked up as it stands, and becomes units only if it is new.
class ByteLinksHandler {
public:
    ByteLinksHandler(HtmlLinks& result, const LinkOptions& options)
        : options_(options), baseURL_(result.baseURL), links_(result.links) {}

    bool operator()(const ByteTag& tag) {
        if (tag.nameLength == 1) {
            if (tag.isNamed("A") && isOpening(tag)) addLinkOf(tag);
        } else if (lengthOfName(tag) == 4 && isOpening(tag)) {
            if (tag.isNamed("BASE")) applyBaseRule(wide_.of(tag), options_.url, baseURL_);
            if (tag.isNamed("AREA")) addLinkOf(tag);
        }
        return false;
    }

    static bool passesOver(char16_t unit) { return RetrieveLinksHandler::passesOver(unit); }

private:
    void addLinkOf(const ByteTag& tag) {
        if (addPlainLink(tag, options_, links_)) return;
        const std::string_view whole = tag.whole();
        if (options_.useRelNoFollow || !scan::isAscii(whole)) return addLinkOf(wide_.of(tag));
        const Range range = rangeOfAttributeOfAscii(tag, "HREF");
        if (!range.isFound()) return;
        const std::string_view href = whole.substr(range.location, range.length);
        if (!options_.filter && isNormalLink(href, {.web = options_.web})) {
            links_.add(href);
            return;
        }
        SmallBuffer<char16_t> units(href.size());
        scan::widen(href, units.data());
        add({units.data(), units.size()});
    }
    void addLinkOf(const Tag& tag) { add(hrefOf(tag, options_)); }
    void add(Units href) { addLink(href, options_, links_); }

    const LinkOptions& options_;
    URL& baseURL_;
    UniqueLinks links_;
    WideTags wide_{{.text = TagParts::Text::None}};
};

}  // namespace

namespace {

/// With the text of links, for which all tags are walked.
HtmlLinks linksWithText(TagWalk walk, const LinkOptions& options) {
    HtmlLinks result;
    RetrieveLinksHandler handler(result, options);
    walk(handler);
    return result;
}

}  // namespace

HtmlLinks detail::linksOf(const TagList& tags, const LinkOptions& options) {
    HtmlLinks result;
    RetrieveLinksHandler handler(result, options);
    tags.each(handler);
    return result;
}

HtmlLinks detail::linksOf(const ByteTagList& tags, const LinkOptions& options) {
    if (wantsText(options)) return linksWithText(widened(tags, {}), options);
    HtmlLinks result;
    ByteLinksHandler handler(result, options);
    tags.each(handler);
    return result;
}

HtmlLinks htmlLinks(Bytes page, const LinkOptions& options, MarkupDecodingOptions decoding) {
    decoding.web = options.web;
    const MarkupReading reading = readMarkup(page, decoding);
    if (!reading.isUTF8()) return htmlLinks(reading.page.text, options);
    if (wantsText(options))
        return linksWithText(widened(scanOf(reading.utf8, options.web), {}), options);
    HtmlLinks result;
    ByteLinksHandler handler(result, options);
    scanTags(reading.utf8, handler, options.web);
    return result;
}

HtmlLinks htmlLinks(Units page, const LinkOptions& options) {
    // With their text links are closed too, and all tags stand in it.
    if (wantsText(options)) return linksWithText(scanOf(page, options.web), options);
    HtmlLinks result;
    RetrieveLinksHandler handler(result, options);
    scanTags(page, handler, options.web);
    return result;
}

}  // namespace velmo
