#include <velmocore/feeds/FeedItems.h>

#include <sstream>

#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/text/Collapsing.h>

#include "FeedSamples.h"

namespace velmo {
namespace {

using test::FeedSample;
using test::flat;

/// The parts of an item on one line, those that are empty left out.
std::u16string textOf(const FeedItem& item) {
    const std::pair<View, View> parts[] = {{u"t:", item.title},  {u"d:", item.description}, {u"c:", item.content},
                                           {u"a:", item.author}, {u"g:", item.guid},        {u"w:", item.date},
                                           {u"l:", item.link}};
    std::u16string text;
    const auto add = [&](View name, View value) {
        if (!value.empty()) ((text += text.empty() ? u"" : u" ") += name) += value;
    };
    for (const auto& [name, value] : parts) add(name, value);
    for (const String& tag : item.tags) add(u"#", tag);
    for (const FeedEnclosure& each : item.enclosures) add(u"e:", each.url + u"=" + each.length);
    return text;
}

std::u16string textOf(const std::vector<FeedItem>& items) {
    std::u16string text;
    for (const FeedItem& item : items) (text += &item == items.data() ? u"" : u" | ") += textOf(item);
    return text;
}

struct Case {
    View items, expected;
};

void expectItems(std::initializer_list<Case> cases, const URL& base = {}) {
    for (const auto& [items, expected] : cases)
        EXPECT_EQ(utf8(textOf(getItemsOfFeed(u"<rss><channel>" + String(items), base))), utf8(expected)) << utf8(items);
}

TEST(FeedItems, FillSlotsByTheirTags) {
    expectItems({
        {u"<title>T</title><item><title>A&amp;B</title></item>", u"t:A&B"},
        {u"<item><title>a</title><TITLE>b</TITLE></item>", u"t:a"},
        {u"<item><title> </title><title>b</title></item>", u"t:b"},
        {u"<item><description><![CDATA[<p>x</p>]]></description></item>", u"d:<p>x</p>"},
        {u"<item><description>&lt;p&gt;x&lt;/p&gt;</description></item>", u"d:<p>x</p>"},
        {u"<item><description> a <b>c</b>&eacute; </description></item>", u"d:a <b>c</b>\u00E9"},
        {u"<rss:item><rss:title>x</rss:title></RSS:item>", u"t:x"},
        {u"<entry><summary>s</summary><content type=\"html\">&lt;b&gt;c&lt;/b&gt;</content></entry>",
         u"d:s c:<b>c</b>"},
        {u"<item><content:encoded>&lt;i></content:encoded><dc:creator>n</dc:creator></item>", u"c:<i> a:n"},
        {u"<entry><author><name>n</name><email>e</email></author><name>m</name></entry>", u"a:n"},
        {u"<item><author>e (n)</author></item>", u"a:e (n)"},
        {u"<entry><name>n</name></author></entry>", u""},
        {u"<item><category>a</category><category term='b&amp;c'/><category> </category></item>", u"#a #b&c"},
        {u"<item><enclosure url=u&amp;v length=7 /><enclosure length=1 /><enclosure url=w></item>", u"e:u&v=7"},
        {u"<item><pubDate>&lt;now</pubDate><updated>x</updated></item>", u"w:<now"},
        {u"<entry><issued>i</issued></entry><entry><dc:date>d</dc:date></entry><entry><published>p</published></entry>",
         u"w:i | w:d | w:p"},
        {u"<item/><item/><item></item>", u" | "},  // the first tag only opens the items
        {u"</item><title>x</title></item>", u"t:x"},
        {u"<item><description>Array</description></item><item><description>array</description></item>", u"d:array"},
        {u"<item><title>a</title></item><title>b</title><item></item><title>c</title>", u"t:a | t:b"},
        {u"<item><title>a<br>b</title></item>", u"t:b"},
        {u"<item><content/><title>x</title><description/></item>", u"t:x"},
    });
}

TEST(FeedItems, TakeCDataForTheNextSlot) {
    expectItems({
        {u"<item><title>a <![CDATA[b &amp; c]]> d</title></item>", u"t:b & c"},
        {u"<item><![CDATA[x]]><title>a</title><author>n</author></item>", u"t:x a:n"},
        {u"<item><title>a</title><![CDATA[x]]><title>b</title><link>l</link></item>", u"t:a l:l"},
        {u"<item><foo><![CDATA[x]]></foo><link>l</link></item>", u"l:x"},
        {u"<item><title><![CDATA[]]>t</title><link><![CDATA[ ]]>l</link></item>", u"t:t l:l"},
        {u"<item><category><![CDATA[a]]></category><title>t</title></item>", u"t:t #a"},
        {u"<entry><content type=html><![CDATA[a &amp; b]]></content></entry>", u"c:a &amp; b"},
        {u"<entry><content><![CDATA[a &amp; b&eacute;]]></content></entry>", u"c:a & b&eacute;"},
        {u"<item><![CDATA[x]]></item><item><title>a</title></item>", u" | t:a"},
    });
}

TEST(FeedItems, KeepCDataInItsElementIfAsked) {
    const std::pair<View, View> cases[] = {
        {u"<guid isPermaLink=false><![CDATA[x]]></guid><link>l</link>", u"l:l"},
        {u"<guid><![CDATA[http://a/?b&amp;c]]></guid><link>l</link>", u"g:http://a/?b&c l:http://a/?b&c"},
        {u"<media:title><![CDATA[x]]></media:title><link>l</link>", u"l:l"},
        {u"<title><![CDATA[t]]></title><category><![CDATA[c]]></category><link>l</link>", u"t:t l:l #c"},
        {u"<![CDATA[x]]><title>t</title>", u"t:x"},
    };
    for (const auto& [parts, expected] : cases) {
        const String feed = u"<rss><item>" + String(parts) + u"</item>";
        EXPECT_EQ(utf8(textOf(readFeed(feed, {.boundCData = true}).items)), utf8(expected)) << utf8(parts);
    }
}

TEST(FeedItems, LeadToWhatIsMeant) {
    expectItems(
        {
            {u"<item><guid isPermaLink=\"false\">x</guid></item>", u""},
            {u"<item><guid isPermaLink=False>x</guid><guid>y</guid></item>", u"g:y"},
            {u"<item><guid>http://a/</guid><link>http://b/</link></item>", u"g:http://a/ l:http://a/"},
            {u"<item><guid>a</guid><link>http://b/</link></item>", u"g:a l:http://b/"},
            {u"<item><guid>http://Digg.com/x</guid><link>b</link></item>", u"g:http://Digg.com/x l:b"},
            {u"<entry><link rel=\"self\" href=\"x\"/><link href=\"y\"/></entry>", u"l:y"},
            {u"<entry><link rel=service.post href=a /><link rel=edit href=b /><link rel=edits href='c&amp;d'/></entry>",
             u"l:c&d"},
            {u"<item><link>l&amp;m</link><link href=n></item>", u"l:l&m"},
            {u"<item><link>/a</link></item><item><link>../a</link></item>", u"l:http://h.org/a | l:../a"},
            {u"<item><link>HTTP://news.google.com/news/url?q&amp;url=http://x/?a=b&amp;cid=3</link></item>",
             u"l:http://x/?a=b"},
            {u"<item><link>http://news.google.com/news/url?url=http://x/</link></item>",
             u"l:http://news.google.com/news/url?url=http://x/"},
            {u"<item><link>&lt;A href=\"x\">y</link></item>", u"l:x"},
            {u"<item><link>&lt;a href=x y></link></item><item><link>&lt;a href=x></link></item>", u"l:x | l:x"},
            {u"<item><link>&lt;a href=\"x</link></item>", u"l:<a href=\"x"},
        },
        URL::URLWithString(u"http://h.org/b/c"));
}

TEST(FeedItems, BeginAtARoot) {
    const std::pair<View, View> cases[] = {{u"<html><rss><item></item>", u"none"},
                                           {u"<body/><rss><item></item>", u"none"},
                                           {u"<head><rss><item><title>a</title></item>", u"t:a"},
                                           {u"<item></item><feed><item><title>a</title></item>", u"t:a"},
                                           {u"", u"none"},
                                           {u"<rss", u"none"}};
    for (const auto& [text, expected] : cases) {
        const std::vector<FeedItem> items = getItemsOfFeed(text);
        EXPECT_EQ(items.empty() ? u"none" : textOf(items), expected) << utf8(text);
    }
}

TEST(FeedItems, ComeWithTheirChannel) {
    struct {
        View text, title;
        bool isComplete;
    } cases[] = {{u"<rss><title> A&amp;B </title><title>c</title></rss>", u"A&B", true},
                 {u"<feed><title> </title><image><title>i</title></image><entry>", u"i", false},
                 {u"<rss><title/><title><![CDATA[x]]></title><item><title>t</title></item></rss>", u"", true},
                 {u"<rss><item></item><title>t</title></channel></rss>", u"", true}};
    for (const auto& [text, title, isComplete] : cases) {
        const Feed feed = readFeed(text);
        EXPECT_EQ(feed.title.view(), title) << utf8(text);
        EXPECT_EQ(feed.title.isAbsent(), title.empty());
        EXPECT_EQ(feedTitle(text), feed.title);
        EXPECT_EQ(feed.isComplete, isComplete);
        EXPECT_TRUE(feed.isFeed);
    }
}

TEST(FeedItems, AreHandedOutUntilOneIsEnough) {
    std::size_t count = 0;
    const Feed feed = parseFeedWithHandler(u"<rss><item></item><item></item><item></item></rss>",
                                           [&](const FeedItemView&) { return ++count == 2; });
    EXPECT_EQ(count, 2u);
    EXPECT_TRUE(feed.isFeed && !feed.isComplete && feed.items.empty());
}

TEST(FeedItems, AreEmptyIfOnlyTheirTitleTells) {
    const std::pair<FeedItem, bool> cases[] = {
        {{}, true},
        {{.title = u"t", .description = u" \n"}, true},
        {{.title = u"A title", .description = u"a TITLE"}, true},
        {{.title = u"A title", .description = u"<a title>!"}, true},
        {{.title = u"t", .description = u"<iframe src=x></iframe>T"}, true},
        {{.title = u"t", .description = u"text", .content = u"t"}, true},
        {{.title = u"t", .description = u"text"}, false},
        {{.title = u"t", .description = u"t", .icon = u"i"}, false},
        {{.icon = u"i"}, false},
    };
    for (const auto& [item, isEmpty] : cases) EXPECT_EQ(isEmptyFeedItem(item), isEmpty) << item.description;
}

TEST(FeedItems, AreThoseOfAnXMLParser) {
    std::size_t count = 0;
    for (const FeedSample& sample : test::feedSamples()) {
        const String text = stringWithMarkupData(sample.bytes);
        const Feed feed = readFeed(text);
        EXPECT_EQ(feed.isFeed ? test::nameOf(feed.dialect) : "none", sample.dialect) << sample.file;
        EXPECT_EQ(flat(feed.title), sample.title) << sample.file;
        ASSERT_EQ(feed.items.size(), sample.items.size()) << sample.file;
        for (std::size_t i = 0; i < feed.items.size(); ++i) {
            EXPECT_EQ(flat(feed.items[i].title), sample.items[i].first) << sample.file;
            EXPECT_EQ(feed.items[i].link.utf8(), sample.items[i].second) << sample.file;
        }
        ++count;
    }
    EXPECT_EQ(count, 20u);
}

}  // namespace
}  // namespace velmo
