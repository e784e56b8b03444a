#include <velmocore/query/FuzzyAnalogy.h>

#include <cmath>
#include <random>

#include "TestSupport.h"
#include "query/FuzzyMeasure.h"

namespace velmo {
namespace {

TEST(FuzzyAnalogy, Measures) {
    const struct {
        std::u16string_view first, second;
        double expected;
    } cases[] = {
        {u"analogy", u"analogy", 1.0},
        {u"analogy", u"analogie", 6.0 / 8},
        {u"analogie", u"analogy", 6.0 / 8},
        {u"abc", u"xyz", 0.0},
        {u"", u"a", 0.0},
        {u"abcd", u"abdc", 4 * (1.0 - 2.0 / 4) / 4},
        {u"ab", u"ba", 2 * (1.0 - 1.0 / 2) / 2},  // a first hit is never displaced
        {u"a", u"ba", 1 * (1.0 - 0.0 / 2) / 2},
        {u"xab", u"aab", 2 * (1.0 - 0.0 / 3) / 3},  // of equal length, the first is the short side
        {u"aab", u"xab", 2 * (1.0 - 1.0 / 3) / 3},
        {u"A", u"a", 0.0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(stringMatchesUnixWildcardFuzzy(c.first, c.second), c.expected) << utf8(c.first) << utf8(c.second);
    EXPECT_TRUE(std::isnan(stringMatchesUnixWildcardFuzzy(u"", u"")));
    EXPECT_EQ(stringMatchesUnixWildcardFuzzyUsingUnicharTable(u"\u00C4b", u"aB", upperUmlautsCharsTable()), 1.0);
}

TEST(FuzzyAnalogy, LongAndShortMeasuresAgree) {
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        std::u16string longer(1 + random() % 30, u'a'), shorter(random() % (longer.size() + 1), u'a');
        for (char16_t& unit : longer) unit = static_cast<char16_t>(u'a' + random() % 5);
        for (char16_t& unit : shorter) unit = static_cast<char16_t>(u'a' + random() % 5);
        EXPECT_EQ(detail::fuzzyMeasure<detail::LookedUpPlaces>(longer, shorter),
                  detail::fuzzyMeasure<detail::ChainedPlaces>(longer, shorter))
            << utf8(longer) << ' ' << utf8(shorter);
    }
    const std::u16string longA(500'000, u'a'), longB(499'999, u'b');  // would take minutes one by one
    EXPECT_EQ(stringMatchesUnixWildcardFuzzy(longA, longB), 0.0);
    EXPECT_EQ(stringMatchesUnixWildcardFuzzy(longA + longB, longA + longB), 1.0);
}

TEST(FuzzyAnalogy, ThresholdIsKept) {
    EXPECT_EQ(minWildcardFuzzyAnalogy(), 0.75);
    setMinWildcardFuzzyAnalogy(0.5);
    EXPECT_EQ(MinWildcardFuzzyAnalogy.load(), 0.5);
    setMinWildcardFuzzyAnalogy(0.75);
}

}  // namespace
}  // namespace velmo
