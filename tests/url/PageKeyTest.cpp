#include <velmocore/url/PageKey.h>

#include <sstream>

#include <velmocore/url/RelativeURLs.h>

#include "TestSupport.h"
#include "url/TrackingTables.h"
#include "url/UnitEscapes.h"

namespace velmo {
namespace {

std::string keyOf(View url, const PageKeyOptions& options = {}) {
    return pageKey(URL::URLWithString(url), options).utf8();
}

struct Pair {
    View a, b;
};

// A key must not change any more, or one page is parted in a second round.
void expectStable(const std::string& key) { EXPECT_EQ(pageKey(URL::URLWithString(String::fromUTF8(key))).utf8(), key); }

TEST(PageKey, JoinsTheWaysToOnePage) {
    const Pair pairs[] = {
        {u"HTTPS://WWW.H.org", u"http://h.org/"},
        {u"http://u:p@h.org.:80/a", u"https://h.org:443/a/"},
        {u"http://h.org:0080/", u"http://h.org"},
        {u"http://h.org/a/./b/../c//d", u"http://h.org/a/c/d"},
        {u"http://h.org/../%2e%2E/a", u"http://h.org/a"},
        {u"http://h.org/%7Ea%2cb%c3%a4?%61=%2f+x", u"http://h.org/~a,b%C3%A4?a=/%20x"},
        {u"http://h.org/a?", u"http://h.org/a#top"},
        {u"http://h.org/a?b=&&c=1&", u"http://h.org/a?c=1"},
        {u"http://h.org/a?c=1&b=2&a=3&c=0", u"http://h.org/a?a=3&b=2&c=1&c=0"},
        {u"http://h.org/a?b=1;a=2", u"http://h.org/a?a=2&b=1"},
        {u"http://h.org/a/index.html", u"http://h.org/a"},
        {u"http://h.org/Default.aspx?id=2", u"http://h.org/?id=2"},
        {u"http://h.org/a/index.php;jsessionid=A1.node?n=1", u"http://h.org/a?n=1"},
        {u"http://h.org/(S(abc123))/a/(X(1)F(z))/b", u"http://h.org/a/b"},
        {u"http://h.org/(55mfgh55vgblurtywsityvjq)/a", u"http://h.org/a"},
        {u"http://h.org/a?PHPSESSID=1&ASPSESSIONIDQQCA=B&CFID=12&CFTOKEN=34", u"http://h.org/a"},
        {u"http://h.org/a?sid=0123456789abcdef0123&n=1", u"http://h.org/a?n=1"},
        {u"http://h.org/a?UTM_Source=x&utm_whatever=y&fbclid=1&__cft__%5B0%5D=z", u"http://h.org/a?__cft__%5B0%5D=z"},
        {u"http://m.facebook.com/a?__cft__%5B0%5D=z&__tn__=R", u"http://m.facebook.com/a"},
        {u"https://www.amazon.co.uk/dp/B0?ref_=x&tag=y&pf_rd_r=z", u"http://amazon.co.uk/dp/B0"},
        {u"https://youtu.be/x?si=abc&t=10", u"https://youtu.be/x?t=10"},
        {u"FILE:/a//b/../c", u"file:///a/c"},
        {u"MAILTO:A@b.org#x", u"mailto:A@b.org"},
    };
    for (const Pair& pair : pairs) {
        EXPECT_EQ(keyOf(pair.a), keyOf(pair.b)) << String(pair.a);
        expectStable(keyOf(pair.a));
    }
}

TEST(PageKey, PartsWhatDiffers) {
    const Pair pairs[] = {
        {u"http://h.org/A", u"http://h.org/a"},
        {u"http://h.org/?a=B", u"http://h.org/?a=b"},
        {u"http://h.org:8080/", u"http://h.org/"},
        {u"https://h.org:80/", u"http://h.org/"},
        {u"http://m.h.org/", u"http://h.org/"},
        {u"http://www.org/", u"http://org/"},
        {u"http://h.org/a%2Fb", u"http://h.org/a/b"},
        {u"http://h.org/?a=1%262", u"http://h.org/?a=1&2"},
        {u"http://h.org/?a=1%2B2", u"http://h.org/?a=1+2"},
        {u"http://h.org/?a=1&a=2", u"http://h.org/?a=2&a=1"},
        {u"http://h.org/#!/a", u"http://h.org/#!/b"},
        {u"http://h.org/#/a", u"http://h.org/"},
        {u"http://h.org/a?sid=17", u"http://h.org/a?sid=18"},
        {u"http://h.org/a?s=tea", u"http://h.org/a"},
        {u"http://h.org/a?CFID=12", u"http://h.org/a"},
        {u"http://h.org/a?id=1", u"http://h.org/a?id=2"},
        {u"http://h.org/a;v=1", u"http://h.org/a;v=2"},
        {u"http://h.org/(S)/a", u"http://h.org/a"},
        {u"http://h.org/index.html/a", u"http://h.org/a"},
        {u"http://h.org/myindex.html", u"http://h.org/"},
        {u"http://h.org/a?si=1", u"http://h.org/a"},
        {u"http://notamazon.com/a?tag=x", u"http://notamazon.com/a"},
        {u"http://amazon/a?tag=x", u"http://amazon/a"},
        {u"http://h.org/a?xfbclid=1", u"http://h.org/a"},
        {u"http://h.org/a?fbclid2=1", u"http://h.org/a"},
        {u"http://h.org/a?cat=tea", u"http://h.org/a?cat=mate"},
        {u"file:///a/index.html", u"file:///a"},
        {u"data:,a%2Cb", u"data:,a,b"},
    };
    for (const Pair& pair : pairs) {
        EXPECT_NE(keyOf(pair.a), keyOf(pair.b)) << String(pair.a);
        expectStable(keyOf(pair.a));
    }
    EXPECT_TRUE(pageKey(URL()).isAbsent());
}

// Pairs as they are met, the later ones of pages that differ. Both readings of a URL have one key.
TEST(PageKey, JudgesPairs) {
    const auto keyOfWeb = [](const String& text) {
        const String key = pageKey(URLWithStringRelativeTo(text, URL(), {.web = {.resolution = true}}));
        const URL url = URL::URLWithString(text);
        EXPECT_TRUE(url.isAbsent() || pageKey(url) == key) << text;
        expectStable(key.utf8());
        return key;
    };
    std::istringstream lines(test::readData("page-pairs.tsv"));
    int pairs = 0;
    for (std::string line; std::getline(lines, line); ++pairs) {
        const auto fields = test::unescapedFieldsOf(line);
        ASSERT_EQ(fields.size(), 3u) << line;
        const String first = keyOfWeb(fields[1]), second = keyOfWeb(fields[2]);
        EXPECT_FALSE(first.isAbsent() || second.isAbsent()) << line;
        EXPECT_EQ(first == second, fields[0] == u"same") << line << '\n' << first << '\n' << second;
    }
    EXPECT_EQ(pairs, 122);
}

// What only the URL standard has in a URL is escaped; it is the same page then.
TEST(PageKey, TakesURLsOfTheWeb) {
    const Pair pairs[] = {
        {u"http://h.org/a|b[%zz?c|d%#x^", u"http://h.org/a%7Cb%5B%25zz?c%7Cd%25"},
        {u"foo://a\"b{/c", u"foo://a%22b%7b/c"},
        {u"http://a\"b/c", u"http://a%22b/c"},
        {u"mailto:a b<c>#d e", u"mailto:a%20b%3Cc%3E"},
        {u"http://h.org/#/a|b#c", u"http://h.org/#/a%7Cb%23c"},
    };
    for (const Pair& pair : pairs) {
        const URL url = URLWithStringRelativeTo(pair.a, URL(), {.trimAnchor = false, .web = {.resolution = true}});
        EXPECT_EQ(pageKey(url), pair.b);
        expectStable(pageKey(url).utf8());
    }
    // Hosts that are none, and dots that come to light.
    for (View url :
         {u"http://www.0x7f.1/", u"http://0x7f.1../", u"http://0x7f.1%E3%80%82%E3%80%82/", u"http://www.h%zz.org/",
          u"http://www.h%20h.org/", u"http://.../", u"http://www.../", u"foo://WWW.0x7f.1./"})
        expectStable(keyOf(url));
    EXPECT_EQ(keyOf(u"http://0x7f.1%E3%80%82%E3%80%82/"), "http://127.0.0.1/");
}

TEST(PageKey, TakesBackEachOption) {
    constexpr View Page = u"https://www.h.org/a;jsessionid=1/index.php?b=&d=4&c=3&gclid=5";
    EXPECT_EQ(keyOf(Page), "http://h.org/a?c=3&d=4");
    EXPECT_EQ(keyOf(Page, {.foldScheme = false}), "https://h.org/a?c=3&d=4");
    EXPECT_EQ(keyOf(Page, {.foldWWW = false}), "http://www.h.org/a?c=3&d=4");
    EXPECT_EQ(keyOf(Page, {.sessionIDs = false}), "http://h.org/a;jsessionid=1?c=3&d=4");
    EXPECT_EQ(keyOf(Page, {.tracking = false}), "http://h.org/a?c=3&d=4&gclid=5");
    EXPECT_EQ(keyOf(Page, {.emptyParams = false}), "http://h.org/a?b=&c=3&d=4");
    EXPECT_EQ(keyOf(Page, {.indexPages = false}), "http://h.org/a/index.php?c=3&d=4");
    EXPECT_EQ(keyOf(Page, {.sortQuery = false}), "http://h.org/a?d=4&c=3");
}

TEST(PageKey, TakesRowsOfOnesOwn) {
    const TrackingParameters own(u"# ours\n\nVisit*\nfrom  h.org shop.*\r\n*\na*b\n" + test::repeated(u"x", 65) +
                                 u"\nlast");
    EXPECT_EQ(own.numberOfRejectedLines(), 3u);
    EXPECT_EQ(keyOf(u"http://www.h.org/?visitor=1&FROM=2&last=3&fbclid=4&n=5", {.parameters = &own}),
              "http://h.org/?n=5");
    EXPECT_TRUE(own.contains(u"from", u"de.shop.co.uk"));
    for (View host : {u"oh.org", u"shop", u"h.org.net", u"ashop.net", u""})
        EXPECT_FALSE(own.contains(u"from", host)) << String(host);
    EXPECT_FALSE(own.contains(u"", u"h.org") || own.contains(test::repeated(u"x", 65), u"h.org"));
    EXPECT_TRUE(own.contains(u"visit" + test::repeated(u"x", 500), u""));
}

TEST(PageKey, TablesAreAsTheySay) {
    EXPECT_EQ(detail::trackingRows().size(), 372u);
    EXPECT_EQ(detail::sessionRows().size(), 36u);
    std::size_t everywhere = 0;
    for (const detail::TrackingRow& row : detail::trackingRows()) {
        everywhere += row.hosts.empty();
        std::string name(row.name);
        if (name.ends_with('*')) name.back() = 'x';
        std::string host(row.hosts.substr(0, row.hosts.find(' ')));
        if (host.ends_with('*')) host.back() = 'x';
        EXPECT_TRUE(TrackingParameters::common().contains(String::fromUTF8(name), String::fromUTF8(host))) << name;
    }
    EXPECT_GT(everywhere, 150u);
    // Each is found by a value that all kinds take, and those of ids by no word.
    std::size_t ids = 0;
    for (const detail::SessionRow& row : detail::sessionRows()) {
        std::string name(row.name);
        if (name.ends_with('*')) name.back() = 'x';
        const auto keyWith = [&](const char* value) {
            return keyOf(String::fromUTF8("http://h.org/?" + name + '=' + value), {.tracking = false});
        };
        EXPECT_EQ(keyWith("0123456789abcdef"), "http://h.org/") << name;
        ids += keyWith("tea") != "http://h.org/";
        EXPECT_EQ(keyWith("tea") != "http://h.org/", row.value != detail::SessionValue::Any) << name;
    }
    EXPECT_EQ(ids, 10u);
}

// A key is a URL and its own key, with any options.
TEST(PageKey, IsItsOwnKey) {
    std::mt19937 random(5);
    const View pieces[] = {u"/",     u".",         u"..",     u"%2e",       u"(S(a))",
                           u";sid",  u"=",         u"&",      u"?",         u";jsessionid=1",
                           u"//",    u"index.php", u"#",      u"#!/",       u"www.",
                           u":80",   u":443",      u"https:", u"+",         u"%20",
                           u"a",     u"b=",        u"CFID=1", u"CFTOKEN=1", u"x;y=1",
                           u"file:", u"http:",     u"@",      u"utm_a=1",   u"%3B",
                           u".0x7f", u".1",        u"xn--",   u"%E3%80%82", u"%C3%BC",
                           u"amp",   u"ref=1"};
    int taken = 0;
    for (int round = 0; round < 100000; ++round) {
        std::u16string link(random() % 4 ? u"http://h.org/" : u"");
        for (unsigned n = random() % 12; n > 0; --n) link += pieces[random() % std::size(pieces)];
        const URL url = URL::URLWithString(link);
        if (url.isAbsent()) continue;
        ++taken;
        const unsigned bits = random() % 4 ? 127 : random();
        const PageKeyOptions options{(bits & 1) != 0,  (bits & 2) != 0,  (bits & 4) != 0, (bits & 8) != 0,
                                     (bits & 16) != 0, (bits & 32) != 0, (bits & 64) != 0};
        const String key = pageKey(url, options);
        ASSERT_EQ(pageKey(URL::URLWithString(key), options), key) << url;
    }
    EXPECT_GT(taken, 10000);
}

/// The text with each a as an escape.
std::u16string withEscapes(std::u16string text) {
    for (std::size_t i = text.find(u'a'); i != text.npos; i = text.find(u'a', i + 1)) text.replace(i, 1, u"%61");
    return text;
}

// Host, path and query are each written by their marks if they are short and have no escapes. These change nothing,
// and neither does a long folder or value but itself.
TEST(PageKey, IsTheSameWithAndWithoutMarks) {
    std::mt19937 random(6);
    const auto hosts = test::wordsOf(
        u"h.org WWW.H.org www.a.org www.b.1 a.www.org. h.org. 1.2.3.4 h.0x7 a--b.c a-b.c xn--tda.d a_b:80 "
        u"www.h.org:8080 abcdefgh-abcdefgh.abcdefgh.org abcdefgh--a.org ");
    const auto pieces = test::wordsOf(
        u"/ /a . .. /. // /b/ (S(a)) /(S(a)) ;jsessionid=1 ;v=1 = ?a=1 &b=2 &a=3 &PHPSESSID=4 &fbclid=5 ?utm_x=6 &amp "
        u"&e= &CFID=7 &CFTOKEN=8 ;c=9 && /index.php /default.aspx /indexes ? &z &sid=0123456789abcdef0 ?ga_term=a "
        u"?tag=a "
        u"&aa=1 &aaaab=2 &aaaaa=3 ");
    int taken = 0;
    for (int round = 0; round < 60000; ++round) {
        std::u16string rest;
        for (unsigned n = random() % 9; n > 0; --n) rest += pieces[random() % pieces.size()];
        const unsigned bits = random() % 4 ? 127 : random();
        const PageKeyOptions options{(bits & 1) != 0,  (bits & 2) != 0,  (bits & 4) != 0, (bits & 8) != 0,
                                     (bits & 16) != 0, (bits & 32) != 0, (bits & 64) != 0};
        const std::u16string host = hosts[random() % hosts.size()];
        const URL url = URL::URLWithString(u"https://" + host + rest);
        if (url.isAbsent()) continue;
        ++taken;
        ASSERT_EQ(pageKey(URL::URLWithString(u"https://" + withEscapes(host + rest)), options), pageKey(url, options))
            << url;
        const std::u16string longOne(140, u'x');
        const auto keyWith = [&](const std::u16string& folder, const std::u16string& value) {
            const std::u16string last = rest.find(u'?') == rest.npos ? u"" : u"&zz=" + value;
            return pageKey(URL::URLWithString(u"https://" + host + u"/x/" + folder + u"/" + rest + last), options);
        };
        std::u16string expected(keyWith(u"x", u"x"));
        if (const std::size_t x = expected.find(u"zz=x"); x != expected.npos) expected.replace(x + 3, 1, longOne);
        if (const std::size_t x = expected.find(u"/x/x"); x != expected.npos) expected.replace(x + 3, 1, longOne);
        ASSERT_EQ(keyWith(longOne, longOne), expected) << url;
    }
    EXPECT_GT(taken, 20000);
}

// Many parameters are sorted otherwise than few; those of one name keep their order.
TEST(PageKey, SortsFewAndManyParameters) {
    std::mt19937 random(7);
    for (std::size_t count = 1; count < 60; ++count) {
        std::vector<std::pair<std::u16string, std::u16string>> parameters(count);
        std::u16string query, expected;
        for (auto& [name, value] : parameters) {
            name = test::randomText(random, u"abB", 1 + random() % 2);
            value = test::randomText(random, u"xyz", 3);
            query += u"&" + name + u"=" + value;
        }
        std::ranges::stable_sort(parameters, {}, [](const auto& parameter) { return parameter.first; });
        for (const auto& [name, value] : parameters) expected += u"&" + name + u"=" + value;
        expected[0] = u'?';
        EXPECT_EQ(pageKey(URL::URLWithString(u"http://h.org/?" + query)), u"http://h.org/" + expected);
    }
}

}  // namespace
}  // namespace velmo
