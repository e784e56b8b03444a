#include <velmocore/markup/Page.h>

#include <filesystem>
#include <set>
#include <thread>

#include <velmocore/markup/ContentDecoding.h>
#include <velmocore/markup/Links.h>
#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/markup/PageResources.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/platform/Log.h>
#include <velmocore/platform/Resources.h>
#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLSchemes.h>

#include "TestSupport.h"

namespace velmo {
namespace {

std::string textOf(const std::vector<URL>& urls) {
    std::string text;
    for (const URL& url : urls) text += (text.empty() ? "" : " ") + url.absoluteString().utf8();
    return text;
}

TEST(Page, TellsItsParts) {
    const std::string bytes =
        "<meta charset=koi8-r><link rel='shortcut icon' href=i.ico><title> \xC4\xC1 \n&amp; </title>"
        "<a href=b>B</a><a href=./b>x</a><a href='mailto:a@b.org'>y</a><area href=http://i.org/>"
        "<svg><title>no</title></svg><img src=b><img src=a><script src=s></script><embed src=e><iframe src=f>";
    const Page page(Bytes(bytes), {.url = URL::URLWithString(u"http://h.org/d/e")});
    EXPECT_EQ(page.title(), u"\u0434\u0430 &");
    EXPECT_EQ(textOf(page.links()), "http://h.org/d/b http://i.org/");
    EXPECT_EQ(textOf(page.images()), "http://h.org/i.ico http://h.org/d/a http://h.org/d/b");
    EXPECT_EQ(textOf(page.stylesheetsAndScripts()), "http://h.org/d/s");
    EXPECT_EQ(textOf(page.embeddedObjects()), "http://h.org/d/e");
    EXPECT_EQ(textOf(page.frames()), "http://h.org/d/f");
    EXPECT_EQ(page.favIcon().absoluteString(), u"http://h.org/i.ico");
    EXPECT_EQ(page.baseURL(), page.url());
    const Page other(Bytes(bytes.substr(21)), {.contentType = u"text/html; charset=windows-1251"});
    EXPECT_EQ(other.encoding(), WindowsCP1251StringEncoding);
    EXPECT_EQ(other.title(), u"\u0414\u0411 &");
    EXPECT_EQ(textOf(other.links()), "http://i.org/");
    EXPECT_TRUE(other.favIcon().isAbsent());
}

TEST(Page, ResolvesAsBrowsersDo) {
    const std::string bytes =
        "<a href='\\\\i.org\\x|y'>1</a><a href='ht\ttp:z'>2</a><a href='java\nscript:a()'>3</a><a href=mailto:a>4</a>"
        "<a href='#x'>5</a><a href=//[x>6</a><a href='?\xC3\xA4 #b'>7</a><img src=data:,a><img src=..\\c.png>";
    const Page page(Bytes(bytes), {.url = URL::URLWithString(u"HTTP://H.org/d/e"), .web = WebRules::today()});
    EXPECT_EQ(textOf(page.links()), "http://i.org/x|y http://h.org/d/z http://h.org/d/e?%C3%A4");
    EXPECT_EQ(textOf(page.images()), "http://h.org/c.png");
}

TEST(Page, TellsItsMetadata) {
    const Page page = Page::pageWithString(
        u"<title>a</title><meta name=author content=A><meta name=description content=b><link rel=canonical "
        u"href=c><body><meta name=dc.title content=d><meta name=copyright content=e>",
        URL::URLWithString(u"http://h.org/d/e"));
    EXPECT_EQ(page.metadata().author, u"A");
    EXPECT_EQ(page.metadata().convertedAttributes, (MetaAttributes{{u"author", u"A"}, {u"description", u"b"}}));
    EXPECT_TRUE(page.metadata().copyright.isAbsent());
    EXPECT_EQ(page.summary().title, u"d");
    EXPECT_EQ(page.summary().description, u"b");
    EXPECT_EQ(page.canonicalURL().absoluteString(), u"http://h.org/d/c");
    EXPECT_TRUE(Page::pageWithString(u"<p>").canonicalURL().isAbsent());
}

TEST(Page, TellsThumbnailsAndErrorPages) {
    const Page page = Page::pageWithString(u"<base href=http://b.org/x/><a href=c#d><img src=e.jpg alt=E>F</a>");
    const LinkThumbnails& found = page.linkThumbnails();
    EXPECT_EQ(found.thumbnails.at(u"http://b.org/x/c"), u"http://b.org/x/e.jpg");
    EXPECT_EQ(found.titles.at(u"http://b.org/x/c"), u"E");
    EXPECT_EQ(&found, &Page(page).linkThumbnails());
    EXPECT_TRUE(Page::pageWithString(u"<a href=c><img src=e.jpg>F</a>").linkThumbnails().texts.empty());
    // A title does not confirm itself, with or without a body.
    const auto isError = [](View markup, View url = u"http://h.org/") {
        return Page::pageWithString(markup, URL::URLWithString(url)).isErrorPage();
    };
    EXPECT_TRUE(isError(u"<title>404 Not Found</title><body><h1>404 Not Found</h1>nginx"));
    EXPECT_TRUE(isError(u"<title>404 Not Found</title><h1>404 Not Found</h1>nginx"));
    EXPECT_FALSE(isError(u"<title>404 Not Found</title><body>All about the number"));
    EXPECT_FALSE(isError(u"<title>404 Not Found</title>All about the number"));
    EXPECT_TRUE(isError(u"<p>Page not found", u"http://h.org/404.html"));
    EXPECT_FALSE(isError(u"<p>Page found", u"http://h.org/404.html") || Page(Bytes()).isErrorPage());
    EXPECT_TRUE(Page::pageWithString(u"<?xml?><rss>").isFeed());
    EXPECT_FALSE(Page::pageWithString(u"<html><rss>").isFeed());
}

TEST(Page, TakesItsBaseFromItsTag) {
    const Page page = Page::pageWithString(u"<a href=c><base href=http://b.org/>", URL::URLWithString(u"http://h/"));
    EXPECT_EQ(page.url().absoluteString(), u"http://h/");
    EXPECT_EQ(page.baseURL().absoluteString(), u"http://b.org/");
    EXPECT_EQ(textOf(page.links()), "http://b.org/c");
    const Page file = Page::pageWithString(u"<a href='c#d'>", URL::URLWithString(u"file:///a/b"));
    EXPECT_EQ(textOf(file.links()), "file:///a/c");
    const Page empty{Bytes()};
    EXPECT_EQ(empty.markup(), u"");
    EXPECT_EQ(empty.title(), u"");
    EXPECT_EQ(empty.plainText(), u"");
    EXPECT_TRUE(empty.links().empty() && empty.baseURL().isAbsent());
}

// One scan serves all parts: each is what its own operation says.
TEST(Page, AgreesWithTheOperations) {
    setLogHandler([](std::string_view) {});  // one of the pages has a relative base
    const LanguageFilter filter(velmoResourcesDirectory());
    const URL url = URL::URLWithString(u"http://h.org/a/b");
    std::size_t links = 0, languages = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VELMO_PAGES)) {
        const Page page(Bytes(test::readPage(entry.path().filename())), {.url = url});
        const String& markup = page.markup();
        const String text = stringByConvertingHtml2PlainText(markup);
        EXPECT_EQ(page.plainText(), text);
        EXPECT_EQ(page.language(filter), filter.languageOfText(text));
        languages += !page.language(filter).isAbsent();
        const auto resolved = [&](const auto& references) {
            std::vector<URL> urls;
            std::set<String> seen;
            for (const String& reference : references) {
                const URL link = URLRelativeTo(page.baseURL(), reference);
                if (!link.isAbsent() && seen.insert(link.absoluteString()).second) urls.push_back(link);
            }
            return urls;
        };
        links += page.links().size();
        std::vector<URL> pages = resolved(htmlLinks(markup).links);
        std::erase_if(pages, [](const URL& link) { return !isWebKitURL(link); });
        EXPECT_EQ(page.links(), pages) << entry.path();
        EXPECT_EQ(page.images(), resolved(htmlImages(markup))) << entry.path();
        EXPECT_EQ(page.stylesheetsAndScripts(), resolved(htmlStylesheetsAndScripts(markup)));
        EXPECT_EQ(page.embeddedObjects(), resolved(htmlEmbeddedObjects(markup)));
    }
    setLogHandler(nullptr);
    EXPECT_GT(links, 500u);
    EXPECT_GT(languages, 15u);
}

