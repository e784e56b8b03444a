// A page that is read in its bytes tells what the decoded one does, to the unit.
#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/Page.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/platform/Log.h>

#include <filesystem>

#include "TestSupport.h"

namespace velmo {
namespace {

/// Pieces of pages, of UTF-8 and of what is none, among them all that changes how a page is read.
std::string randomPage(std::mt19937& random) {
    static constexpr std::string_view Pieces[] = {
        "<",
        ">",
        "</",
        "\"",
        "'",
        "=",
        " ",
        "\n",
        "a",
        "text of some length, ",
        "caf\xC3\xA9 ",
        "\xE4\xB8\xAD\xE6\x96\x87",
        "\xC3",
        "\xE2\x80",
        "\xFF",
        "&eacute;",
        "&#x2014;",
        "&lt;",
        "<a href=x.html>",
        "<A HREF='/y?a=1&amp;b=2'>",
        "</a>",
        "<a href=\" z\\z \">",
        "<a title='\xC3\xA9' href=q>",
        "<a href=caf\xC3\xA9>",
        "<a data-href=1 xhref=2 href=\"three\">",
        "<a href=%20>",
        "<a href='x%22'>",
        "<a href=x rel=nofollow>",
        "<area href=map.html>",
        "<base href='http://b.org/d/'>",
        "<ba\xC5\xBF"
        "e href='http://long.org/s/'>",
        "<a hre\xC5\xBF=1 href=2>",
        "<a\xC2\xA0href=nbsp>",
        "<img src=i.png alt='\xC3\xA9 alt'>",
        "<script src=s.js></script>",
        "<script>if (a<b) '</a>' \xC3\xA9</script>",
        "<style>@import \"s.css\"</style>",
        "<title>The \xC3\xA9 title</title>",
        "<TITLE>",
        "<body bgcolor=red>",
        "</body>",
        "<head>",
        "<meta name=author content='A \xC3\xA9'>",
        "<meta name=description content=d>",
        "<link rel=canonical href=c>",
        "<link rel=icon href=i>",
        "<link rel=stylesheet href=t.css>",
        "<p>",
        "<br>",
        "<div style='display:none'>",
        "<div class=\"hidden\">",
        "</div>",
        "<span>",
        "</span>",
        "<pre>",
        "</pre>",
        "<table><tr><td>",
        "<frame src=f>",
        "<iframe src=g>",
        "<embed src=e>",
        "<object data=o>",
        "<video src=v poster=w>",
        "<!-- c \xC3\xA9 -->",
        "<!-- googleoff: anchor -->",
        "<li>",
        "</li>",
        "<a href=big.jpg>",
        "<img src=small.jpg title='\xC3\xA9'>",
        "<rss>",
        "<html>",
        "<meta charset=utf-8>",
        "<meta charset=iso-8859-1>",
        "<meta http-equiv=content-type content='text/html; charset=windows-1251'>",
        "<meta http-equiv=refresh content='1; url=r'>",
        "<?xml version='1.0' encoding='utf-8'?>",
        "<textarea>",
        "<svg>",
        "</svg>"};
    std::string page = random() % 8 == 0 ? "\xEF\xBB\xBF" : "";
    for (auto pieces = random() % 40; pieces > 0; --pieces) page += Pieces[random() % std::size(Pieces)];
    // The head of a long page is looked at by itself.
    if (random() % 4 == 0) page.insert(random() % (page.size() + 1), 2'500, random() % 2 ? ' ' : '\n');
    return page;
}

void expectSameLinks(const HtmlLinks& a, const HtmlLinks& b) {
    EXPECT_EQ(a.links, b.links);
    EXPECT_EQ(a.baseURL, b.baseURL);
}

void expectSameLinks(const std::string& bytes, const String& units, const WebRules& web) {
    const URL url = URL::URLWithString(u"http://h.org/a/b");
    for (const LinkOptions& options :
         {LinkOptions{.web = web, .url = url}, LinkOptions{.useRelNoFollow = true, .filter = true, .web = web},
          LinkOptions{.containing = u"e", .web = web}})
        expectSameLinks(htmlLinks(Bytes(bytes), options), htmlLinks(units, options));
    std::vector<String> asked[2];
    const auto note = [](std::vector<String>& all) {
        return [&all](View link, View text) {
            return all.emplace_back(link), all.emplace_back(text), all.size() % 3 == 0;
        };
    };
    const auto ofBytes = note(asked[0]), ofUnits = note(asked[1]);
    expectSameLinks(htmlLinks(Bytes(bytes), {.web = web, .handler = ofBytes}),
                    htmlLinks(units, {.web = web, .handler = ofUnits}));
    EXPECT_EQ(asked[0], asked[1]);
}

void expectSameTexts(const std::string& bytes, const String& units, const WebRules& web) {
    for (const PlainTextOptions& options :
         {PlainTextOptions{.web = web}, PlainTextOptions{.onlyBody = true, .removeJunk = true, .web = web},
          PlainTextOptions{.nonUmlauted = true, .reformat = true, .googleTags = true, .tabs = true, .web = web},
          PlainTextOptions{.entities = false, .imageAlts = false, .noScripts = true, .textareas = true, .web = web}}) {
        const HtmlPlainText ofBytes = plainTextOfHtml(Bytes(bytes), options), ofUnits = plainTextOfHtml(units, options);
        EXPECT_EQ(ofBytes.text, ofUnits.text);
        EXPECT_EQ(ofBytes.didRemoveJunk, ofUnits.didRemoveJunk);
    }
}

void expectSamePages(const Page& a, const Page& b) {
    EXPECT_EQ(a.title(), b.title());
    EXPECT_EQ(a.isFeed(), b.isFeed());
    EXPECT_EQ(a.baseURL(), b.baseURL());
    EXPECT_EQ(a.links(), b.links());
    EXPECT_EQ(a.plainText(), b.plainText());
    EXPECT_EQ(a.isErrorPage(), b.isErrorPage());
    EXPECT_EQ(a.frames(), b.frames());
    EXPECT_EQ(a.images(), b.images());
    EXPECT_EQ(a.stylesheetsAndScripts(), b.stylesheetsAndScripts());
    EXPECT_EQ(a.embeddedObjects(), b.embeddedObjects());
    EXPECT_EQ(a.favIcon(), b.favIcon());
    EXPECT_EQ(a.canonicalURL(), b.canonicalURL());
    EXPECT_EQ(a.metadata().attributes, b.metadata().attributes);
    EXPECT_EQ(a.metadata().author, b.metadata().author);
    EXPECT_EQ(a.metadata().title, b.metadata().title);
    EXPECT_EQ(a.summary().title, b.summary().title);
    EXPECT_EQ(a.summary().description, b.summary().description);
    EXPECT_EQ(a.linkThumbnails().thumbnails, b.linkThumbnails().thumbnails);
    EXPECT_EQ(a.linkThumbnails().titles, b.linkThumbnails().titles);
    EXPECT_EQ(a.linkThumbnails().texts, b.linkThumbnails().texts);
    const URL base = URL::URLWithString(u"http://t.org/");
    const LinkThumbnailOptions alone{.baseURL = base, .googleTags = true, .texts = false};
    EXPECT_EQ(a.linkThumbnails(alone).thumbnails, b.linkThumbnails(alone).thumbnails);
    EXPECT_EQ(a.linkThumbnails(alone).titles, b.linkThumbnails(alone).titles);
    expectSameLinks(a.unresolvedLinks(), b.unresolvedLinks());
    EXPECT_EQ(a.markup(), b.markup());
}

void expectSameRoads(const std::string& bytes) {
    const URL url = URL::URLWithString(u"http://h.org/a/b");
    for (const WebRules& web : {WebRules(), WebRules::today()}) {
        const String units = decodeMarkup(Bytes(bytes), {.web = web}).text;
        expectSameLinks(bytes, units, web);
        expectSameTexts(bytes, units, web);
        const Page ofUnits = Page::pageWithString(units, url, web);
        expectSamePages(Page(Bytes(bytes), {.url = url, .web = web}), ofUnits);
        expectSamePages(Page(Data(bytes.begin(), bytes.end()), {.url = url, .web = web}), ofUnits);
    }
}

TEST(ByteRoad, TellsWhatTheDecodedPageDoesOfRandomPages) {
    setLogHandler([](std::string_view) {});
    std::mt19937 random(20);
    for (int i = 0; i < 1'500; ++i) {
        const std::string page = randomPage(random);
        expectSameRoads(page);
        ASSERT_FALSE(HasFailure()) << page;
    }
    setLogHandler(nullptr);
}

TEST(ByteRoad, TellsWhatTheDecodedPageDoesOfRealPages) {
    setLogHandler([](std::string_view) {});
    std::size_t pages = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VELMO_PAGES)) {
        expectSameRoads(test::readFile(entry.path()));
        ASSERT_FALSE(HasFailure()) << entry.path();
        ++pages;
    }
    EXPECT_EQ(pages, 37u);
    setLogHandler(nullptr);
}

/// Long pages keep no tags.
TEST(ByteRoad, TellsWhatTheDecodedPageDoesOfLongPages) {
    std::string page;
    while (page.size() < 1'300'000) page += test::readPage("httpd-fr-utf8.html");
    const URL url = URL::URLWithString(u"http://h.org/a/b");
    expectSamePages(Page(Bytes(page), {.url = url}), Page::pageWithString(String::fromUTF8(page), url));
}

/// A link is the same one in a tag that is read in its bytes and in one that is not.
TEST(ByteRoad, ListsEachLinkOnce) {
    const std::string page =
        "<a href=q><a title='\xC3\xA9' href=q><area href=q><a href='q\n'><a href=long-enough-for-two-blocks.html>"
        "<a title='\xC3\xA9' href=long-enough-for-two-blocks.html>";
    EXPECT_EQ(htmlLinks(Bytes(page)).links, (Strings{u"q", u"long-enough-for-two-blocks.html"}));
}

TEST(ByteRoad, TakesBytesOver) {
    Data bytes(1'000, '<');
    const Page page(std::move(bytes));
    EXPECT_TRUE(bytes.empty());
    EXPECT_EQ(page.markup().length(), 1'000u);
    EXPECT_EQ(page.encoding(), UTF8StringEncoding);
    EXPECT_EQ(Page(Bytes("\xEF\xBB\xBF<p>a")).markup(), u"<p>a");
    EXPECT_TRUE(Page(Bytes()).markup().isEmpty());
    EXPECT_TRUE(Page(Bytes("\xEF\xBB\xBF")).markup().isEmpty());
    EXPECT_TRUE(htmlLinks(Bytes()).links.empty());
    EXPECT_TRUE(plainTextOfHtml(Bytes()).text.isEmpty());
}

}  // namespace
}  // namespace velmo
