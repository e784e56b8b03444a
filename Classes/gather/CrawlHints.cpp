// A page is read here apart from its reading as a record: what a crawler asks of it is nobody
// else's business, and is asked of pages too that nobody keeps. It happens on the thread that reads
// the page.
#include "gather/CrawlHints.h"

#include <velmocore/feeds/FeedItems.h>
#include <velmocore/markup/ErrorPages.h>
#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagScanner.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/Finding.h>
#include <velmocore/text/Trimming.h>
#include <velmocore/url/RelativeURLs.h>

#include <algorithm>

namespace velmo::detail {
namespace {

using View = std::u16string_view;

/// The notices that are known are short; a long page is none.
constexpr std::size_t LongestNotice = 16384;

/// Directives with a value behind a colon, so that theirs is no name of a program.
constexpr View ValueDirectives[] = {u"unavailable_after", u"max-snippet", u"max-image-preview",
                                    u"max-video-preview"};

constexpr View FeedTypes[] = {u"application/rss+xml", u"application/atom+xml",
                              u"application/rdf+xml"};

bool isOneOf(const String& text, std::span<const View> names) {
    return std::ranges::any_of(names, [&](View name) { return isEqualToStringNoCase(text, name); });
}

String trimmed(View text) { return stringByTrimmingWhiteSpaces(String(text)); }

/// Collects what the tags of a page say.
class HintReader {
public:
    HintReader(CrawlHints& hints, const URL& base, View agent, const WebRules& web)
        : hints_(hints), base_(base), agent_(agent), web_(web) {}

    void take(const Tag& tag) {
        if (tag.kind != TagKind::Element || tag.isClosing()) return;
        if (tag.isNamed("META"))
            takeMeta(tag.whole());
        else if (tag.isNamed("LINK"))
            takeLink(tag.whole());
        else if (tag.isNamed("FRAME") || tag.isNamed("IFRAME"))
            add(hints_.links, attributeOfTagCharacters(tag.whole(), "SRC", web_));
        else if (tag.isNamed("A") || tag.isNamed("AREA"))
            hints_.hasOtherLinks |=
                hasWord(attributeOfTagCharacters(tag.whole(), "REL", web_), u"nofollow");
    }

private:
    static bool hasWord(const String& text, View word) {
        return containsSubstring(text, word, Case::Insensitive);
    }

    void takeMeta(View tag) {
        const String name = attributeOfTagCharacters(tag, "NAME", web_);
        const bool isOurs = isEqualToStringNoCase(name, u"robots") ||
                            (!agent_.empty() && isEqualToStringNoCase(name, agent_));
        if (isOurs) hints_.robots.take(contentAttributeOfTagCharacters(tag, web_), {});
    }

    void takeLink(View tag) {
        if (!hasWord(attributeOfTagCharacters(tag, "REL", web_), u"alternate")) return;
        if (isOneOf(trimmed(attributeOfTagCharacters(tag, "TYPE", web_)), FeedTypes))
            add(hints_.feeds, attributeOfTagCharacters(tag, "HREF", web_));
    }

    void add(std::vector<URL>& urls, const String& reference) {
        const URL url = URLRelativeTo(base_, normalizedStringURL(reference, web_), {.web = web_});
        if (url.isAbsent()) return;
        urls.push_back(url);
        hints_.hasOtherLinks = true;
    }

    CrawlHints& hints_;
    const URL& base_;
    const View agent_;
    const WebRules& web_;
};

void readFeedInto(CrawlHints& hints, const Page& page, const WebRules& web) {
    for (const FeedItem& item : readFeed(page.markup(), {.baseURL = page.url(), .web = web}).items)
        if (const URL link = URLRelativeTo(page.url(), item.link, {.web = web}); !link.isAbsent())
            hints.links.push_back(link);
}

void readPageInto(CrawlHints& hints, const Page& page, View agent, const WebRules& web) {
    HintReader reader(hints, page.baseURL(), agent, web);
    GetTagsOfString(
        page.markup(),
        [&](const Tag& tag) {
            reader.take(tag);
            return false;
        },
        web);
    const HtmlLinks found = htmlLinks(
        page.markup(), {.useRelNoFollow = true, .filter = true, .web = web, .url = page.url()});
    for (const String& link : found.links)
        if (const URL url = URLRelativeTo(page.baseURL(), link, {.web = web}); !url.isAbsent())
            hints.links.push_back(url);
    if (page.markup().length() > LongestNotice) return;
    const String body =
        stringByConvertingHtml2PlainText(page.markup(), {.onlyBody = true, .web = web});
    hints.isRateNotice = exceededPageLoadFrequencyTitle(page.title(), body);
}

}  // namespace

void RobotsDirectives::take(View list, View agent) {
    bool isOurs = true;
    for (std::size_t start = 0, end; start <= list.size(); start = end + 1) {
        end = std::min(list.find(u',', start), list.size());
        String word = trimmed(list.substr(start, end - start));
        const std::size_t colon = word.view().find(u':');
        if (colon != View::npos) {
            const String name = trimmed(word.view().substr(0, colon));
            // A blank in it means that it is none, but a part of a date.
            if (isOneOf(name, ValueDirectives) || name.view().find(u' ') != View::npos) continue;
            isOurs = isEqualToStringNoCase(name, u"robots") || isEqualToStringNoCase(name, agent);
            word = trimmed(word.view().substr(colon + 1));
        }
        const bool isNone = isOurs && isEqualToStringNoCase(word, u"none");
        noIndex |= isNone || (isOurs && isEqualToStringNoCase(word, u"noindex"));
        noFollow |= isNone || (isOurs && isEqualToStringNoCase(word, u"nofollow"));
    }
}

CrawlHints readCrawlHints(const SourcePage& source, const RobotsDirectives& header, View agent,
                          const WebRules& web) {
    CrawlHints hints = {.robots = header};
    const Page page(source.bytes,
                    {.url = source.url, .contentType = source.contentType, .web = web});
    if (page.isFeed())
        readFeedInto(hints, page, web);
    else
        readPageInto(hints, page, agent, web);
    if (hints.robots.noFollow) {
        hints.hasOtherLinks |= !hints.links.empty();
        hints.links.clear();
    }
    return hints;
}

}  // namespace velmo::detail
