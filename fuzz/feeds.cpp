// Feeds: recognition, items in all their forms, and rendering. What is read is rendered, and what
// is written as a feed again is read as it was.
#include <velmocore/feeds/FeedItems.h>
#include <velmocore/feeds/FeedRendering.h>
#include <velmocore/markup/Entities.h>
#include <velmocore/platform/Log.h>
#include <velmocore/text/Trimming.h>

#include <utility>

#include "Input.h"

using namespace velmo;

namespace {

using Units = std::u16string_view;

const FeedDisplayOptions Display = {.linkedStyleSheet = false,
                                    .styleSheet = "/none.feeds.stylesheet.css",
                                    .dates = {.zone = {}, .now = Date{}},
                                    .locale = "en"};

bool areSame(const FeedItem& item, const FeedItemView& view) {
    return item.title == view.title && item.description == view.description &&
           item.content == view.content && item.author == view.author && item.guid == view.guid &&
           item.date == view.date && item.link == view.link &&
           item.tags.size() == view.tags.size() && item.enclosures.size() == view.enclosures.size();
}

/// All forms of one reading agree.
void checkForms(const String& text, const Feed& feed, const FeedOptions& options) {
    std::size_t count = 0;
    const Feed handed = parseFeedWithHandler(
        text,
        [&](const FeedItemView& item) {
            fuzz::require(count < feed.items.size());
            fuzz::require(areSame(feed.items[count++], item));
            return false;
        },
        options);
    fuzz::require(count == feed.items.size() && handed.items.empty());
    fuzz::require(handed.title == feed.title && feedTitle(text, options.web) == feed.title);
    const FeedCompleteness found = isFeedComplete(text, options.web);
    fuzz::require(found.isFeed == isFeed(text, options.web) && found.isFeed == feed.isFeed);
    fuzz::require(found.dialect == feed.dialect && found.isComplete == feed.isComplete);
    fuzz::require(feed.isFeed || !feed.isComplete);
}

/// The links and titles of the items, in their order.
void checkPage(const String& page, const std::vector<FeedItem>& items) {
    std::size_t at = 0;
    for (const FeedItem& item : items) {
        const std::u16string title =
            item.link.isEmpty() ? std::u16string(item.title) + u"<br/>"
                                : u"<a class=\"feed_link\" href=\"" + std::u16string(item.link) +
                                      u"\">" + std::u16string(item.title) + u"</a><br/>";
        at = page.view().find(title, at);
        fuzz::require(at != Units::npos);
        at += title.size();
    }
}

void checkRendering(const String& text, const Feed& feed, const FeedOptions& options) {
    FeedDisplayOptions display = Display;
    display.feed = options;
    const String page = stringByConvertingFeed(text, display);
    if (!page.isIdenticalTo(text)) checkPage(page, feed.items);
    checkPage(stringByConvertingItemsToSearchableHTML(feed.items), feed.items);
    checkPage(stringByConvertingItemsToDisplayHTML(feed.items, display), feed.items);
    if (feed.items.empty()) return;
    const FeedItem& item = feed.items.back();
    (void)stringByConvertingItemToSearchableHTML(item);
    (void)stringByConvertingItemToDisplayHTML(item, display);
    (void)isEmptyFeedItem(item, options.web);
}

String escaped(const String& text) { return stringByConvertingCharactersToStandardEntities(text); }

/// Whether a link is read as it is written: not one that wraps another, nor one with a semicolon,
/// which may keep references in front of it from being read.
bool isPlainLink(Units link) {
    return !link.starts_with(u'<') && link.find(u';') == link.npos &&
           link.find(u"&url=http") == link.npos;
}

void checkRoundTrip(const std::vector<FeedItem>& items) {
    std::u16string feed = u"<rss><channel><item/>";
    for (const FeedItem& item : items)
        ((((feed += u"<item><title>") += escaped(item.title)) += u"</title><link>") +=
         escaped(item.link)) += u"</link></item>";
    const std::vector<FeedItem> again = getItemsOfFeed(feed);
    fuzz::require(again.size() == items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        fuzz::require(again[i].title == items[i].title);
        const String link = stringByTrimmingSpacesAndFeeds(items[i].link, true);
        fuzz::require(!isPlainLink(link) || again[i].link == link);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    setLogHandler([](std::string_view) {});
    const String text = fuzz::unitsOf(data, size);
    for (const bool isBound : {false, true}) {
        const FeedOptions options = {.baseURL = URL::URLWithString(u"http://h.org/a/"),
                                     .boundCData = isBound,
                                     .web = fuzz::rulesOf(data, size)};
        const Feed feed = readFeed(text, options);
        checkForms(text, feed, options);
        checkRendering(text, feed, options);
        checkRoundTrip(feed.items);
    }
    (void)stringByReplacingLinkedStyleSheet(text);
    return 0;
}
