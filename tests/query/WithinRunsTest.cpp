// Terms of scripts without spaces, with the option withinRuns. What random texts show is in the
// reference tests; here are the scripts, and what the option leaves as it is.
#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryDiagnosis.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/query/WildcardSearch.h>
#include <velmocore/query/WordSearch.h>

#include "TestSupport.h"
#include "words/UnspacedScripts.h"

namespace velmo {
namespace {

TEST(WithinRuns, TermsAreFoundInAllScripts) {
    struct Case {
        View query, text;
        bool holds, holdsWithout = false;
    };
    const Case cases[] = {
        {u"\u6771\u4EAC", u"\u79C1\u306F\u6771\u4EAC\u3078\u884C\u304F\u3002", true},  // Han in Kana
        {u"\u30AB\u30E1\u30E9", u"\u65B0\u30AB\u30E1\u30E9\u3067", true},              // Katakana
        {u"\uFF76\uFF92\uFF97", u"\u65B0\uFF76\uFF92\uFF97\u3067", true},              // of half width
        {u"\uFF76", u"\uFF76\uFF9E", false},                                           // its sound mark
        {u"iPhone", u"\u4F7F\u7528iPhone\u624B\u6A5F", true},
        {u"phone", u"\u4F7F\u7528iPhone\u624B\u6A5F", false},
        {u"\u0E17\u0E14\u0E2A\u0E2D\u0E1A", u"\u0E01\u0E32\u0E23\u0E17\u0E14\u0E2A\u0E2D\u0E1A\u0E19\u0E35\u0E49",
         true},
        {u"\u0E17\u0E35", u"\u0E17\u0E35\u0E48", false},  // a tone mark follows
        {u"\u0E9E\u0EB2\u0EAA\u0EB2", u"\u0E9E\u0EB2\u0EAA\u0EB2\u0EA5\u0EB2\u0EA7", true},
        {u"\u1797\u17B6\u179F\u17B6", u"\u1797\u17B6\u179F\u17B6\u1781\u17D2\u1798\u17C2\u179A", true},
        {u"\u1781", u"\u1781\u17D2\u1798\u17C2\u179A", false},  // goes on below
        {u"\u1019\u103C\u1014\u103A", u"\u1019\u103C\u1014\u103A\u1019\u102C\u1005\u102C", true},
        {u"\U00020BB7\u91CE", u"\u53CB\U00020BB7\u91CE\u5BB6", true},
        {u"\u6771 NEAR/1 \u90FD", u"\u6771\u4EAC\u90FD", false, false},
        {u"\u6771 NEAR/2 \u90FD", u"\u6771\u4EAC\u90FD", true},
        {u"\u90FD AFTER/1 \u6771", u"\u6771\u90FD", true},
        {u"-\u6771", u"\u4EAC\u6771\u90FD", false, true},
        {u"cafe\u0301", u"a cafe\u0301 b", true, true},
        {u"caf", u"caf\u00E9", false},
    };
    for (const auto& [query, text, holds, holdsWithout] : cases)
        for (const bool wildcard : {false, true}) {
            const QueryTerms terms(query, {.wildcard = wildcard, .withinRuns = true});
            EXPECT_EQ(terms.matchesString(text), holds) << utf8(query) << " in " << utf8(text);
            EXPECT_EQ(QueryTerms(query, {.wildcard = wildcard}).matchesString(text), holdsWithout) << utf8(query);
            EXPECT_TRUE(problemsOfQuery(query, {.wildcard = wildcard, .withinRuns = true}).empty()) << utf8(query);
        }
    const Strings phrase = {u"\u6771", u"\u4EAC"};
    EXPECT_EQ(FindNonExactPhraseInString(u"a\u6771\u4EAC.", {0, 4}, phrase, {.exact = true, .withinRuns = true}),
              (Range{1, 2}));
    EXPECT_FALSE(FindNonExactPhraseInString(u"a\u6771\u4EAC.", {0, 4}, phrase, {}).isFound());
}

TEST(WithinRuns, PatternsFindTheShortestThatEndsFirst) {
    const std::tuple<String, String, Range> cases[] = {
        {u"\u6771*", u"\u5728\u6771\u4EAC", {1, 1}},
        {u"*\u4EAC", u"\u5728\u6771\u4EAC", {2, 1}},
        {u"\u6771*\u90FD", u"\u6771\u6771\u4EAC\u90FD\u90FD", {1, 3}},
        {u"\u6771*\u90FD", u"\u6771\u3001\u90FD", Range::none()},
        {u"[\u6771\u897F]\u4EAC", u"\u5728\u897F\u4EAC", {1, 2}},
        {u"iP*", u"\u7528iPhone\u624B", {1, 6}},
        {u"\u7528i*", u"\u4F7F\u7528iPhone\u624B", {1, 7}},
        {u"?\u91CE", u"\U00020BB7\u91CE", Range::none()},
        {u"\u6771 \u90FD", u"\u6771\u90FD", {0, 2}},
        {u"\u6771\U00020BB7", u"\u6771\u3001\U00020BB7\u6771\U00020BB7", {4, 3}},
    };
    for (const auto& [wildcard, text, expected] : cases)
        EXPECT_EQ(rangeOfWildcard(text, wildcard, {.withinRuns = true}), expected) << wildcard << " in " << text;
}

TEST(WithinRuns, ExcerptsEndWithTheSentencesOfTheScript) {
    const String text =
        u"\u524D\u6587\u3002\u300C\u6771\u4EAC\u3078\u300D\u884C\u304F\uFF01\u6B21\u306E\u6587!\u7D42\u308F\u308A";
    const std::pair<View, View> cases[] = {{u"\u6771\u4EAC", u"\u6771\u4EAC\u3078\u300D\u884C\u304F"},
                                           {u"\u524D", u"\u524D\u6587"},
                                           {u"\u6B21", u"\u6B21\u306E\u6587"}};
    for (const auto& [query, expected] : cases) {
        const QueryTerms terms(query, {.withinRuns = true});
        EXPECT_EQ(assembleOccurrencesOfQueryTerms(text, terms, {.strictSentenceEnds = true, .withinRuns = true}),
                  expected);
        const auto records = getOccurrencesOfQueryTerms(text, terms, {.strictSentenceEnds = true, .withinRuns = true});
        ASSERT_EQ(records.size(), 1u);
        EXPECT_EQ(records[0].string, expected);
    }
    // Cut at a character: not between a letter and its mark, nor inside a pair.
    const String thai = u"\u0E01\u0E17\u0E35\u0E48\u0E01\u0E01", pair = u"a\U00020BB7\u6771\u6771\u6771";
    EXPECT_EQ(assembleOccurrencesOfString(thai, u"\u0E01", {.ellipsizeAfterNCharacters = 3, .withinRuns = true}),
              u"\u0E01...");
    EXPECT_EQ(assembleOccurrencesOfString(pair, u"a", {.ellipsizeAfterNCharacters = 2, .withinRuns = true}), u"a...");
    EXPECT_EQ(assembleOccurrencesOfString(pair, u"x", {.ellipsizeAfterNCharacters = 4, .withinRuns = true}),
              u"a\U00020BB7...");
}

// No comparison leads out of the scripts or into them, so that a term tells where it may stand.
TEST(WithinRuns, TablesFoldWithinTheScripts) {
    const CharacterSetRep& units = detail::unspacedScripts().units;
    for (const auto comparison : {WildcardComparison::CaseInsensitive, WildcardComparison::DiacriticsInsensitive,
                                  WildcardComparison::Insensitive})
        for (unsigned unit = 0; unit < 0x10000; ++unit) {
            const auto c = static_cast<char16_t>(unit);
            EXPECT_EQ(units.contains(c), units.contains((*unicharTableForWildcardComparison(comparison))[c])) << unit;
        }
}

}  // namespace
}  // namespace velmo
