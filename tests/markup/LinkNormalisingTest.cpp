#include <velmocore/markup/LinkNormalising.h>

#include <velmocore/markup/Entities.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/url/PercentEscapes.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(LinkNormalising, CleansReferences) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u" \t\r\n", nullptr},
        {u"\uFEFF\u2028a\tb\n ", u"ab"},
        {u"\u00A0a\u3000", u"a"},
        {u"\\\"http://x\\\"", u"http://x"},
        {u"a\\b", u"a/b"},
        {u"a\\b?c\\d", u"a\\b?c\\d"},
        {u"a&eacute;&nbsp;b", u"a&eacute;\u00A0b"},
        {u"'x'", u"'x'"},
        {u"x%20%09%0A%0d%22%27%3E%5c%5D", u"x"},
        {u"x%21%20", u"x%21"},
        {u"\" x \"", u" x "},
    };
    for (const auto& [value, link] : cases) { EXPECT_EQ(normalizedStringURL(value), String(link)) << String(value); }
    EXPECT_TRUE(normalizedStringURL({}).isAbsent());
    EXPECT_EQ(normalizedStringURL(u"a%2Fb%41", true), u"a/b%41");
    EXPECT_EQ(normalizedStringURL(u"%20%20a", true), u"a");
    EXPECT_TRUE(normalizedStringURL(u"%20%26%20", true) == u"&");
    EXPECT_EQ(normalizedStringURL(std::u16string(300, u'x') + u"%41\n"), std::u16string(300, u'x') + u"%41");
}

/// Step by step, with a new string for each.
String normalizedSlowly(std::u16string_view value, bool decode) {
    std::u16string s;
    for (char16_t unit : value)
        if (unit != u'\t' && !isFeedUnit(unit)) s += unit;
    const auto isWhite = [](char16_t unit) { return whiteCharacterSetRep().contains(unit); };
    if (std::all_of(s.begin(), s.end(), isWhite)) return {};
    if (s.find(u'\\') != s.npos) {
        const bool query = s.find(u'?') != s.npos;
        while (s.size() >= 4 && s.starts_with(u"\\\"") && s.ends_with(u"\\\"")) s = s.substr(2, s.size() - 4);
        if (!query) std::replace(s.begin(), s.end(), u'\\', u'/');
    }
    if (s.size() >= 4)
        s.resize(convertEntities2Characters(s.data(), s.data(), 0, s.size(), {.onlyNumericEntities = true}));
    while (s.size() >= 3 && s[s.size() - 3] == u'%') {
        const String byte = stringByReplacingASCIIPercentEscapesOfURL(s.substr(s.size() - 3));
        if (byte.length() != 1 || std::u16string_view(u"\t\n\r \"'>\\]").find(byte[0]) == s.npos) break;
        s.resize(s.size() - 3);
    }
    if (decode) s = stringByReplacingStandardPercentEscapesOfURL(s).view();
    while (!s.empty() && isWhite(s.back())) s.pop_back();
    while (!s.empty() && isWhite(s.front())) s.erase(0, 1);
    while (s.size() >= 2 && s.front() == u'"' && s.back() == u'"') s = s.substr(1, s.size() - 2);
    return s.empty() ? String() : String(s);
}

TEST(LinkNormalising, AgreesWithTheSlowReading) {
    std::mt19937 random(11);
    const char16_t* pieces[] = {
        u"a",   u"http://", u"/",   u"\\\"", u"\"", u"\\",     u"?",      u" ", u"\n",   u"&amp;",
        u"&#3", u"%20",     u"%5d", u"%41",  u"%",  u"\u3000", u"\u00E4", u"&", u"&#9;", u"abcdefghijklmnop"};
    for (int round = 0; round < 50000; ++round) {
        std::u16string value;
        for (unsigned n = random() % (round % 100 ? 10 : 90); n > 0; --n) value += pieces[random() % std::size(pieces)];
        const bool decode = round & 1;
        const String link = normalizedStringURL(value, decode);
        ASSERT_EQ(link, normalizedSlowly(value, decode)) << String(value) << decode;
        ASSERT_LE(link.length(), value.size());
    }
}

TEST(LinkNormalising, LinkTagsCountFromTheRoot) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {{u"a.ico", u"/a.ico"}, {u"/a.ico", u"/a.ico"},
                                                                 {u"./a", u"./a"},      {u"http://h", u"http://h"},
                                                                 {u" ", nullptr},       {u"data:x", u"/data:x"}};
    for (const auto& [value, link] : cases) EXPECT_EQ(normalizedRelLink(value), String(link)) << String(value);
    EXPECT_EQ(normalizedHtmlString(u" a &eacute;&#32; "), u"a \u00E9");
    EXPECT_TRUE(normalizedHtmlString(String()).isAbsent());
}

TEST(LinkNormalising, RevisitValues) {
    const std::pair<const char16_t*, double> cases[] = {
        {u"7 days", 604800},
        {u"1 Week", 604800},
        {u"1.5 hours", 5400},
        {u"+2 DAY", 172800},
        {u" 30", 30},
        {u"day", 0},
        {u"-3 days", 0},
        {u"0 weeks", 0},
        {u"1e2", 100},
        {u"nan", 0},
        {u"inf days", 0},
        {u"", 0},
        {u"12 hours a day", 43200},
        {u"3days", 259200},
    };
    for (const auto& [value, seconds] : cases) EXPECT_EQ(revisitAfter(value), seconds) << String(value);
}

}  // namespace
}  // namespace velmo
