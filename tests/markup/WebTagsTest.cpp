// Pages as browsers of today read them: tags, attributes, texts that hold no tags, and bases.
#include <regex>
#include <set>
#include <sstream>

#include <velmocore/feeds/FeedItems.h>
#include <velmocore/markup/JunkStripping.h>
#include <velmocore/markup/LinkRewriting.h>
#include <velmocore/markup/LinkThumbnails.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/MetadataWriting.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PageMetadata.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagScanner.h>
#include <velmocore/markup/TagStripping.h>
#include <velmocore/platform/Log.h>

#include "TestSupport.h"

namespace velmo {
namespace {

constexpr WebRules Today = WebRules::today();

/// The tags of a scan with what stands in front of each, in one line.
std::string scanned(View page, const WebRules& web = Today) {
    std::string line;
    GetTagsOfString(
        page,
        [&](const Tag& tag) {
            line += utf8(tag.text()) + "[" + (tag.kind == TagKind::Comment ? "#" : utf8(tag.name())) + "]";
            EXPECT_LE(tag.tagLocation + tag.tagLength, page.size());
            return false;
        },
        web);
    return line;
}

TEST(WebTags, EachRuleReadsWhatItIsFor) {
    const std::tuple<bool WebRules::*, View, std::string, std::string> cases[] = {
        // by the own rules, and with that one rule
        {&WebRules::attributes, u"<b x=y'>a<b z='>c", "[b]c[]", "[b]a<b z='>c[]"},
        {&WebRules::attributes, u"<b ='>a<b c = \"d>\">e<b/f='>g'>h<b i='j'k=l'>m", "[b]g'>h<b i='j'k=l'>m[]",
         "[b]a[b]e[b]h[b]m[]"},
        {&WebRules::tagBounds, u"1 < 2 <b>3 <", "1 [b]3 <[]", "1 < 2 [b]3 <[]"},
        {&WebRules::tagBounds, u"a<b", "a<b[]", "a[#][]"},
        {&WebRules::comments, u"a<!-b>c->d<!-->e<!---->f<!-- --!>g<!--!>h-->i", "a[#]d[#]e[#]f[#]g[#]h-->i[]",
         "a[#]c->d[#]e[#]f[#]g[#]i[]"},
        {&WebRules::comments, u"<?php a='>' ?>b<!x y='>c<![if d]>e<![endif>f]>g</ h>i",
         "[php]b<!x y='>c<![if d]>e<![endif>f]>g</ h>i[]", "[#]' ?>b[#]c[]e[]f]>g[#]i[]"},
        {&WebRules::rawText, u"<title>a<b>c</titles></title >d<textarea><i></textarea>e",
         "[title]a[b]c[titles][title]d[textarea][i][textarea]e[]",
         "[title]a<b>c</titles>[title]d[textarea]<i>[textarea]e[]"},
        {&WebRules::rawText, u"<script><!-- a</script>b<!-- --></script>c<style><!--</style>d --></style>",
         "[script]c[style][]", "[script]b[#][script]c[style]d -->[style][]"},
        {&WebRules::rawText, u"<script><!--<script>a</script>b--></script>c<script>d<b>", "[script]c[script]d[b][]",
         "[script]c[script][]"},
        {&WebRules::selfClosing, u"<script/>a</script>b<svg><script/>c</svg><style/>d<p>",
         "[script]a[script]b[svg][script]c[svg][style]d[p][]", "[script]b[svg][script]c[svg][style]d[p][]"},
    };
    for (const auto& [rule, page, own, today] : cases) {
        WebRules web;
        web.*rule = true;
        EXPECT_EQ(scanned(page, {}), own) << utf8(page);
        EXPECT_EQ(scanned(page, web), today) << utf8(page);
    }
}

TEST(WebTags, ImagesHaveElementsOfTheirOwn) {
    const std::pair<View, std::string> cases[] = {
        {u"<svg><title>a<b/></title><style/><![CDATA[<i>]]>c</svg><style/>d",
         "[svg][title]a[b][title][style][]c[svg][style][]"},
        {u"<svg><desc><script/>a</script></desc><script/>b", "[svg][desc][script][desc][script]b[]"},
        {u"<svg/><xmp><b></xmp><math><p><xmp><b>", "[svg][xmp]<b>[xmp][math][p][xmp]<b>[]"},
    };
    for (const auto& [page, today] : cases) EXPECT_EQ(scanned(page), today) << utf8(page);
}

/// What a list of numbered words or links holds, each once, sorted as texts.
std::string listOf(const std::string& text, const char* pattern) {
    const std::regex regex(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at) found.insert(at->str());
    std::string list;
    for (const std::string& each : found) list += (list.empty() ? "" : " ") + each;
    return list;
}

// What an HTML parser saw; scripts/web-pages tells how the pages were made.
TEST(WebTags, AgreeWithAnHtmlParser) {
    std::istringstream rows(test::readData("web-pages.tsv"));
    std::size_t count = 0;
    for (std::string row; std::getline(rows, row); ++count) {
        const std::size_t second = row.rfind('\t'), first = row.rfind('\t', second - 1);
        std::string units = row.substr(0, first);
        for (const auto& [escape, unit] : {std::pair("\\\\n", "\n"), {"\\\\t", "\t"}, {"\\\\f", "\f"}})
            units = std::regex_replace(units, std::regex(escape), unit);
        const String page = String::fromUTF8(units);
        std::string links;
        for (const String& link : htmlLinks(page, {.web = Today}).links) links += link.utf8() + "\n";
        const String text = stringByConvertingHtml2PlainText(page, {.imageAlts = false, .web = Today});
        EXPECT_EQ(listOf(text.utf8(), "w[0-9]+"), row.substr(first + 1, second - first - 1)) << row;
        EXPECT_EQ(listOf("\n" + links, "\\bL[0-9]+(?=\n)"), row.substr(second + 1)) << row;
    }
    EXPECT_EQ(count, 500u);
}

TEST(WebTags, AttributesAreThoseOfTheStandard) {
    const std::tuple<View, View, View> cases[] = {
        // by the own rules, and by those of today
        {u"<a href=x'y\"z>", u"x'y\"z", u"x'y\"z"},
        {u"<a href='a>b '>", u"a", u"a>b"},
        {u"<a title=it's href=x>", u"", u"x"},
        {u"<a href='' href=x>", u"", u""},
        {u"<a/href=x/y/>", u"x/y/", u"x/y/"},
        {u"<a ==href=x>", u"x", u""},
        {u"<a x:href=y href = z>", u"y", u"z"},
        {u"<a xlink:href=y>", u"y", u"y"},
        {u"<a HREF\n=\n'x'b>", u"x", u"x"},
        {u"<a href==x>", u"x", u"=x"},
        {u"<a b= href=c>", u"c", u""},
        {u"<a b='>' href=c", u"c", u"c"},
        {u"<a href", u"", u""},
    };
    for (const auto& [tag, own, today] : cases) {
        EXPECT_EQ(attributeOfTagCharacters(tag, "HREF").view(), own) << utf8(tag);
        EXPECT_EQ(attributeOfTagCharacters(tag, "HREF", Today).view(), today) << utf8(tag);
        for (std::size_t length = 0; length < tag.size(); ++length)
            (void)attributeOfTagCharacters(tag.substr(0, length), "HREF", Today);
    }
    EXPECT_EQ(contentAttributeOfTagCharacters(u"<meta content='a<meta>b'>", Today), u"a<meta>b");
}

TEST(WebTags, BasesAreRelativeToThePage) {
    setLogHandler([](std::string_view) {});
    const URL url = URL::URLWithString(u"http://h.org/a/b");
    const View page = u"<base href=c/><base href='http://i.org/'><a href=d><img src=e.jpg></a><iframe src=f>";
    const std::string base = "http://h.org/a/c/";
    EXPECT_EQ(htmlLinks(page, {.web = Today, .url = url}).baseURL.absoluteString().utf8(), base);
    EXPECT_EQ(htmlFramesSet(page, {.url = url, .web = Today}).baseURL.absoluteString().utf8(), base);
    EXPECT_EQ(htmlMetadata(page, {.url = url, .web = Today}).base.absoluteString().utf8(), base);
    EXPECT_EQ(htmlMetadata(page, {.url = url}).base.absoluteString(), String());
    const Page today = Page::pageWithString(page, url, Today);
    EXPECT_EQ(today.links()[0].absoluteString().utf8(), base + "d");
    EXPECT_EQ(today.frames()[0].absoluteString().utf8(), base + "f");
    EXPECT_EQ(today.linkThumbnails().thumbnails.begin()->second.utf8(), base + "e.jpg");
    EXPECT_EQ(Page::pageWithString(page, url).links()[0].absoluteString(), u"http://i.org/d");
    const auto baseOf = [](View tag, View from) {
        return htmlBaseURL(tag, Today, URL::URLWithString(from)).absoluteString();
    };
    EXPECT_EQ(baseOf(u"<base href='../x/'>", u"file:///a/b/c"), u"file:///a/x/");
    EXPECT_EQ(baseOf(u"<base href='javascript:x'>", u"http://h/"), String());
    EXPECT_EQ(htmlBaseURL(u"<base href='c/'>", Today).absoluteString(), String());
    setLogHandler(nullptr);

    const String feed =
        u"<feed xml:base='/x/'><entry><link href='a'/></entry><entry xml:base='y/'><link xml:base='z/' href='a&amp;b'/>"
        u"<title><![CDATA[<b>a]>b]]></title></entry><entry xml:base='y/'><link "
        u"href='http://i/'/></entry><entry><link>q</link></entry></feed>";
    std::string links;
    for (const FeedItem& item : readFeed(feed, {.baseURL = url, .web = Today}).items) links += item.link.utf8() + " ";
    EXPECT_EQ(links, "http://h.org/x/a http://h.org/x/y/z/a&b http://i/ http://h.org/x/q ");
    EXPECT_EQ(readFeed(feed, {.baseURL = url}).items[0].link, u"a");
    EXPECT_EQ(readFeed(feed, {.web = Today}).items[1].title, u"<b>a]>b");
}

TEST(WebTags, AllThatReadsPagesTakesTheRules) {
    const String page =
        u"<head><link rel=icon href=i><meta name=author content='a>b'><title><b></title></head>"
        u"<a x=it's href=c title='&notit;'>d</a><script/></a>e</script>f";
    const std::pair<String, std::string> cases[] = {
        {htmlFavIcon(page, Today), "i"},
        {htmlMetaAuthor(page, Today), "a>b"},
        {htmlTitle(page, Today), "<b>"},
        {Page::pageWithString(page, {}, Today).title(), "<b>"},
        {innerTagBody(page, "TITLE", Today), "<b>"},
        {innerTagBody(u"<div/>a<br/></div>b", "DIV", Today), "a<br/>"},
        {stripTag(u"a<b x='>'>c", "B", Today), "ac"},
        {stripAttributesOfTag(u"<a x=it's href='>'>", "A", Today), "<A HREF=\">\">"},
        {stripLinks(u"<a x=it's>b</a>c", Today), "c"},
        {stripObjectsAndReplaceImages(page, true, Today),
         "<head><meta name=author content='a>b'><title><b></title></head><a x=it's href=c title='&notit;'>d</a>f"},
        {resolveLinksUsingBaseURL(u"<a x=it's href=c>", URL::URLWithString(u"http://h/"), Today),
         "<a x=it's href=http://h/c>"},
        {stringBySettingBaseURL(u"<!-a><base x=it's href=c>d", u"", Today), "<!-a>d"},
        {stringByStrippingMetaAttributeWithName(u"<meta x=it's name=a>b", u"a", Today), "b"},
        {getLinkThumbnails(page, {.web = Today}).titles[u"c"], "&notit;"},
    };
    for (const auto& [made, expected] : cases) EXPECT_EQ(made.utf8(), expected);
}

}  // namespace
}  // namespace velmo
