#include <velmocore/markup/Links.h>

#include <velmocore/markup/LinkNormalising.h>
#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagScanner.h>
#include <velmocore/platform/Log.h>

#include "TestSupport.h"
#include "markup/PlainHref.h"
#include "markup/TagScan.h"

namespace velmo {
namespace {

std::string lastLog;

/// The links with blanks between them.
std::string links(const char16_t* page, const LinkOptions& options = {}) {
    std::string text;
    for (const String& link : htmlLinks(page, options).links) text += (text.empty() ? "" : " ") + link.utf8();
    return text;
}

std::string base(const char16_t* page) {
    lastLog.clear();
    setLogHandler([](std::string_view line) { lastLog = line; });
    const URL url = htmlLinksBaseURL(page).baseURL;
    setLogHandler(nullptr);
    return url.absoluteString().utf8();
}

TEST(Links, ComeOnceInPageOrder) {
    const std::pair<const char16_t*, const char*> cases[] = {
        {u"<a href=x>1</a><A HREF='y'>2</A><a href=\"x\">3</a><area href=z>", "x y z"},
        {u"<a href=' x&#32;'><a href=x><a href=x%20><a href=X>", "x X"},
        {u"<a name=x><a href=''><a href><a><a href=' '>", ""},
        {u"</a href=x></area href=y><b href=z><abbr href=z>", ""},
        {u"<!-- <a href=x> --><script>'<a href=y>'</script><a href=z>", "z"},
        {u"<a title=\"href=no\" href=a&amp;b>", "a&b"},
        {u"<a href=mailto:x><a href=#>", "mailto:x #"},
        {u"text only", ""},
        {u"", ""}};
    for (const auto& [page, expected] : cases) EXPECT_EQ(links(page), expected) << String(page);
}

TEST(Links, Options) {
    const char16_t page[] =
        u"<a href=a rel='x NoFollow'>one <b>b</b></a><a href=javascript:x>two</a>"
        u"<area href=c><a href=d>T<b>h</b>ree</a><a href=e>never closed one<a>";
    EXPECT_EQ(links(page), "a javascript:x c d e");
    EXPECT_EQ(links(page, {.useRelNoFollow = true}), "javascript:x c d e");
    EXPECT_EQ(links(page, {.filter = true}), "a c d e");
    EXPECT_EQ(links(page, {.containing = u"Three"}), "d");
    EXPECT_EQ(links(page, {.containing = u"three"}), "");
    EXPECT_EQ(links(page, {.containing = u"o", .useRelNoFollow = true}), "javascript:x");
    EXPECT_EQ(links(page, {.containing = u"o", .filter = true}), "a");
    EXPECT_EQ(htmlLinksContaining(page, u"", true).links, htmlLinks(page, {.useRelNoFollow = true}).links);
    EXPECT_EQ(filteredHtmlLinksBaseURL(page).links, htmlLinks(page).links);
    EXPECT_EQ(filteredHtmlLinksContaining(page, u"o", false).links, htmlLinks(page, {.containing = u"o"}).links);
}

TEST(Links, HandlersSeeTheRawLinkAndItsText) {
    std::string seen;
    const auto keep = [&](std::u16string_view link, std::u16string_view text) {
        seen += utf8(link) + '=' + utf8(text) + ';';
        return link != u"b";
    };
    EXPECT_EQ(links(u"<a href='a '>1&amp;<i>2</i><!-- - -->3</a>no<a href=b>x</a><a href=c></a></a>"
                    u"<a href=d><a name=e>x</a><a href=a>y</a><area href=f>",
                    {.handler = keep}),
              "a c");
    EXPECT_EQ(seen, "a=1&amp;23;b=x;c=;a=y;");
}

TEST(Links, BaseTags) {
    const std::tuple<const char16_t*, const char*, const char*> cases[] = {
        {u"<base href=http://h/a>", "http://h/a", ""},
        {u"<BASE HREF='//h/'>", "http://h/", ""},
        {u"<base href=http://a><base href=http://b>", "http://b", ""},
        {u"<base href=http://a><base target=x>", "http://a", ""},
        {u"<base href=http://a><base href=#>", "", ""},
        {u"<base href=http://a><base href=/>", "", ""},
        {u"<base href=http://a><base href=.>", "", ""},
        {u"<base href=www.h.org>", "http://www.h.org", ""},
        {u"<base href=a/>", "", "Invalid base: 'a/'"},
        {u"<base href=/a/>", "", "Invalid base: '/a/'"},
        {u"<base href='http://.../'>", "", "Invalid base: 'http://.../'"},
        {u"<base href='//'>", "", "Invalid base: 'http://'"},
        {u"</base href=http://h>", "", ""},
        {u"<base href='http://h/a b'>", "http://h/a%20b", ""}};
    for (const auto& [page, expected, log] : cases) {
        EXPECT_EQ(base(page), expected) << String(page);
        EXPECT_EQ(lastLog, log) << String(page);
    }
}

TEST(Links, ManyLinksComeOnceEach) {
    std::mt19937 random(5);
    std::u16string page;
    std::vector<String> expected;
    for (int i = 0; i < 6000; ++i) {
        std::u16string link = u"/" + std::u16string(random() % 12, u'a');
        for (unsigned n = random() % 4; n > 0; --n) link += static_cast<char16_t>(u'a' + random() % 8);
        page += u"<a href=\"" + link + u"\">x</a>";
        if (std::find(expected.begin(), expected.end(), link) == expected.end()) expected.emplace_back(link);
    }
    EXPECT_EQ(htmlLinks(page).links, expected);
    EXPECT_EQ(htmlLinks(page, {.containing = u"x"}).links, expected);
}

/// Links as a handler has them that is asked of every tag.
std::vector<String> linksOfAllTags(View page) {
    std::vector<String> links;
    GetTagsOfString(page, [&](const Tag& tag) {
        if (!(tag.isNamed("A") || tag.isNamed("AREA")) || tag.tagLength < 3 || tag.isClosing()) return false;
        const String link = normalizedStringURL(attributeOfTagCharacters(tag.whole(), "HREF"));
        if (!link.isEmpty() && std::ranges::find(links, link) == links.end()) links.push_back(link);
        return false;
    });
    return links;
}

// Without their text nothing is asked of most tags but where they end.
TEST(Links, AreThoseOfAScanThatReportsAllTags) {
    constexpr View Pieces[] = {u"<a href=x",
                               u"<A HREF='y>z'",
                               u"<area href=\"q\"",
                               u"</a",
                               u"<b ",
                               u"<I a=",
                               u"<p",
                               u"<script>",
                               u"</script>",
                               u"<STYLE>",
                               u"</style",
                               u"<\u017Fcript>",
                               u"<!--",
                               u"-->",
                               u"<![",
                               u"]>",
                               u"<1a href=w",
                               u"<?a href=v",
                               u"</",
                               u"<",
                               u"<>",
                               u">",
                               u"/>",
                               u"=",
                               u"\"",
                               u"'",
                               u" ",
                               u"t",
                               u"<td c='",
                               u"<\u00E1 href=u"};
    std::mt19937 random(11);
    std::size_t found = 0;
    for (int round = 0; round < 30000; ++round) {
        std::u16string page;
        for (unsigned n = random() % 20; n > 0; --n) page += Pieces[random() % std::size(Pieces)];
        const std::vector<String> expected = linksOfAllTags(page);
        ASSERT_EQ(htmlLinks(page).links, expected) << utf8(page);
        found += expected.size();
    }
    EXPECT_GT(found, 10000u);
}

/// What one look tells of a tag in units or in bytes; empty if that is not enough.
template <class AnyTag, class Text>
std::vector<Text> plainHrefs(Text page, const WebRules& web) {
    std::vector<Text> hrefs;
    const auto handle = [&](const AnyTag& tag) {
        if (tag.nameLength > 0) hrefs.push_back(detail::plainHref(tag));
        return false;
    };
    detail::scanTags(page, handle, web);
    return hrefs;
}

/// The readers of attributes find the same, and normalising leaves it as it is.
TEST(Links, AreToldByOneLookWhereTheyArePlain) {
    constexpr std::string_view Openings[] = {"<a href=\"",  "<A HREF=\"",       "<area hrEf=\"", "<a  href=\"",
                                             "<a\thref=\"", "<a data-href=\"",  "<a/href=\"",    "</a href=\"",
                                             "<a title=\"", "<!a href=\"",      "<\" a href=\"", "<a href='",
                                             "<a href=",    "<\xC3\xA9 href=\""};
    constexpr std::string_view Values[] = {"x",
                                           "a/b.html?c=d#e",
                                           "a path of more than sixteen units",
                                           "/of/more/than/sixteen/units/in/a/row/",
                                           "&amp;",
                                           "%20",
                                           "%2F",
                                           "\\",
                                           " ",
                                           "\n",
                                           "\x7F",
                                           "\xC3\xA9",
                                           "\xE6\x97\xA5",
                                           "<",
                                           "=",
                                           ">",
                                           "'"};
    constexpr std::string_view Closings[] = {"\">", "\" class=\"c\">text", "\" href=\"y\">", "'>", ">", ""};
    std::mt19937 random(23);
    std::size_t plain = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string page;
        for (unsigned tags = random() % 4; tags > 0; --tags) {
            page += Openings[random() % 2 ? random() % 3 : random() % std::size(Openings)];
            for (unsigned n = random() % 3; n > 0; --n)
                page += Values[random() % 2 ? random() % 4 : random() % std::size(Values)];
            page += Closings[random() % 2 ? random() % 2 : random() % std::size(Closings)];
        }
        const WebRules web = round % 4 ? WebRules() : WebRules::today();
        const String units = String::fromUTF8(page);
        std::vector<String> values;
        GetTagsOfString(
            units,
            [&](const Tag& tag) {
                if (tag.nameLength > 0) values.push_back(attributeOfTagCharacters(tag.whole(), "HREF", web));
                return false;
            },
            web);
        const auto ofUnits = plainHrefs<Tag>(units.view(), web);
        const auto ofBytes = plainHrefs<detail::ByteTag>(std::string_view(page), web);
        ASSERT_EQ(ofUnits.size(), values.size());
        ASSERT_EQ(ofBytes.size(), values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            ASSERT_EQ(utf8(ofUnits[i]), ofBytes[i]) << page;
            if (ofUnits[i].empty()) continue;
            ++plain;
            ASSERT_EQ(View(ofUnits[i]), values[i]) << page;
            ASSERT_EQ(normalizedStringURL(values[i], web), values[i]) << page;
        }
    }
    EXPECT_GT(plain, 2000u);
}

}  // namespace
}  // namespace velmo
