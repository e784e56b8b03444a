#include <velmocore/markup/PageResources.h>

#include <array>
#include <filesystem>
#include <map>
#include <set>

#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/platform/Log.h>

#include "TestSupport.h"

namespace velmo {
namespace {

std::string joined(const std::set<String>& strings) {
    std::string text;
    for (const String& string : strings) text += (text.empty() ? "" : " ") + string.utf8();
    return text;
}

TEST(PageResources, Sets) {
    const std::tuple<const char16_t*, const char*, const char*, const char*> cases[] = {
        {u"<img src=b><IMG SRC='a'><img src=b></img src=c><body background=d>", "a b d", "", ""},
        {u"<link rel=icon href=i><link rel='x-IMAGE' href=/j><link rel=ico href=k><link href=l>", "/i /j", "", ""},
        {u"<link rel=stylesheet href=a.css><link rel=STYLE href=./b><link rel=styl href=c>", "", "./b /a.css", ""},
        {u"<script src=a></script><script>x.src='b'</script><script>@import \"c\"</script>", "", "a c", ""},
        {u"<style>@IMPORT url(\"a\"); @import \"b\";</style><style>@import "
         u"'c'</style><style>@import \"d</style>\"",
         "", "a", ""},
        {u"<script data-x='a>b' src=c>d=\"e\"</script><style src=f>@import \"g\"</style>", "", "c f", ""},
        {u"<object data=a src=b><source src=c><audio src=d><video src=e><track src=f><embed src=g "
         u"data=h>",
         "", "", "a c d e f g"},
        {u"</object data=a></source src=b><objects data=c><param data=d>", "", "", ""},
        {u"", "", "", ""}};
    for (const auto& [page, images, sheets, objects] : cases) {
        EXPECT_EQ(joined(htmlImages(page)), images) << String(page);
        EXPECT_EQ(joined(htmlStylesheetsAndScripts(page)), sheets) << String(page);
        EXPECT_EQ(joined(htmlEmbeddedObjects(page)), objects) << String(page);
    }
}

TEST(PageResources, LinksAndFrames) {
    const char16_t page[] =
        u"<html><head><title>a &amp; <b></title><base href=http://h/><link rel='shortcut icon' "
        u"href=i.ico>"
        u"<meta http-equiv=Refresh content='5; url=x'><meta name=ROBOTS content=noindex>"
        u"<meta name=robots content=NoIndex><meta name=robots content=nofollow><meta name=robots "
        u"content=''>"
        u"<meta name=revisit-after content='7 days'></head>"
        u"<frame src=f><iframe src='g '></iframe src=h><a href=l><area href=m></a href=n><rss>";
    const HtmlReferences frames = htmlFramesSet(page), all = htmlLinksAndFramesSet(page);
    EXPECT_EQ(joined(frames.references), "f g");
    EXPECT_EQ(joined(all.references), "f g l m");
    EXPECT_EQ(all.baseURL.absoluteString(), u"http://h/");
    EXPECT_EQ(all.favIcon, u"/i.ico");
    EXPECT_EQ(all.refresh, u"5; url=x");
    EXPECT_EQ(all.revisit, u"7 days");
    EXPECT_EQ(all.robots, u"noindex,nofollow");
    EXPECT_FALSE(all.isFeed || all.isFrameSet);
    // The text between two tags: here that behind <b>.
    EXPECT_EQ(all.title, u"");
    EXPECT_EQ(htmlFramesSet(u"<title>x</title><title>a &amp; b</title>").title, u"a &amp; b");
    EXPECT_EQ(htmlFramesSet(u"<title>x</title>y<title/>").title, u"y");
    const HtmlReferences none = htmlFramesSet(u"<p>");
    EXPECT_TRUE(none.title.isAbsent() && none.favIcon.isAbsent() && none.refresh.isAbsent());
    EXPECT_TRUE(none.revisit.isAbsent() && none.baseURL.isAbsent());
    EXPECT_EQ(none.robots, u"");
}

TEST(PageResources, Feeds) {
    const std::pair<const char16_t*, bool> cases[] = {
        {u"<?xml?><rss>", true},  {u"<FEED xmlns=x>", true}, {u"<rdf:RDF>", true},
        {u"<rdf-rdf>", false},    {u"<html><rss>", false},   {u"<Body><feed>", false},
        {u"<head/><rss>", false}, {u"<rss><html>", true},    {u"<p><rss>", true}};
    for (const auto& [page, isFeed] : cases) EXPECT_EQ(htmlFramesSet(page).isFeed, isFeed) << String(page);
}

TEST(PageResources, FavIcons) {
    const struct {
        const char16_t *page, *icon;
    } cases[] = {
        {u"<link rel=\"shortcut icon\" href=\"a.ico\">", u"/a.ico"},
        {u"<link rel=\"SHORTCUT ICON\" href=\"http://h/a.ico\"><link rel='shortcut icon' href=b>", u"http://h/a.ico"},
        {u"<link rel='shortcut icon'><link rel='x shortcut icon' href=./b>", u"./b"},
        {u"<link rel=icon href=a.ico>", nullptr},
        {u"</link rel='shortcut icon' href=a>", nullptr}};
    for (const auto& c : cases) EXPECT_EQ(htmlFavIcon(c.page), String(c.icon)) << String(c.page);
    std::vector<String> icons;
    GetTagsOfString(
        u"<link rel='shortcut icon' href=a><LINK REL='Shortcut Icon' HREF=/b><a rel='shortcut icon' href=c>",
        [&](const Tag& tag) { return icons.push_back(getFavIcon(tag)), false; });
    EXPECT_EQ(icons, (std::vector<String>{u"/a", u"/b", String(), String()}));
    EXPECT_EQ(getLinkAttribute(u"Area"), "HREF");
    EXPECT_EQ(getLinkAttribute(u"IFRAME"), "SRC");
    EXPECT_EQ(getLinkAttribute(u"object"), "DATA");
    EXPECT_TRUE(getLinkAttribute(u"body").empty() && getLinkAttribute(u"").empty());
}

// Links, images, sheets, objects and frames, as another parser counts them. The pages that
// are not named have none.
TEST(PageResources, RealPages) {
    using Counts = std::array<std::size_t, 5>;
    const std::map<std::string, Counts> expected{
        {"boost-refresh.html", {2, 0, 0, 0, 0}},
        {"cc-about-en.html", {90, 41, 30, 0, 0}},
        {"cc-nc-de.html", {145, 4, 17, 0, 0}},
        {"extruct-opengraph_test.html", {0, 0, 1, 0, 0}},
        {"httpd-de-iso-8859-1.html", {68, 3, 5, 0, 0}},
        {"httpd-es-utf8.html", {73, 3, 5, 0, 0}},
        {"httpd-fr-utf8.html", {64, 5, 5, 0, 0}},
        {"httpd-ja-euc-jp.html", {62, 3, 3, 0, 0}},
        {"httpd-ja-iso-2022-jp.html", {26, 5, 3, 0, 0}},
        {"httpd-ja-utf8.html", {67, 3, 5, 0, 0}},
        {"httpd-ko-euc-kr.html", {30, 5, 5, 0, 0}},
        {"httpd-pt-br-iso-8859-1.html", {48, 5, 5, 0, 0}},
        {"httpd-ru-koi8-r.html", {49, 5, 5, 0, 0}},
        {"httpd-tr-utf8.html", {67, 3, 5, 0, 0}},
        {"httpd-zh-cn-utf8.html", {65, 3, 5, 0, 0}},
        {"javadoc-frameset.html", {1, 0, 0, 0, 2}},
        {"jsoup-charset-base.html", {0, 1, 0, 0, 0}},
        {"jsoup-namespaces.xhtml", {0, 1, 0, 0, 0}},
        {"readability-base-url-base-element-relative.html", {8, 5, 0, 0, 0}},
        {"readability-v8-blog.html", {52, 1, 4, 0, 0}},
        {"trafilatura-tutorial0.html", {1, 0, 0, 0, 0}},
        {"trafilatura-utf8.html", {1, 0, 0, 0, 0}},
    };
    setLogHandler([](std::string_view) {});  // one of the pages has a relative base
    std::size_t pages = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VELMO_PAGES)) {
        const std::string name = entry.path().filename();
        ++pages;
        const String page = stringWithMarkupData(Bytes(test::readPage(name)));
        const HtmlLinks links = htmlLinks(page);
        const std::set<String> frames = htmlFramesSet(page).references;
        const Counts counts{links.links.size(), htmlImages(page).size(), htmlStylesheetsAndScripts(page).size(),
                            htmlEmbeddedObjects(page).size(), frames.size()};
        const auto row = expected.find(name);
        EXPECT_EQ(counts, row == expected.end() ? Counts() : row->second) << name;
        std::set<String> all(links.links.begin(), links.links.end());
        all.insert(frames.begin(), frames.end());
        EXPECT_EQ(htmlLinksAndFramesSet(page).references, all) << name;
    }
    setLogHandler(nullptr);
    EXPECT_GE(pages, expected.size());
}

}  // namespace
}  // namespace velmo
