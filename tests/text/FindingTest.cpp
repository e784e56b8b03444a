#include <velmocore/text/Finding.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Finding, Substrings) {
    const std::tuple<View, View, std::size_t, std::size_t> cases[] = {
        {u"aaaa", u"aa", 2, 2},
        {u"aAaA", u"aa", 0, 2},
        {u"abc", u"abc", 1, 1},
        {u"abc", u"ABC", 0, 1},
        {u"abc", u"abcd", 0, 0},
        {u"abc", u"", 0, 0},
        {u"", u"", 0, 0},
        {View(), u"a", 0, 0},
        {u"\u03A3\u03C3\u03C2", u"\u03C3", 1, 3},
        {u"300 \u212A", u"k", 0, 1},
        {u"stra\u00DFe", u"SS", 0, 0},
    };
    for (const auto& [text, sought, exact, noCase] : cases) {
        SCOPED_TRACE(utf8(text));
        EXPECT_EQ(countSubstring(text, sought), exact);
        EXPECT_EQ(countSubstring(text, sought, Case::Insensitive), noCase);
        EXPECT_EQ(containsSubstring(text, sought), exact > 0);
        EXPECT_EQ(containsSubstring(text, sought, Case::Insensitive), noCase > 0);
    }
    const Strings several = {u"x", String(), u"Two"};
    EXPECT_TRUE(containsSubstrings(u"one Two", several));
    EXPECT_FALSE(containsSubstrings(u"one two", several));
    EXPECT_TRUE(containsSubstrings(u"one two", several, Case::Insensitive));
    const std::vector<std::string_view> keywords = {"two", "Three"};
    EXPECT_TRUE(containsSubCStrings(u"a Three", keywords));
    EXPECT_FALSE(containsSubCStrings(u"a Three", keywords, Case::Insensitive));  // the list is not in lower case
    EXPECT_TRUE(containsSubCStrings(u"a TWO", keywords, Case::Insensitive));
}

/// The occurrences that do not overlap, from the left or from the right.
std::vector<std::size_t> slowOccurrences(View text, View sought, bool forward) {
    std::vector<std::size_t> hits;
    std::size_t end = text.size();
    for (std::size_t step = 0; step < text.size(); ++step) {
        const std::size_t i = forward ? step : text.size() - 1 - step;
        if (i + sought.size() > end || !text.substr(i).starts_with(sought)) continue;
        if (forward && !hits.empty() && i < hits.back() + sought.size()) continue;
        hits.push_back(i);
        if (!forward) end = i;
    }
    return hits;
}

// Runs and periods, in which a search by a few units of the pattern has many candidates.
TEST(Finding, TextsThatRepeatThemselves) {
    std::mt19937 random(9);
    std::size_t found = 0;
    for (int round = 0; round < 400; ++round) {
        std::u16string text, period;
        while (text.size() < 3000 + random() % 9000) {
            period.assign(1 + random() % 4, u'\u0430');
            if (random() % 3 == 0) period.back() = u"b\u0431\u4E00x"[random() % 4];
            for (unsigned times = random() % 300; times > 0; --times) text += period;
        }
        std::u16string sought = text.substr(random() % text.size(), 1 + random() % (round % 2 ? 400 : 9));
        if (random() % 2) sought[random() % sought.size()] = random() % 2 ? u'b' : u'\u0430';
        std::u16string upper = text;
        for (char16_t& unit : upper)
            if (random() % 2) unit = toUpper(unit);
        const auto hits = slowOccurrences(text, sought, true);
        found += hits.size();
        ASSERT_EQ(countSubstring(text, sought), hits.size());
        ASSERT_EQ(countSubstring(upper, sought, Case::Insensitive), hits.size());
        const Range first = findString(text, sought, {0, 0}),
                    last = findString(upper, sought, {text.size(), 0},
                                      {.letterCase = Case::Insensitive, .direction = Direction::Backward});
        const auto back = slowOccurrences(text, sought, false);
        ASSERT_EQ(first.location, hits.empty() ? NotFound : hits.front());
        ASSERT_EQ(last.location, back.empty() ? NotFound : back.front());
    }
    EXPECT_GT(found, 1000u);
}

TEST(Finding, FromASelection) {
    const View text = u"ab AB ab ab";
    const std::tuple<Range, FindOptions, Range> cases[] = {
        {{0, 0}, {}, {0, 2}},
        {{0, 2}, {}, {6, 2}},
        {{0, 2}, {.letterCase = Case::Insensitive}, {3, 2}},
        {{9, 2}, {}, Range::none()},
        {{9, 2}, {.wrap = true}, {0, 2}},
        {{7, 0}, {}, {9, 2}},  // an occurrence that overlaps does not count
        {{0, 11}, {.wrap = true}, Range::none()},
        {{9, 2}, {.direction = Direction::Backward}, {6, 2}},
        {{6, 2}, {.letterCase = Case::Insensitive, .direction = Direction::Backward}, {3, 2}},
        {{0, 2}, {.direction = Direction::Backward}, Range::none()},
        {{0, 2}, {.direction = Direction::Backward, .wrap = true}, {9, 2}},
        {{99, 9}, {}, Range::none()},
        {{99, 9}, {.direction = Direction::Backward}, {9, 2}},
        {Range::none(), {.wrap = true}, {0, 2}},
    };
    for (const auto& [selection, options, expected] : cases)
        EXPECT_EQ(findString(text, u"ab", selection, options), expected)
            << selection.location << ' ' << int(options.direction) << options.wrap;
    EXPECT_EQ(findString(text, u"", {0, 0}), Range::none());
    EXPECT_EQ(findString(text, View(), {0, 0}, {.direction = Direction::Backward, .wrap = true}), Range::none());
}

TEST(Finding, InArrays) {
    const Strings array = {u"", String(), u"one", u"ONE", u"\u00C9t\u00E9"};
    EXPECT_EQ(indexOfStringEqualTo(array, u"ONE"), 3u);
    EXPECT_EQ(indexOfStringEqualToNoCase(array, u"ONE"), 2u);
    EXPECT_EQ(indexOfStringEqualToNoCase(array, u"\u00E9T\u00C9"), 4u);
    EXPECT_EQ(indexOfStringEqualTo(array, u""), NotFound);
    EXPECT_EQ(indexOfStringEqualTo({}, u"one"), NotFound);
    EXPECT_FALSE(containsString(array, u"One"));
    EXPECT_TRUE(containsStringNoCase(array, u"One"));
}

TEST(Finding, EqualThroughATable) {
    EXPECT_TRUE(equalStringsUsingConversionTable(u"", String(), nullptr));
    EXPECT_TRUE(equalStringsUsingConversionTable(u"\u00C4b", u"aB", &lowerUmlautsCharsTable()));
    EXPECT_FALSE(equalStringsUsingConversionTable(u"ab", u"aB", nullptr));
    EXPECT_FALSE(equalStringsUsingConversionTable(u"ab", u"abc", &lowerUmlautsCharsTable()));
}

}  // namespace
}  // namespace velmo
