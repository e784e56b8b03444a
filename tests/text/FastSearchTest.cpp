#include <velmocore/text/FastSearch.h>

#include <map>

#include "TestSupport.h"
#include "text/UnitFold.h"

namespace velmo {
namespace {

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

TEST(FastSearch, AgreesWithTheSlowSearch) {
    std::mt19937 random(4);
    const View alphabet = u"aAiIsSkK\u0131\u017F\u212A\u00E4\u00C4\u03C3\u03C2\u03A3-";
    for (int round = 0; round < 30000; ++round) {
        const std::u16string text = test::randomText(random, alphabet, random() % 40);
        std::u16string pattern = test::randomText(random, alphabet, random() % 5);
        if (!text.empty() && random() % 2) pattern = text.substr(random() % text.size(), random() % 6);
        const std::uint64_t exact = slowSearch(text, View(pattern), detail::NoFold{});
        const bool atEnd = exact != NotFound && exact + pattern.size() == text.size();
        ASSERT_EQ(fastContainsUnichars(text, pattern), atEnd ? NotFound : exact);
        ASSERT_EQ(fastCaseInsensitiveContainsUnichars(text, pattern),
                  slowSearch(text, View(pattern), detail::UpperFold{}));
        std::string bytes;
        for (char16_t unit : pattern) bytes += static_cast<char>(unit);
        ASSERT_EQ(fastUnicharsContainChars(text, bytes), slowSearch(text, std::string_view(bytes), detail::NoFold{}));
        const std::uint64_t folded = slowSearch(text, std::string_view(bytes), detail::UpperFold{});
        ASSERT_EQ(fastCaseInsensitiveUnicharsContainChars(text, bytes), folded);
        ASSERT_EQ(positionOfCharacters(bytes, text, Case::Insensitive), folded);
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
    const std::tuple<View, bool, bool> cases[] = {
        {u"http://ad.DoubleClick.NET/x", false, true},
        {u"doubleclick,net", false, false},
        {u"Q", false, true},
        {u"\u00E9", false, false},  // bytes above 127 are no Latin-1 units
        {u"\uFFE9", true, true},
    };
    for (const auto& [text, exact, lowered] : cases) {
        SCOPED_TRACE(utf8(text));
        EXPECT_EQ(fastContainsSubCStrings(text, keywords, nullptr), exact);
        EXPECT_EQ(fastContainsSubCStrings(text, keywords, lower), lowered);
        const std::u16string longer = pad + std::u16string(text) + pad;
        EXPECT_EQ(fastContainsSubCStrings(longer, keywords, nullptr), exact);
        EXPECT_EQ(fastContainsSubCStrings(longer, keywords, lower), lowered);
    }
    EXPECT_FALSE(fastContainsSubCStrings(u"abc", {}, nullptr));
}

TEST(FastSearch, KeywordListsAgreeWithSingleSearches) {
    std::mt19937 random(5);
    const auto word = [&](std::size_t most) { return utf8(test::randomText(random, u"abcd", random() % (most + 1))); };
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
