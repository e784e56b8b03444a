#include <velmocore/url/URLSchemes.h>

#include "TestSupport.h"

namespace velmo {
namespace {

URL url(const char16_t* string) { return URL::URLWithString(string); }

TEST(URLSchemes, KindsOfURLs) {
    using Predicate = bool (*)(const URL&);
    const struct {
        Predicate test;
        std::vector<const char16_t*> yes, no;
    } cases[] = {
        {isHTTPURL, {u"HTTP://h", u"https://h"}, {u"httpx://h", u"//h", u"http"}},
        {isFTPURL, {u"ftp://h", u"ftps://h", u"SFTP://h"}, {u"tftp://h"}},
        {isNewsURL, {u"news:x", u"nttp://h"}, {u"nntp://h"}},
        {isFeedURL, {u"feed:x"}, {u"feeds:x"}},
        {isMailURL, {u"MailTo:a@b"}, {u"mail:a"}},
        {isJavaScriptURL, {u"javascript:x"}, {u"java:x"}},
        {isAppleScriptURL, {u"applescript:x"}, {u"javascript:x"}},
        {isDataURL, {u"DATA:,x"}, {u"date:x"}},
        {isAboutURL, {u"About:blank"}, {u"abut:x"}},
        {isSafariReaderURL, {u"safari-resource:x", u"safari-reader:x", u"reading-list:x"}, {u"safari:x"}},
        {isBookendsURL, {u"bookends://sonnysoftware.com/1"}, {u"Bookends://sonnysoftware.com", u"bookends://x"}},
        {isDownloadableURL, {u"http:x", u"ftps://h"}, {u"feed://h", u"file:///x", u"x"}},
        {isRemoteWebKitURL,
         {u"http://h", u"feed://1.2", u"sftp://h"},
         {u"http://...", u"http://.-", u"http://a...b", u"http:h", u"file:///x", u"gopher://h"}},
        {isWebKitURL, {u"file:x", u"http://h"}, {u"http:///", u"mailto:a"}},
        {isUsableURL, {u"javascript:x", u"Apple-x:y", u"file:///"}, {u"http:///", u"app:x"}},
        {isLoadableURL,
         {u"http:x", u"feed:x"},
         {u"file:///", u"file:///no/such/file", u"file:///etc/passwd%00", u"x:y"}}};
    for (const auto& c : cases) {
        for (const auto* string : c.yes) EXPECT_TRUE(c.test(url(string))) << &c - cases << String(string);
        for (const auto* string : c.no) EXPECT_FALSE(c.test(url(string))) << &c - cases << String(string);
        EXPECT_FALSE(c.test(URL()));
    }
    EXPECT_TRUE(isLoadableURL(URL::fileURLWithPath(String::fromUTF8(test::dataPath("urls/rfc3986-5.4.jsonl")))));
}

TEST(URLSchemes, KindsOfStrings) {
    using Predicate = bool (*)(std::u16string_view);
    const struct {
        Predicate test;
        std::vector<const char16_t*> yes, no;
    } cases[] = {
        {isWebKitStringURL,
         {u"HTTP://", u"https://h", u"feed://x", u"ftp://x", u"www.h", u"FTP.x", u"file://", u"sftp://"},
         {u"www.", u"http:/", u"mailto:a", u" http://h"}},
        {isRemoteWebKitStringURL, {u"feed://x", u"www.h"}, {u"file:///x"}},
        {isDownloadableStringURL, {u"ftps://h", u"ftp.h"}, {u"feed://h", u"file:///x"}},
        {isLoadableStringURL, {u"feed://h", u"file:///x"}, {u"news://h"}},
        {isHTTPStringURL, {u"http://", u"HTTPS://"}, {u"http:/", u"www.h.org"}},
        {isFTPStringURL, {u"ftp://", u"sFtp://"}, {u"ftp.h.org"}},
        {isNewsStringURL, {u"nntp://", u"news://"}, {u"nttp://", u"news:x.y"}},
        {isSafariReaderStringURL, {u"reading-list:", u"safari-reader:", u"safari-resource:"}, {u"safari-reader"}},
        {isFeedStringURL, {u"feed:", u"FEED:x"}, {u"feed", u""}},
        {isJavaScriptStringURL, {u"JavaScript:"}, {u"javascript"}},
        {isAppleScriptStringURL, {u"AppleScript:x"}, {u"applescript"}},
        {isDataStringURL, {u"data:"}, {u"Data:"}},
        {isAboutStringURL, {u"about:"}, {u"About:"}},
        {isBookendsStringURL, {u"bookends://sonnysoftware.com/x"}, {u"bookends://x", u"BOOKENDS://sonnysoftware.com"}},
        {isFileStringURL, {u"/", u"~x", u"FILE://"}, {u"", u"file:/", u"x/"}},
        {isMailStringURL,
         {u"a@b.c", u"a.b_c-d@e.org", u"mailto:abcde", u"a@b.org?subject=x", u"a@b.c.d", u"a@b.info", u"9@9.xx",
          u"a@b.co.uk"},
         {u"a@b.", u"a@.c", u"@b.cd", u"mailto:abcd", u"a@b.museum", u"a@b.org,c", u"a@b.org/x", u"a-@b.org",
          u"a b@c.org", u"a@b.1rg", u"a@b/c.d", u"_a@b.org", u"http://a@b.org", u"a@bcdef", u"a@b@c.d",
          u"a@b.information.org"}}};
    for (const auto& c : cases) {
        for (const auto* string : c.yes) EXPECT_TRUE(c.test(string)) << &c - cases << String(string);
        for (const auto* string : c.no) EXPECT_FALSE(c.test(string)) << &c - cases << String(string);
        EXPECT_FALSE(c.test({}));
    }
}

TEST(URLSchemes, SameHosts) {
    const std::tuple<const char16_t*, const char16_t*, bool> cases[] = {
        {u"http://H.org/a", u"ftp://h.ORG:8/b", true},
        {u"http://h", u"http://www.h", false},
        {u"file:///a", u"file:///b", true},
        {u"http://h", u"file://h/", false},
        {u"file://h/", u"http://h", false},
        {u"mailto:a", u"mailto:b", false},
    };
    for (const auto& [string, other, same] : cases)
        EXPECT_EQ(isHostEqualTo(url(string), url(other)), same) << String(string);
    EXPECT_FALSE(isHostEqualTo(url(u"http://h"), URL()));
    EXPECT_FALSE(isHostEqualTo(URL(), URL()));
}

TEST(URLSchemes, SchemesAndExtensions) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*> cases[] = {
        {u"http://h.org/a/b.html?q", u"http", u"html"},
        {u"http://h.org", u"http", nullptr},
        {u"http://h.org/", u"http", nullptr},
        {u"http://h.org?a.b", u"http", u"b"},
        {u"/a.b://c.d", u"", u"d"},
        {u"a.txt;v=1", nullptr, u"txt"},
        {u"a.?b", nullptr, nullptr},
        {u"a.", nullptr, nullptr},
        {u".a", nullptr, nullptr},
        {u"x", nullptr, nullptr},
        {u"", nullptr, nullptr},
        {u":x", u"", nullptr},
        {u"a;b:c.d", nullptr, u"d"},
        {u"feed:x.RSS#y", u"feed", u"RSS"}};
    for (const auto& [string, scheme, extension] : cases) {
        if (string[0] != u'/') { EXPECT_EQ(stringURLScheme(string), String(scheme)) << String(string); }
        EXPECT_EQ(stringURLPathExtension(string), String(extension)) << String(string);
    }
    const std::vector<String> extensions{u"rss", u"XML"};
    EXPECT_TRUE(stringURLMatchingExtensions(u"feed:x.RSS#y", extensions));
    EXPECT_FALSE(stringURLMatchingExtensions(u"x.html", extensions));
    EXPECT_FALSE(stringURLMatchingExtensions(u"x", extensions));
    EXPECT_FALSE(stringURLMatchingExtensions(u"x.rss", {}));
}

TEST(URLSchemes, FeedLinks) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*> cases[] = {
        {u"feed:http://h", u"http://h", u"http://h"}, {u"FEED:HTTPS://h", u"HTTPS://h", u"HTTPS://h"},
        {u"feed://h", u"feed://h", u"http://h"},      {u"feed:/h", u"feed:/h", u"http:/h"},
        {u"feed:h", u"http://h", u"http:h"},          {u"feed:", u"feed:", u"feed:"},
        {u"http://h", u"http://h", u"http://h"},      {u"", u"", u""}};
    for (const auto& [given, valid, webKit] : cases) {
        const String string(given);
        EXPECT_EQ(validFeedStringURL(string), valid);
        EXPECT_EQ(WebKitStringURL(string), webKit);
        EXPECT_EQ(validFeedStringURL(string).isIdenticalTo(string), string == valid);
    }
    EXPECT_TRUE(validFeedStringURL(String()).isAbsent() && WebKitStringURL(String()).isAbsent());
}

}  // namespace
}  // namespace velmo
