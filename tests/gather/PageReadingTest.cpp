#include <velmocore/gather/PageReading.h>
#include <velmocore/platform/DateFormat.h>
#include <velmocore/storage/Compression.h>

#include "TestSupport.h"

namespace velmo {
namespace {

SourcePage sourceOf(std::string_view bytes) {
    SourcePage page;
    page.url = URL::URLWithString(u"http://www.h.org/a/b.html?x=1");
    page.bytes.assign(bytes.begin(), bytes.end());
    return page;
}

PageRecord read(std::string_view bytes, const PageReadingOptions& options = {}) {
    return readPage(sourceOf(bytes), options);
}

TEST(PageReading, TellsWhatAPageIs) {
    const PageRecord page = read(
        "<html><head><title> A \n page </title><meta name=author content='B &amp; C'>"
        "<meta name=description content=' So\nit is '><meta name=date content='2001-02-03T04:05:06+01:00'></head>"
        "<body><p>Words of it <a href=c.html><img src=i.jpg>see &eacute;</a> <a href='c.html#x'>again</a>"
        "<a href='mailto:x@y'>mail</a> <a href='javascript:x()'>run</a> <a href='http://other.org/'>out</a>");
    EXPECT_EQ(page.key, u"http://h.org/a/b.html?x=1");
    EXPECT_EQ(page.kind, PageKind::Page);
    EXPECT_EQ(page.title, u"A page");
    EXPECT_EQ(page.author, u"B & C");
    EXPECT_EQ(page.description, u"So it is");
    EXPECT_EQ(stringInISO8601(*page.date), u"2001-02-03T03:05:06Z");
    EXPECT_NE(page.text.view().find(u"Words of it see \u00E9"), View::npos);
    EXPECT_EQ(page.words, 11U);
    ASSERT_EQ(page.links.size(), 2U) << "each page once, and none that is no page";
    EXPECT_EQ(page.links[0].url.absoluteString(), u"http://www.h.org/a/c.html");
    EXPECT_EQ(page.links[0].thumbnail.absoluteString(), u"http://www.h.org/a/i.jpg");
    EXPECT_EQ(page.links[1].text, u"out");
}

TEST(PageReading, GoesByHeadersAndBytesForCharsets) {
    const struct {
        std::string bytes;
        const char16_t* contentType;
        const char16_t* charset;
        PageKind kind;
        const char16_t* text;
    } cases[] = {
        {"<p>\xE9", u"text/html; charset=iso-8859-1", u"windows-1252", PageKind::Page, u"\u00E9"},
        {"<meta charset=koi8-r><p>\xC4\xC1", nullptr, u"koi8-r", PageKind::Page, u"\u0434\u0430"},
        {"<meta charset=koi8-r><p>\xD0\xB4", u"text/html; charset=utf-8", u"utf-8", PageKind::Page, u"\u0434"},
        {std::string("<\0p\0>\0a\0b\0c\0 \0d\0", 16), nullptr, u"utf-16le", PageKind::Page, u"abc d"},
        {"a < b and\xE9", u"text/plain", u"windows-1252", PageKind::Text, u"a < b and\u00E9"},
        {"<?xml "
         "version='1.0'?><rss><channel><title>F</title><item><title>I</title><link>/x</link></item></channel></rss>",
         nullptr, nullptr, PageKind::Feed, nullptr},
        {"", nullptr, nullptr, PageKind::Page, u""},
        {std::string("\x89PNG\r\n\x1A\n\0\0", 10), nullptr, nullptr, PageKind::Page, u""},
    };
    for (const auto& each : cases) {
        SourcePage source = sourceOf(each.bytes);
        source.contentType = each.contentType;
        const PageRecord page = readPage(std::move(source));
        EXPECT_TRUE(!each.charset || page.charset == each.charset) << each.bytes << page.charset;
        EXPECT_EQ(page.kind, each.kind) << each.bytes;
        EXPECT_TRUE(!each.text || page.text.view() == each.text) << each.bytes << page.text;
    }
    const Data packed = *dataByGzippingData("<title>T</title>");
    EXPECT_EQ(read(charsOf(packed)).title, u"T");
    EXPECT_EQ(charsOf(*read("<p>x", {.keepBytes = true}).bytes), "<p>x");
}

TEST(PageReading, BelievesAnAddressOnlyOfThePageItself) {
    const auto addressFor = [](std::string canonical) {
        return read("<link rel=canonical href='" + canonical + "'><p>x").url.absoluteString().utf8();
    };
    EXPECT_EQ(addressFor("https://h.org/a/b.html?x=1&utm_source=y"), "https://h.org/a/b.html?x=1&utm_source=y");
    EXPECT_EQ(addressFor("http://www.h.org/"), "http://www.h.org/a/b.html?x=1") << "else all pages would be one";
    EXPECT_EQ(addressFor("http://evil.org/a/b.html?x=1"), "http://www.h.org/a/b.html?x=1");
}

TEST(PageReading, TakesFromTheSourceWhatThePageDoesNotTell) {
    const auto titleAndDate = [](std::string_view bytes) {
        SourcePage source = sourceOf(bytes);
        source.title = u"Given";
        source.date = u"Thu, 01 Jan 1970 00:00:00 GMT";
        const PageRecord page = readPage(std::move(source));
        return page.title.utf8() + " " + stringInISO8601(*page.date).utf8();
    };
    EXPECT_EQ(titleAndDate("<p>x"), "Given 1970-01-01T00:00:00Z");
    EXPECT_EQ(titleAndDate("<title>Own</title><meta name=date content=2001-02-03>"), "Own 2001-02-03T00:00:00Z");
}

TEST(PageReading, KnowsErrorPagesAndNoticesOfHaste) {
    const std::string filling(2000, 'x');
    const std::pair<std::string, bool> cases[] = {
        {"<title>404 Not Found</title><p>404 Not Found nginx", true},
        {"<title>4-0-4 Not Found</title><p>" + filling + " 404 Not Found", true},
        {"<title>404 Not Found</title><p>What the number means", false},
        {"<title>T</title><p>Woah, slow down! You have exceeded the allowed page load frequency.", true},
        {"<p>Sorry, server is too busy: please try again later!", true},
        {"<p>" + filling + " Sorry, server is too busy", false},
    };
    for (const auto& [bytes, isError] : cases) EXPECT_EQ(read(bytes).isErrorPage, isError) << bytes;
}

}  // namespace
}  // namespace velmo
