#include <velmocore/feeds/FeedRendering.h>

#include <filesystem>

#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/platform/Log.h>
#include <velmocore/platform/UserDefaults.h>

#include "FeedSamples.h"

namespace velmo {
namespace {

constexpr View Head = u"<html>\n<head>\n<meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\"/>\n";
const std::string Sheet = test::dataPath("feeds/expected.tsv") + "/none.feeds.stylesheet.css";

/// What a page holds between the templates of its head and end, with a sheet that cannot be read.
std::string bodyOf(const String& page) {
    std::u16string text(page);
    for (View part : {Head, View(u"<style type=\"text/css\"><!----></style>\n"), View(u"</head>\n<body>\n"),
                      View(u"\n</body>\n</html>")}) {
        const std::size_t at = text.find(part);
        if (at != text.npos) text.erase(at, part.size());
    }
    return utf8(text);
}

const FeedDisplayOptions Inline = {
    .linkedStyleSheet = false, .styleSheet = Sheet, .dates = {.zone = {}}, .locale = "en_GB"};

std::string displayed(const FeedItem& item) { return bodyOf(stringByConvertingItemToDisplayHTML(item, Inline)); }

TEST(FeedRendering, WritesItemsByWhatTheyHave) {
    setLogHandler([](std::string_view) {});  // soon is no date
    const std::pair<FeedItem, const char*> cases[] = {
        {{.title = u"t"}, "\n<div class=\"feed_header\">t<br/></div><div class=\"feed_article\">\n\n</div>\n"},
        {{.date = u"Mon, 1 Jan 2001 10:00:00 GMT"},
         "\n<div class=\"feed_header\"><br/><font class=\"feed_date\">1 Jan 2001, 10:00</font></div><div "
         "class=\"feed_article\">\n\n</div>\n"},
        {{.title = u"t", .date = u"soon", .link = u"l"},
         "\n<div class=\"feed_header\"><a class=\"feed_link\" href=\"l\">t</a><br/><font "
         "class=\"feed_date\">soon</font>"
         "</div><div class=\"feed_article\">\n\n</div>\n"},
        {{.description = u"d", .content = u"<span x>c</SPAN><b>", .link = u"l", .icon = u"i"},
         "\n<div class=\"feed_header\"><table><tr><td valign=\"centered\"><img src=\"i\"/></td><td valign=\"centered\">"
         "<a class=\"feed_link\" href=\"l\"></a><br/></td></table></div><div class=\"feed_article\">\nc<b>\n</div>\n"},
        {{.description = u"d",
          .author = u"a",
          .date = u"soon",
          .enclosures = {{u"http://h/a.mp3", u"12345"}, {u"b", u"12 MB"}, {u"c/", u"0"}, {u"d", {}}}},
         "<meta name=\"author\" content=\" a\"/>\n\n<div class=\"feed_header\"><br/><font class=\"feed_date\">a - "
         "soon</font></div><div class=\"feed_article\">\nd\n<div class=\"feed_enclosures\"><p>\n"
         "<a class=\"feed_enclosure\" href=\"http://h/a.mp3\">a.mp3</a>&nbsp;(12345 bytes)<br/>\n"
         "<a class=\"feed_enclosure\" href=\"b\">b</a>&nbsp;(12 MB)<br/>\n"
         "<a class=\"feed_enclosure\" href=\"c/\">c</a><br/>\n<a class=\"feed_enclosure\" href=\"d\">d</a><br/>\n"
         "</p></div>\n</div>\n"},
    };
    for (const auto& [item, expected] : cases) EXPECT_EQ(displayed(item), expected);
    setLogHandler(nullptr);
}

TEST(FeedRendering, HidesFromAnIndexWhatNobodyLooksFor) {
    const FeedItem item = {.title = u"t",
                           .content = u"c",
                           .author = u"<b>n</b>",
                           .date = u"2001-01-01",
                           .tags = {u"x", u"y z"},
                           .enclosures = {{u"u", u"1"}}};
    EXPECT_EQ(bodyOf(stringByConvertingItemToSearchableHTML(item)),
              "<meta name=\"author\" content=\" n\"/>\n<meta name=\"keywords\" content=\"x, y z\"/>\n"
              "\n<div class=\"feed_header\">t<br/></div><div class=\"feed_article\">\nc\n</div>\n");
    const FeedItem items[] = {item, {.title = u"s"}};
    EXPECT_EQ(bodyOf(stringByConvertingItemsToSearchableHTML(items)),
              "\n<div class=\"feed_header\">t<br/></div><div class=\"feed_article\">\nc\n</div>\n"
              "\n<div class=\"feed_header\">s<br/></div><div class=\"feed_article\">\n\n</div>\n");
    EXPECT_EQ(stringByConvertingItemsToSearchableHTML({}), Head + String(u"</head>\n<body>\n\n</body>\n</html>"));
    EXPECT_EQ(stringByConvertingItemsToDisplayHTML(items, Inline).view().find(u"<link rel"), Head.size());
}

TEST(FeedRendering, FramesAFeedByHowFarItGoes) {
    constexpr const char* HeaderOfT =
        "<title>T</title>\n</head>\n<body><div class=\"page_header\"><div "
        "class=\"page_title\"><nobr>T</nobr></div></div>\n";
    const std::pair<View, std::string> cases[] = {
        {u"<rss><channel></channel></rss>", "\n</head>\n</html>"},
        {u"<rss><title>T</title>", HeaderOfT},
        {u"<rss><item><x>", "\n</head>\n</html>"},
        {u"<rss><item><x/>", ""},
        {u"<rss><title>T</title><item><link>/l</link></item>",
         HeaderOfT + std::string("\n<div class=\"feed_header\"><a class=\"feed_link\" "
                                 "href=\"http://h/l\"></a><br/></div><div class=\"feed_article\">\n\n</div>\n")},
    };
    FeedDisplayOptions options = Inline;
    options.feed.baseURL = URL::URLWithString(u"http://h/");
    for (const auto& [feed, expected] : cases)
        EXPECT_EQ(bodyOf(stringByConvertingFeed(feed, options)), expected) << utf8(feed);
    const String page = u"<html><rss><item></item></rss>";
    EXPECT_TRUE(stringByConvertingFeed(page, options).isIdenticalTo(page));
}

// Item by item or in the scan of the feed: the same page, but for what stands in the head.
TEST(FeedRendering, AgreesWithTheItems) {
    std::size_t items = 0;
    for (const test::FeedSample& sample : test::feedSamples()) {
        const String text = stringWithMarkupData(sample.bytes);
        const Feed feed = readFeed(text);
        items += feed.items.size();
        const String page = stringByConvertingFeed(text, Inline);
        const String expected = stringByConvertingItemsToDisplayHTML(feed.items, Inline);
        const auto body = [](View html) {
            return utf8(html.substr(std::min(html.find(u"\n<div class=\"feed_"), html.size())));
        };
        EXPECT_EQ(body(page), feed.items.empty() ? "" : body(expected)) << sample.file;
    }
    EXPECT_GT(items, 15u);
}

TEST(FeedRendering, LinksASheetAndTakesItIn) {
    const String own = linkableFeedStyleSheet();
    ASSERT_TRUE(own.view().ends_with(u".feeds.stylesheet.css"));
    const String feed = u"<rss><item><title>t</title></item></rss>";
    const String inlined = stringByConvertingFeedToDisplayHTMLUsingLinkedStyleSheet(feed, false);
    EXPECT_NE(inlined.view().find(u"feed_article {"), View::npos);
    const String linked = stringByConvertingFeedToDisplayHTMLUsingLinkedStyleSheet(feed, true);
    EXPECT_NE(linked.view().find(u"href=\"file://localhost/" + own.substring({1, own.length()})), View::npos);
    EXPECT_EQ(stringByReplacingLinkedStyleSheet(linked), inlined);
    EXPECT_TRUE(stringByReplacingLinkedStyleSheet(inlined).isIdenticalTo(inlined));
    setUserDefaultsHook(
        [](View key) -> Strings { return key == u"linkableFeedStyleSheet" ? Strings{u"/none/a b"} : Strings(); });
    EXPECT_EQ(linkableFeedStyleSheet(), u"/none/a b");
    EXPECT_NE(stringByConvertingFeed(feed).view().find(u"\"file://localhost/none/a%20b\""), View::npos);
    const String bare = stringByReplacingLinkedStyleSheet(linked);
    EXPECT_EQ(bare.view().find(u"stylesheet"), View::npos);
    EXPECT_TRUE(bare.view().starts_with(Head + String(u"</head>")));
    setUserDefaultsHook(nullptr);
    constexpr View Cut =
        u"<link rel=\"stylesheet\" type=\"text/css\" href=\"file://localhost/.feeds.stylesheet.css\"/>";
    EXPECT_EQ(stringByReplacingLinkedStyleSheet(u"a" + String(Cut)).view().substr(0, 2), u"a<");
}

}  // namespace
}  // namespace velmo
