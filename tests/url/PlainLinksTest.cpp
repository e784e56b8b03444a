#include "url/PlainLinks.h"

#include <velmocore/url/RelativeURLs.h>

#include "TestSupport.h"
#include "url/URLMaker.h"

namespace velmo {
namespace {

TEST(PlainLinks, AreMostLinksOfPages) {
    const URL page = URL::URLWithString(u"http://h.org/a/b/c.html?q"), root = URL::URLWithString(u"http://h.org");
    const std::tuple<const URL&, const char16_t*, const char16_t*> cases[] = {
        {page, u"d.html#x", u"http://h.org/a/b/d.html"},
        {page, u"../../../d/?e=1", u"http://h.org/d/?e=1"},
        {page, u"./", u"http://h.org/a/b/"},
        {page, u"/d;v=1", u"http://h.org/d;v=1"},
        {page, u"https://i.org:80/a%20b?c://d#", u"https://i.org:80/a%20b?c://d"},
        {root, u"d", u"http://h.org/d"},
        {root, u"#x", nullptr},
        {root, u"&", nullptr},
    };
    for (const auto& [base, link, expected] : cases) {
        const auto url = detail::plainURLRelativeTo(base, link, true);
        ASSERT_TRUE(url) << String(link);
        EXPECT_EQ(url->absoluteString(), String(expected)) << String(link);
    }
    for (const char16_t* link : {u"a b", u"//i.org/", u"a//b", u"a/./b", u".a", u"?q", u"mailto:a", u"ftp://i.org/",
                                 u"http://http://i/", u"c#!x"})
        EXPECT_FALSE(detail::plainURLRelativeTo(page, link, true)) << String(link);
}

void expectSameURLs(const URL& url, const URL& other, View link) {
    ASSERT_EQ(url, other) << utf8(link);
    for (std::size_t part = 0; part < NumberOfURLParts; ++part) {
        const View a = url.part(static_cast<URLPart>(part)), b = other.part(static_cast<URLPart>(part));
        ASSERT_EQ(String(a), String(b)) << utf8(link) << ' ' << part;
    }
}

// With a space in front, which is trimmed off, a link goes the long way.
TEST(PlainLinks, AreWhatTheLongWayGives) {
    std::mt19937 random(8);
    const auto pieces = test::wordsOf(
        u"http:// https:// HTTP:// h.org i.org:8 / // ./ ../ . .. ? # #! ; = %41 % a b- c.html : @ & - x ~u /.. /./ ");
    Strings texts = {u"http://h.org/a/b/c?q",
                     u"https://h.org",
                     u"http://u:p@h.org/a/",
                     u"http://h.org/a//b/../c",
                     u"http://h.org/a;b/c;d?e",
                     u"file://h/a",
                     u"//h.org/a",
                     u"a/b",
                     u"HTTP://H.org:8/x/",
                     u"feed:h.org/a",
                     u"http://h.org/a/.b/c.",
                     u"x:/a"};
    int plain = 0;
    for (int round = 0; round < 40000; ++round) {
        const URL base = URL::URLWithString(texts[random() % texts.size()]);
        std::u16string link;
        for (unsigned n = random() % 7; n > 0; --n) link += pieces[random() % pieces.size()];
        if (random() % 50 == 0) link += std::u16string(random() % 140, u'l');
        const bool trimAnchor = random() % 4;
        const auto url = detail::plainURLRelativeTo(base, link, trimAnchor);
        plain += url.has_value();
        if (url) expectSameURLs(*url, URLRelativeTo(base, u" " + link, {.trimAnchor = trimAnchor}), link);
    }
    EXPECT_GT(plain, 3000);
}

TEST(PlainLinks, AreWhatTheURLStandardGives) {
    std::mt19937 random(9);
    const auto pieces = test::wordsOf(
        u"http:// https:// http://i.org/ HTTP:// H.org h.org i.org:8 a--b 1.2 / // ./ ../ . .. ? # #! ; = %41 %2e % a "
        u"b- ' c.html : @ & - x ~u \\ /.. /./ ");
    const RelativeURLOptions rules = {.web = {.resolution = true}};
    const Strings texts = {u"",  // no base
                           u"http://h.org/a/b/c?q",
                           u"https://h.org",
                           u"http://u:p@h.org/a/",
                           u"http://h.org/a//b/../c",
                           u"http://h.org/a;b/c;d?e",
                           u"file://h/a",
                           u"HTTP://H.org:8/x/",
                           u"x://h/a",
                           u"ws://h/a/b"};
    int plain = 0;
    for (int round = 0; round < 40000; ++round) {
        const URL base = URLWithStringRelativeTo(texts[random() % texts.size()], URL(), rules);
        std::u16string link;
        for (unsigned n = random() % 7; n > 0; --n) link += pieces[random() % pieces.size()];
        if (random() % 50 == 0) link += std::u16string(random() % 140, u'l');
        const bool trimAnchor = random() % 4;
        const auto url = detail::plainWebURLRelativeTo(base, link, trimAnchor);
        plain += url.has_value();
        if (!url) continue;
        const URL expected =
            URLWithStringRelativeTo(u" " + link, base, {.trimAnchor = trimAnchor, .web = {.resolution = true}});
        expectSameURLs(*url, expected, link);
        ASSERT_EQ(detail::URLMaker::isOfWeb(*url), detail::URLMaker::isOfWeb(expected));
    }
    EXPECT_GT(plain, 3000);
}

}  // namespace
}  // namespace velmo