TEST(Page, IsMadeOnceByManyThreads) {
    const Page page{Bytes(test::readPage("httpd-de-iso-8859-1.html"))};
    std::vector<const String*> texts(8);
    std::vector<std::thread> threads;
    for (const String*& text : texts)
        threads.emplace_back([copy = page, &text] {
            (void)copy.links();
            text = &copy.plainText();
        });
    for (std::thread& thread : threads) thread.join();
    for (const String* text : texts) EXPECT_EQ(text, &page.plainText());
    EXPECT_TRUE(page.title().view().starts_with(u"Dokumentation zum Apache HTTP Server"));
}

// Its tags are not kept, but are the same.
TEST(Page, ALongPageIsReadAsAShortOne) {
    std::u16string text = u"<base href='http://h.org/'><title>T</title><!-- c --><script>1 < 2</script>";
    for (int i = 0; text.size() < 2'000'000; ++i)
        text +=
            u"<p class='c'>" + std::u16string(200, u'x') + u" <a href=" + std::u16string(1 + i % 9, u'a') + u">l</a>";
    for (const WebRules& web : {WebRules(), WebRules::today()}) {
        const Page page = Page::pageWithString(text, {}, web);
        EXPECT_EQ(page.links().size(), 9u);
        EXPECT_EQ(page.links()[8], u"http://h.org/aaaaaaaaa");
        EXPECT_EQ(page.title(), u"T");
        EXPECT_EQ(page.plainText(), stringByConvertingHtml2PlainText(text, {.web = web}));
    }
}

TEST(Page, TheBytesOfALongPageAreGivenBackWhileItIsDecoded) {
    for (const std::string_view mark : {"", "\xEF\xBB\xBF"}) {
        std::string page = std::string(mark) + "<meta charset=utf-8><p>";
        while (page.size() < 3'000'000) page += "caf\xC3\xA9 \xE4\xB8\x80\xF0\x9F\x98\x80 \xFF ";
        const MarkupDecoding expected = decodeMarkup(Bytes(page), {.web = WebRules::today()});
        const DecodedContent found = decodeContent(Data(page.begin(), page.end()), {.web = WebRules::today()});
        EXPECT_EQ(found.text, expected.text);
        EXPECT_EQ(found.encoding, expected.encoding);
        EXPECT_EQ(found.declared, u"utf-8");
    }
}

}  // namespace
}  // namespace velmo
