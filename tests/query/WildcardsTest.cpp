#include <velmocore/query/Wildcards.h>

#include <algorithm>

#include <velmocore/words/Separators.h>

#include "TestSupport.h"

namespace velmo {
namespace {

using View = std::u16string_view;
using enum WildcardType;

TEST(Wildcards, Match) {
    const struct {
        View string, wildcard;
        bool plain, unix;
    } cases[] = {
        {u"", u"", true, true},
        {u"", u"*", true, true},
        {u"", u"**", true, true},
        {u"", u"?", false, false},
        {u"a", u"", false, false},
        {u"abc", u"abc", true, true},
        {u"abc", u"ab", false, false},
        {u"abc", u"a*", true, true},
        {u"abc", u"a*c*", true, true},
        {u"abab", u"*ab", true, true},
        {u"abc", u"*a?b*", false, false},
        {u"[a]", u"[a]", true, false},
        {u"a", u"[a]", false, true},
        {u"c", u"[a-c]", false, true},
        {u"b", u"[^a-c]", false, false},
        {u"|", u"[a|b]", false, false},
        {u"b", u"[^a", false, true},  // goes on behind the end
        {u"a", u"[^a", false, false},
        {u"b", u"[a", false, false},
        {u"a", u"[^", false, true},
        {u"a", u"[", false, false},
        {u"a]", u"a]", true, true},
        {u"x", u"[]", false, false},
        {u"x", u"[^]", false, true},
        {u"^", u"[^]", false, true},
        {u"\\", u"[-]]", false, true},  // the range is [ to ], and never ends
        {u"]", u"[-]", false, true},
        {u"\\", u"[|-a]", false, false},  // the range begins with |
        {u"B", u"[A-]x", false, true},    // B holds by A-], and the set runs on to the end
        {u"Ax", u"[A-]x", false, true},   // but A ends it at the first ]
        {u"A", u"[A-]x", false, false},
        {u"x", u"[A-]x", false, true},
        {u"AB", u"*[A-]*x", false, true},  // not by the first way through the star
        {u"AABx", u"*[A-]*x", false, true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(stringMatchesWildcard(c.string, c.wildcard), c.plain) << utf8(c.string) << " / " << utf8(c.wildcard);
        EXPECT_EQ(stringMatchesUnixWildcard(c.string, c.wildcard), c.unix)
            << utf8(c.string) << " / " << utf8(c.wildcard);
    }
    EXPECT_TRUE(stringMatchesWildcardUsingUnicharTable(u"aBc", u"A*C", upperCharsTable()));
    EXPECT_FALSE(stringMatchesWildcardUsingUnicharTable(u"aBc", u"a*c", upperCharsTable()));
    EXPECT_TRUE(stringMatchesUnixWildcardUsingUnicharTable(u"b", u"[A-C]", upperCharsTable()));
}

TEST(Wildcards, ManyStarsTakePatternTimesText) {
    const std::u16string text(10'000, u'a'), sets(2'000, u'a');
    EXPECT_FALSE(stringMatchesWildcard(text, u"*a*a*a*a*a*b"));
    EXPECT_FALSE(isCaseInsensitiveLikeUnixWildcard(text, u"*[a-c]*a*?*a*a*[^a]"));
    std::u16string odd;
    for (int i = 0; i < 400; ++i) odd += u"*[A-][a-]";
    EXPECT_FALSE(stringMatchesUnixWildcard(sets, odd + u"b"));
    const std::u16string stars(10'000, u'*');
    EXPECT_TRUE(stringMatchesUnixWildcard(text, stars));
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
    const struct {
        View wildcard, compacted;
        WildcardType type;
        Range core;
        std::uint64_t minCharacters = 1;
    } cases[] = {
        {u"", u"", Unusable, {0, 0}},
        {u"abc", u"abc", Plain, {0, 3}},
        {u"\u8000\uFFFF", u"\u8000\uFFFF", Plain, {0, 2}},
        {u"a?c", u"a?c", Marks, {0, 3}},
        {u"ab**", u"ab*", Prefix, {0, 2}},
        {u"**a", u"*a", Suffix, {1, 1}},
        {u"***a**", u"*a*", Infix, {1, 1}},
        {u"*a*b*", u"*a*b*", General, {0, 5}},
        {u"a*b", u"a*b", General, {0, 3}},
        {u"?a*", u"?a*", General, {0, 3}},
        {u"[a]*", u"[a]*", PrefixSets, {0, 3}},
        {u"*?[a]", u"*?[a]", SuffixSets, {1, 4}},
        {u"*[a]*", u"*[a]*", GeneralSets, {0, 5}},
        {u"[|a|b]", u"[ab]", Sets, {0, 4}},
        {u"[*?]x", u"[*?]x", Sets, {0, 5}},
        {u"x[]", u"x", Plain, {0, 1}},
        {u"x[^-|]*", u"x*", Prefix, {0, 1}},
        {u"*[]*x", u"**x", General, {0, 3}},
        {u"*[]*", u"**", Unusable, {0, 2}},
        {u"***", u"*", Unusable, {0, 1}},
        {u"???", u"???", Unusable, {0, 3}},
        {u"a]", u"a]", Unusable, Range::none()},
        {u"**[a", u"**[a", Unusable, Range::none()},
        {u"[a[b]", u"[a[b]", Unusable, Range::none()},
        {u"a*", u"a*", Unusable, {0, 2}, 2},
        {u"a", u"a", Plain, {0, 1}, 2},
        {u"a?", u"a?", Marks, {0, 2}, 2},
        {u"a[b]*", u"a[b]*", PrefixSets, {0, 4}, 2},
    };
    for (const auto& c : cases) {
        std::u16string wildcard(c.wildcard);
        const OptimizedWildcard optimized = optimizeWildcard(wildcard, c.minCharacters);
        EXPECT_EQ(wildcard, c.compacted) << utf8(c.wildcard);
        EXPECT_EQ(optimized.type, c.type) << utf8(c.wildcard);
        EXPECT_EQ(optimized.core, c.core) << utf8(c.wildcard);
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
    const struct {
        const ConversionTable *table, *conversion;
        bool expected;
    } cases[] = {
        {nullptr, &upperCharsTable(), false},
        {&upperCharsTable(), nullptr, false},
        {&upperCharsTable(), &upperCharsTable(), true},
        {&lowerCharsTable(), &lowerUmlautsCharsTable(), true},
        {&lowerCharsTable(), &upperUmlautsCharsTable(), false},
        {&upperCharsTable(), &upperUmlautsCharsTable(), true},
        {&upperCharsTable(), &lowerUmlautsCharsTable(), false},
        {&umlautsCharsTable(), &lowerUmlautsCharsTable(), true},
        {&umlautsCharsTable(), &upperUmlautsCharsTable(), true},
        {&upperUmlautsCharsTable(), &upperCharsTable(), false},
    };
    for (const auto& c : cases) EXPECT_EQ(isUnicharTablePartOfConversionTable(c.table, c.conversion), c.expected);
    // A search relies on it: what a comparison takes for the same is part of words or is not.
    for (const ConversionTable* table : {&upperCharsTable(), &umlautsCharsTable(), &upperUmlautsCharsTable()})
        for (unsigned unit = 0; unit < 65536; ++unit) {
            const auto c = static_cast<char16_t>(unit);
            EXPECT_EQ(alphaNumCharacterSetRep().contains(c), alphaNumCharacterSetRep().contains((*table)[c])) << unit;
        }
}

TEST(Wildcards, Separation) {
    EXPECT_EQ(wordsUsingWildcardSeparation(u"data* [a d]?x|y"), (std::vector<String>{u"data*", u"[a d]?x", u"y"}));
    EXPECT_FALSE(separatedWildcardWords(u"data* [a d]?x|y").hyphenated);
    EXPECT_TRUE(separatedWildcardWords(u"e-m?il").hyphenated);
    EXPECT_EQ(numberOfWordsUsingWildcardSeparation(u"[a b] c"), 2u);
    initSeparatorsAndTables();
    EXPECT_TRUE(defaultWildcardSeparators().contains(u'|'));
}

}  // namespace
}  // namespace velmo
