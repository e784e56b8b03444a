#include <velmocore/query/FuzzyAnalogy.h>

#include <cmath>

#include "TestSupport.h"
#include "query/FuzzyMeasure.h"

namespace velmo {
namespace {

TEST(FuzzyAnalogy, Measures) {
    const std::tuple<View, View, double> cases[] = {
        {u"analogy", u"analogie", 6.0 / 8},        {u"abcd", u"abdc", 4 * (1.0 - 2.0 / 4) / 4},
        {u"ab", u"ba", 2 * (1.0 - 1.0 / 2) / 2},    // a first hit is never displaced
        {u"xab", u"aab", 2 * (1.0 - 0.0 / 3) / 3},  // of equal length, the first is the short side
        {u"aab", u"xab", 2 * (1.0 - 1.0 / 3) / 3},
    };
    for (const auto& [first, second, expected] : cases)
        EXPECT_EQ(stringMatchesUnixWildcardFuzzy(first, second), expected) << utf8(first) << utf8(second);
    EXPECT_TRUE(std::isnan(stringMatchesUnixWildcardFuzzy(u"", u"")));
    EXPECT_EQ(stringMatchesUnixWildcardFuzzyUsingUnicharTable(u"\u00C4b", u"aB", upperUmlautsCharsTable()), 1.0);
}

TEST(FuzzyAnalogy, LongAndShortMeasuresAgree) {
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        const std::u16string longer = test::randomText(random, u"abcde", 1 + random() % 30);
        const std::u16string shorter = test::randomText(random, u"abcde", random() % (longer.size() + 1));
        EXPECT_EQ(detail::fuzzyMeasure<detail::LookedUpPlaces>(longer, shorter),
                  detail::fuzzyMeasure<detail::ChainedPlaces>(longer, shorter))
            << utf8(longer) << ' ' << utf8(shorter);
    }
    const std::u16string longA(500'000, u'a'), longB(499'999, u'b');  // would take minutes one by one
    EXPECT_EQ(stringMatchesUnixWildcardFuzzy(longA, longB), 0.0);
    EXPECT_EQ(stringMatchesUnixWildcardFuzzy(longA + longB, longA + longB), 1.0);
}

}  // namespace
}  // namespace velmo
