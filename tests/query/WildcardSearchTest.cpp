#include <velmocore/query/WildcardSearch.h>

#include <velmocore/query/FuzzyAnalogy.h>
#include <velmocore/query/QueryEvaluation.h>

#include "TestSupport.h"

namespace velmo {
namespace {

using enum WildcardComparison;

constexpr Range None = Range::none();

TEST(WildcardSearch, OneWord) {
    const std::tuple<View, View, Range, Range, FindWildcardOptions> cases[] = {
        {u"the data base", u"data", {0, 99}, {4, 4}, {}},
        {u"the database", u"*base", {0, 99}, {4, 8}, {}},
        {u"Data data", u"[dD]ata", {0, 99}, {0, 4}, {}},
        {u"D\u00C4TA", u"*ta", {0, 99}, {0, 4}, {.comparison = Insensitive}},
        {u"\u0436\u0443\u043A", u"\u0416*", {0, 99}, {0, 3}, {.comparison = CaseInsensitive}},
        {u"\u017Fing \u212Aing", u"*SING", {0, 99}, {0, 4}, {.comparison = CaseInsensitive}},
        {u"database", u"base", {4, 4}, None, {}},  // begins inside a word
        {u"a b", u"a?b", {0, 99}, {0, 3}, {}},     // a mark takes what is no term unit too
        {u"..ac", u"ac", {0, 99}, {2, 2}, {.anchored = true}},
        {u"ab ac ad", u"a*", {1, 99}, {3, 2}, {.direction = Direction::Backward}},  // the last word is left out
        {u" one two", u"*", {0, 99}, {1, 3}, {.acceptStar = true, .starIsWord = true}},
        {u"ab", u"a*", {0, 99}, None, {.minCharacters = 2}},
        {u"a", u"a]", {0, 99}, None, {}},
        {u"a", u"a", {UINT64_MAX, UINT64_MAX}, None, {}},
        {u"anal analogie", u"analogy", {0, 99}, {5, 8}, {.comparison = CaseInsensitive | Fuzzy}},
    };
    for (const auto& [text, wildcard, range, expected, options] : cases)
        EXPECT_EQ(FindWildcardInCharacters(text, range, wildcard, options), expected)
            << utf8(text) << " / " << utf8(wildcard);
    CharacterSetRep dashes = alphaNumCharacterSetRep();
    dashes.add(u'-');
    EXPECT_EQ(FindWildcardInCharacters(u"a-b", {0, 3}, u"a*", {.termCharacters = &dashes}), (Range{0, 3}));
}

TEST(WildcardSearch, Phrases) {
    const std::tuple<View, View, Range, FindWildcardStringOptions> cases[] = {
        {u"hello big world", u"hello * world", {0, 15}, {}},
        {u"send email", u"e-mail", {5, 5}, {}},
        {u"the usa", u"u.s.a.", {4, 3}, {}},
        {u"data base", u"\"data base\"", {0, 9}, {}},
        // The words behind must end before the place tried last.
        {u"a a b", u"a a", None, {.direction = Direction::Backward}},
        {u"a b", u"*", {0, 3}, {.acceptStar = true}},
    };
    for (const auto& [text, wildcard, expected, options] : cases)
        EXPECT_EQ(FindWildcardStringInCharacters(text, {0, 99}, wildcard, options), expected)
            << utf8(text) << " / " << utf8(wildcard);
    EXPECT_EQ(rangeOfWildcardWords(u"x a, b", Strings{u"a", u"b"}), (Range{2, 4}));
    EXPECT_EQ(rangeOfWildcardWords(u"a", Strings{}), None);
    EXPECT_EQ(rangeOfWildcard(u"a b a", u"a", {.range = {1, 4}}), (Range{4, 1}));
}

TEST(WildcardSearch, NearestOfSeveral) {
    const Strings ab{u"a", u"b"}, ba{u"b", u"a"}, phrase{u"b", u"a b"};
    EXPECT_EQ(rangeOfNextWildcard(phrase, u"a b"), (Range{2, 1}));  // the phrase reaches into the hit of b
    EXPECT_EQ(rangeOfPreviousWildcard(ab, u"a b"), (Range{0, 1}));  // the rest begins behind a, and leaves out b
    EXPECT_EQ(rangeOfWildcard(u"a b", {0, 3}, ba, {.firstHit = true}), (Range{2, 1}));
    EXPECT_TRUE(containsAnyWildcard(u"xa ya", Strings{u"z", u"*a"}));
    EXPECT_FALSE(containsAnyWildcard(u"xa ya", Strings{u"*"}));
    EXPECT_FALSE(containsAnyWildcard(u"", Strings{u"a"}));
    EXPECT_EQ(findNextWildcard(u"a", Strings{String(), u"a"}), (Range{0, 1}));
}

TEST(WildcardSearch, AllHits) {
    EXPECT_EQ(findStringsMatchingWildcards(u"Data, data base DATABASE", Strings{u"data*"}, {.comparison = Insensitive}),
              (std::set<String>{u"data", u"database"}));
    EXPECT_EQ(findStringsMatchingWildcards(u"x", Strings{u"y"}), std::set<String>());
    EXPECT_EQ(findStringsMatchingWildcards(u"x", Strings{}), std::nullopt);
    EXPECT_EQ(findStringsMatchingWildcards(u"", Strings{u"y"}), std::nullopt);
    std::size_t calls = 0;
    EXPECT_EQ(forEachWildcard(u"a a a", Strings{u"a"}, [&](Range) { return ++calls < 2; }), 2u);
}

TEST(WildcardSearch, ManyHitsTakeLinearTime) {
    const std::u16string text = test::repeated(u"ab ", 300'000);
    const Strings wildcards{u"none", u"ab*", u"*n[a-c]ne", u"x y"};
    const auto count = [](Range) { return true; };
    EXPECT_EQ(forEachWildcard(text, wildcards, count), 300'000u);
    EXPECT_EQ(forEachWildcardBackwards(text, wildcards, count), 300'000u);
}

}  // namespace
}  // namespace velmo
