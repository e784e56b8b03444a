#include <velmocore/text/FastSearch.h>

#include <map>
#include <random>
#include <vector>

#include "TestSupport.h"
#include "text/UnitFold.h"

namespace velmo {
namespace {

using View = std::u16string_view;

/// Start by start and unit by unit.
template <class Unit, class Fold>
std::uint64_t slowSearch(View text, std::basic_string_view<Unit> pattern, const Fold& fold) {
    if (pattern.empty()) return NotFound;
    for (std::size_t start = 0; start + pattern.size() <= text.size(); ++start) {
        std::size_t i = 0;
        while (i < pattern.size() && fold(text[start + i]) == fold(detail::widened(pattern[i]))) ++i;
        if (i == pattern.size()) return start;
    }
    return NotFound;
}

TEST(FastSearch, TheLastStartIsNotTriedByOneOfThem) {
    const struct {
        View text, pattern;
        std::uint64_t odd, others;
    } cases[] = {
        {u"abc", u"abc", NotFound, 0},  {u"abcd", u"bcd", NotFound, 1},
        {u"abcd", u"bc", 1, 1},         {u"abc", u"", NotFound, NotFound},
        {u"", u"", NotFound, NotFound}, {u"ab", u"abc", NotFound, NotFound},
        {u"abab", u"ab", 0, 0},         {u"xxab", u"ab", NotFound, 2},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(fastContainsUnichars(c.text, c.pattern), c.odd) << utf8(c.text);
        EXPECT_EQ(fastUnicharsContainChars(c.text, utf8(c.pattern)), c.others);
        EXPECT_EQ(fastCaseInsensitiveContainsUnichars(c.text, c.pattern), c.others);
        EXPECT_EQ(positionOfCharacters(utf8(c.pattern), c.text, Case::Insensitive), c.others);
    }
}

TEST(FastSearch, AgreesWithTheSlowSearch) {
    std::mt19937 random(4);
    const View alphabet = u"aAiIsSkK\u0131\u017F\u212A\u00E4\u00C4\u03C3\u03C2\u03A3-";
    const auto make = [&](std::size_t length) {
        std::u16string text;
        while (text.size() < length) text += alphabet[random() % alphabet.size()];
        return text;
    };
    for (int round = 0; round < 30000; ++round) {
        const std::u16string text = make(random() % 40);
        std::u16string pattern = make(random() % 5);
        if (!text.empty() && random() % 2) pattern = text.substr(random() % text.size(), random() % 6);
        const std::uint64_t exact = slowSearch(text, View(pattern), detail::NoFold{});
        const bool atEnd = exact != NotFound && exact + pattern.size() == text.size();
        ASSERT_EQ(fastContainsUnichars(text, pattern), atEnd ? NotFound : exact);
        ASSERT_EQ(fastCaseInsensitiveContainsUnichars(text, pattern),
                  slowSearch(text, View(pattern), detail::UpperFold{}));
        std::string bytes;
        for (char16_t unit : pattern) bytes += static_cast<char>(unit);
        ASSERT_EQ(fastUnicharsContainChars(text, bytes), slowSearch(text, std::string_view(bytes), detail::NoFold{}));
        ASSERT_EQ(fastCaseInsensitiveUnicharsContainChars(text, bytes),
                  slowSearch(text, std::string_view(bytes), detail::UpperFold{}));
    }
}

TEST(FastSearch, EveryCaseVariantOfAUnitIsFound) {
    const detail::UpperFold upper;
    std::map<char16_t, std::u16string> variants;
    for (unsigned unit = 0; unit < 65536; ++unit)
        variants[upper(static_cast<char16_t>(unit))] += static_cast<char16_t>(unit);
    for (const auto& [folded, units] : variants)
        for (char16_t sought : units)
            for (char16_t unit : units)
                ASSERT_EQ(fastCaseInsensitiveContainsUnichars(std::u16string{u'\u4E01', unit}, View(&sought, 1)),
                          sought == u'\u4E01' ? 0u : 1u);
}

TEST(FastSearch, KeywordLists) {
    const std::vector<std::string_view> keywords = {"", "doubleclick.net", "/ads/", "\xE9", "q"};
    const ConversionTable* lower = &lowerCharsTable();
    const std::u16string pad(2000, u'x');
    const struct {
        View text;
        bool exact, lowered;
    } cases[] = {
        {u"", false, false},
        {u"http://ad.doubleclick.net", true, true},
        {u"http://ad.DoubleClick.NET/x", false, true},
        {u"doubleclick.ne", false, false},
        {u"doubleclick,net", false, false},
        {u"/ads/", true, true},
        {u"Q", false, true},
        {u"\u00E9", false, false},  // bytes above 127 are no Latin-1 units
        {u"\uFFE9", true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(utf8(c.text));
        EXPECT_EQ(fastContainsSubCStrings(c.text, keywords, nullptr), c.exact);
        EXPECT_EQ(fastContainsSubCStrings(c.text, keywords, lower), c.lowered);
        const std::u16string longer = pad + std::u16string(c.text) + pad;
        EXPECT_EQ(fastContainsSubCStrings(longer, keywords, nullptr), c.exact);
        EXPECT_EQ(fastContainsSubCStrings(longer, keywords, lower), c.lowered);
    }
    EXPECT_FALSE(fastContainsSubCStrings(u"abc", {}, nullptr));
}

TEST(FastSearch, KeywordListsAgreeWithSingleSearches) {
    std::mt19937 random(5);
    const auto word = [&](std::size_t most) {
        std::string text;
        for (std::size_t n = random() % (most + 1); n > 0; --n) text += static_cast<char>('a' + random() % 4);
        return text;
    };
    for (int round = 0; round < 5000; ++round) {
        const String text = String::fromUTF8(word(30));
        std::vector<std::string> words;
        for (int i = 0; i < 3; ++i) words.push_back(word(7));
        const std::vector<std::string_view> keywords(words.begin(), words.end());
        bool expected = false;
        for (const auto& keyword : keywords) expected |= slowSearch(text, keyword, detail::NoFold{}) != NotFound;
        ASSERT_EQ(fastContainsSubCStrings(text, keywords, nullptr), expected) << text;
    }
}

}  // namespace
}  // namespace velmo
