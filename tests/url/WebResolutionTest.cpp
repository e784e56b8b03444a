#include "url/WebResolution.h"

#include <sstream>

#include <velmocore/url/RelativeURLs.h>
#include <velmocore/url/URLVariants.h>

#include "TestSupport.h"
#include "url/UnitEscapes.h"

namespace velmo {
namespace {

constexpr WebRules Web = {.resolution = true};

URL resolved(const String& base, const String& link) {
    const RelativeURLOptions options = {.trimAnchor = false, .web = Web};
    const URL page = base.isEmpty() ? URL() : URLWithStringRelativeTo(base, URL(), options);
    if (page.isAbsent() && !base.isEmpty()) return {};
    return URLWithStringRelativeTo(link, page, options);
}

// A URL is what it is read as, by the standard and, where it is one there too, by the grammar.
void expectStable(const URL& url) {
    const URL strict = URL::URLWithString(url.absoluteString());
    for (const URL& again : {resolved(u"", url.absoluteString()), strict.isAbsent() ? url : strict})
        for (std::size_t part = 0; part < NumberOfURLParts; ++part)
            ASSERT_EQ(String(again.part(static_cast<URLPart>(part))), String(url.part(static_cast<URLPart>(part))))
                << url << part;
}

// What another implementation of the standard makes of them; see scripts/resolution-values.
TEST(WebResolution, ResolvesAsTheStandard) {
    std::istringstream lines(test::readData("resolution-values.tsv"));
    int pairs = 0, none = 0;
    for (std::string line; std::getline(lines, line); ++pairs) {
        const auto fields = test::unescapedFieldsOf(line);
        ASSERT_EQ(fields.size(), 3u) << line;
        const URL url = resolved(fields[0], fields[1]);
        EXPECT_EQ(url.isAbsent() ? String(u"-") : url.absoluteString(), fields[2]) << line;
        none += url.isAbsent();
        if (!url.isAbsent()) expectStable(url);
    }
    EXPECT_EQ(pairs, 830);
    EXPECT_EQ(none, 177);
}

TEST(WebResolution, FollowsItsOptions) {
    const URL page = URL::URLWithString(u"HTTP://me:pw@H.org:80/a/b?q"), file = URL::URLWithString(u"file:///a/b");
    const std::pair<const char16_t*, const char16_t*> trimmed[] = {{u"c#x", u"http://me:pw@h.org/a/c"},
                                                                   {u"c#!x", u"http://me:pw@h.org/a/c#!x"},
                                                                   {u"#x", nullptr},
                                                                   {u" \n", nullptr},
                                                                   {u"?", u"http://me:pw@h.org/a/b?"},
                                                                   {u"//h.org/c", u"http://h.org/c"}};
    for (const auto& [link, expected] : trimmed)
        EXPECT_EQ(URLRelativeTo(page, link, {.web = Web}).absoluteString(), String(expected)) << String(link);
    EXPECT_EQ(URLRelativeTo(file, u"c#x", {.web = Web}).absoluteString(), u"file:///a/c");
    EXPECT_TRUE(URLRelativeTo(page, String(), {.web = Web}).isAbsent());
    EXPECT_TRUE(URLRelativeTo(URL(), u"http://h/", {.web = Web}).isAbsent());
    // Of queries alone, and not everywhere.
    const std::tuple<const char16_t*, StringEncoding, const char16_t*> encoded[] = {
        {u"\u00E4?\u00E4\u20AC'", 5, u"http://me:pw@h.org/a/%C3%A4?%E4%26%238364%3B%27"},
        {u"?\u3042", ShiftJISStringEncoding, u"http://me:pw@h.org/a/b?%82%A0"},
        {u"?\u8868", ShiftJISStringEncoding, u"http://me:pw@h.org/a/b?%95\\"},
        {u"?\u00E4", UTF16StringEncoding, u"http://me:pw@h.org/a/b?%C3%A4"},
        {u"ws://h?\u00E4", 5, u"ws://h/?%C3%A4"},
        {u"foo:?\u00E4", 5, u"foo:?%C3%A4"}};
    for (const auto& [link, encoding, expected] : encoded)
        EXPECT_EQ(URLRelativeTo(page, link, {.encoding = encoding, .web = Web}).absoluteString(), expected)
            << String(link);
}

// What the grammar does not have is not lost when a part is exchanged.
TEST(WebResolution, KeepsItsURLsInVariants) {
    const URL url = resolved(u"", u"http://u:p@localhost/a|b%?c^d#e");
    EXPECT_EQ(URLWithoutAnchor(url), u"http://u:p@localhost/a|b%?c^d");
    EXPECT_EQ(URLWithAnchor(url, u"f"), u"http://u:p@localhost/a|b%?c^d#f");
    EXPECT_EQ(URLWithoutCredentials(url), u"http://localhost/a|b%?c^d#e");
    EXPECT_EQ(URLWithScheme(url, u"https"), u"https://u:p@localhost/a|b%?c^d#e");
    EXPECT_EQ(WebKitURL(url), u"http://u:p@127.0.0.1/a|b%?c^d#e");
    EXPECT_EQ(url.standardizedURL(), url);
    EXPECT_EQ(URL::URLWithString(u"../x", url), u"http://u:p@localhost/x");
    EXPECT_TRUE(URLWithAnchor(URL::URLWithString(u"http://h/"), u"a|b").isAbsent());
}

}  // namespace
}  // namespace velmo
