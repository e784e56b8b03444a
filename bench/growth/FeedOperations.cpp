// Feeds: recognition, items, and rendering.
#include <velmocore/feeds/FeedItems.h>
#include <velmocore/feeds/FeedRendering.h>

#include "Growth.h"

namespace velmo::growth {

namespace {

/// Without a sheet, which is the same for each feed.
FeedDisplayOptions makeDisplay() {
    FeedDisplayOptions options;
    options.linkedStyleSheet = false;
    options.styleSheet = Path("/none");
    options.dates = {.zone = {}, .now = Date{}};
    options.locale = "en";
    return options;
}

const FeedDisplayOptions& display() {
    static const FeedDisplayOptions options = makeDisplay();
    return options;
}

String inItem(const String& text, std::u16string_view start, std::u16string_view end) {
    return u"<rss><item>" + String(start) + text + end + u"</item></rss>";
}

constexpr Operation Rows[] = {
    {"recognition of a feed",
     [](const Input& in) {
         use(isFeed(in.text));
         use(isFeedComplete(in.text));
         use(feedTitle(in.text));
     }},
    {"items",
     [](const Input& in) {
         const FeedOptions based = {.baseURL = URL::URLWithString(u"http://h.org/")};
         use(readFeed(in.text, based));
         use(readFeed(in.text, {.boundCData = true}));
         use(readFeed(in.text, {.baseURL = based.baseURL, .web = WebRules::today()}));
     }},
    {"the text as an item",
     [](const Input& in) {
         use(readFeed(inItem(in.text, u"<title>", u"</title>")));
         use(readFeed(inItem(in.text, u"<link>", u"</link>")));
         use(readFeed(inItem(in.text, u"<description>", u"</description>")));
         use(readFeed(inItem(in.text, u"<category term='", u"'/>")));
     }},
    {"a feed as a page",
     [](const Input& in) {
         use(stringByConvertingFeed(in.text, display()));
         use(stringByConvertingFeed(inItem(in.text, u"<content>", u"</content>"), display()));
         use(stringByReplacingLinkedStyleSheet(in.text));
     }},
    {"items as a page",
     [](const Input& in) {
         const FeedItem items[] = {{.title = in.text, .content = in.text, .author = in.text},
                                   {.date = in.text, .link = in.text, .tags = {in.text}},
                                   {.enclosures = {{in.text, in.text}}}};
         use(stringByConvertingItemsToDisplayHTML(items, display()));
         for (const FeedItem& item : items) {
             use(stringByConvertingItemToSearchableHTML(item));
             use(isEmptyFeedItem(item));
         }
     }},
};

}  // namespace

std::span<const Operation> feedOperations() { return Rows; }

}  // namespace velmo::growth
