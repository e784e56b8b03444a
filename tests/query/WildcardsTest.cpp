#include <velmocore/query/Wildcards.h>

#include <velmocore/words/Separators.h>

#include "TestSupport.h"

namespace velmo {
namespace {

using enum WildcardType;

TEST(Wildcards, Match) {
    const std::tuple<View, View, bool, bool> cases[] = {
        {u"", u"", true, true},           {u"", u"?", false, false},
        {u"abab", u"*ab", true, true},    {u"[a]", u"[a]", true, false},
        {u"b", u"[^a-c]", false, false},  {u"b", u"[^a", false, true},    // goes on behind the end
        {u"x", u"[^]", false, true},      {u"\\", u"[-]]", false, true},  // the range is [ to ], and never ends
        {u"\\", u"[|-a]", false, false},                                  // the range begins with |
        {u"B", u"[A-]x", false, true},     // B holds by A-], and the set runs on to the end
        {u"AB", u"*[A-]*x", false, true},  // not by the first way through the star
    };
    for (const auto& [string, wildcard, plain, unix] : cases) {
        EXPECT_EQ(stringMatchesWildcard(string, wildcard), plain) << utf8(string) << " / " << utf8(wildcard);
        EXPECT_EQ(stringMatchesUnixWildcard(string, wildcard), unix) << utf8(string) << " / " << utf8(wildcard);
    }
    EXPECT_TRUE(stringMatchesWildcardUsingUnicharTable(u"aBc", u"A*C", upperCharsTable()));
    EXPECT_FALSE(stringMatchesWildcardUsingUnicharTable(u"aBc", u"a*c", upperCharsTable()));
    EXPECT_TRUE(stringMatchesUnixWildcardUsingUnicharTable(u"b", u"[A-C]", upperCharsTable()));
}

TEST(Wildcards, ManyStarsTakePatternTimesText) {
    const std::u16string text(10'000, u'a'), sets(2'000, u'a');
    EXPECT_FALSE(stringMatchesWildcard(text, u"*a*a*a*a*a*b"));
    EXPECT_FALSE(isCaseInsensitiveLikeUnixWildcard(text, u"*[a-c]*a*?*a*a*[^a]"));
    EXPECT_FALSE(stringMatchesUnixWildcard(sets, test::repeated(u"*[A-][a-]", 400) + u"b"));
    EXPECT_TRUE(stringMatchesUnixWildcard(text, std::u16string(10'000, u'*')));
}

TEST(Wildcards, LikeRefusesWhatIsEmpty) {
    EXPECT_TRUE(isLikeWildcard(u"abc", u"*"));
    EXPECT_FALSE(isLikeWildcard(u"", u"*"));
    EXPECT_FALSE(isLikeUnixWildcard(u"abc", u""));
    EXPECT_FALSE(isLikeWildcard(u"DATA", u"d*"));
    EXPECT_TRUE(isCaseInsensitiveLikeWildcard(u"DATA", u"d*"));
    EXPECT_TRUE(isCaseInsensitiveLikeUnixWildcard(u"\u00C4", u"[\u00E4]"));
    const std::u16string longer = std::u16string(300, u'x') + u"*";
    EXPECT_TRUE(isCaseInsensitiveLikeWildcard(std::u16string(400, u'X'), longer));
}

TEST(Wildcards, Optimize) {
    const std::tuple<View, View, WildcardType, Range, std::uint64_t> cases[] = {
        {u"\u8000\uFFFF", u"\u8000\uFFFF", Plain, {0, 2}, 1},
        {u"a?c", u"a?c", Marks, {0, 3}, 1},
        {u"***a**", u"*a*", Infix, {1, 1}, 1},
        {u"?a*", u"?a*", General, {0, 3}, 1},
        {u"*?[a]", u"*?[a]", SuffixSets, {1, 4}, 1},
        {u"[|a|b]", u"[ab]", Sets, {0, 4}, 1},
        {u"x[^-|]*", u"x*", Prefix, {0, 1}, 1},
        {u"*[]*x", u"**x", General, {0, 3}, 1},
        {u"**[a", u"**[a", Unusable, Range::none(), 1},
        {u"a*", u"a*", Unusable, {0, 2}, 2},
        {u"a[b]*", u"a[b]*", PrefixSets, {0, 4}, 2},
    };
    for (const auto& [given, compacted, type, core, minCharacters] : cases) {
        std::u16string wildcard(given);
        const OptimizedWildcard optimized = optimizeWildcard(wildcard, minCharacters);
        EXPECT_EQ(wildcard, compacted) << utf8(given);
        EXPECT_EQ(optimized.type, type) << utf8(given);
        EXPECT_EQ(optimized.core, core) << utf8(given);
    }
    EXPECT_EQ(wildcardType(u""), Plain);
    EXPECT_EQ(wildcardType(u"**a"), Suffix);
}

TEST(Wildcards, Lengths) {
    EXPECT_EQ(minWildcardLen(u"a[bc]*d?"), 4u);
    EXPECT_EQ(maxWildcardLen(u"ab?"), 3u);
    EXPECT_EQ(maxWildcardLen(u"ab*"), UnboundedWildcardLength);
    EXPECT_EQ(wildcardLength(u"a*[bc"), 2u);
}

TEST(Wildcards, Tables) {
    using enum WildcardComparison;
    EXPECT_EQ(unicharTableForWildcardComparison(Exact | Fuzzy), nullptr);
    EXPECT_EQ(unicharTableForWildcardComparison(CaseInsensitive), &upperCharsTable());
    EXPECT_EQ(unicharTableForWildcardComparison(DiacriticsInsensitive | Fuzzy), &umlautsCharsTable());
    EXPECT_EQ(unicharTableForWildcardComparison(Insensitive), &upperUmlautsCharsTable());
    const std::tuple<const ConversionTable*, const ConversionTable*, bool> cases[] = {
        {nullptr, &upperCharsTable(), false},
        {&upperCharsTable(), &upperCharsTable(), true},
        {&lowerCharsTable(), &lowerUmlautsCharsTable(), true},
        {&lowerCharsTable(), &upperUmlautsCharsTable(), false},
        {&upperCharsTable(), &upperUmlautsCharsTable(), true},
        {&upperCharsTable(), &lowerUmlautsCharsTable(), false},
        {&umlautsCharsTable(), &lowerUmlautsCharsTable(), true},
        {&umlautsCharsTable(), &upperUmlautsCharsTable(), true},
        {&upperUmlautsCharsTable(), &upperCharsTable(), false},
    };
    for (const auto& [table, conversion, expected] : cases)
        EXPECT_EQ(isUnicharTablePartOfConversionTable(table, conversion), expected);
    // A search relies on it: what a comparison takes for the same is part of words or is not.
    for (const ConversionTable* table : {&upperCharsTable(), &umlautsCharsTable(), &upperUmlautsCharsTable()})
        for (unsigned unit = 0; unit < 65536; ++unit) {
            const auto c = static_cast<char16_t>(unit);
            EXPECT_EQ(alphaNumCharacterSetRep().contains(c), alphaNumCharacterSetRep().contains((*table)[c])) << unit;
        }
}

TEST(Wildcards, Separation) {
    EXPECT_EQ(wordsUsingWildcardSeparation(u"data* [a d]?x|y"), (Strings{u"data*", u"[a d]?x", u"y"}));
    EXPECT_FALSE(separatedWildcardWords(u"data* [a d]?x|y").hyphenated);
    EXPECT_TRUE(separatedWildcardWords(u"e-m?il").hyphenated);
    EXPECT_EQ(numberOfWordsUsingWildcardSeparation(u"[a b] c"), 2u);
    initSeparatorsAndTables();
    EXPECT_TRUE(defaultWildcardSeparators().contains(u'|'));
}

}  // namespace
}  // namespace velmo
