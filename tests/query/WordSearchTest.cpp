#include <velmocore/query/WordSearch.h>

#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryTerms.h>
#include <velmocore/text/ConversionTables.h>

#include "TestSupport.h"
#include "query/WordOccurrences.h"
#include "query/WordScan.h"
#include "query/WordSteps.h"

namespace velmo {
namespace {

TEST(WordSearch, FindWord) {
    const std::tuple<View, View, Range, FindWordOptions, std::uint64_t> cases[] = {
        {u"concatenate a cat", u"cat", {0, 17}, {}, 14},
        {u"concatenate", u"cat", {3, 3}, {}, 3},  // the edges of the range end words
        {u"a Cat", u"cAT", {0, 5}, {}, 2},
        {u"a", u"", {0, 1}, {}, NotFound},
        {u"", u"a", {0, 0}, {}, NotFound},
        {u"xyz", u"*abc", {1, 1}, {}, 1},
        {u"a a ab", u"a", {0, 5}, {.direction = Direction::Backward}, 4},
        {u"\u00E9t\u00C9", u"\u00C9T\u00E9", {0, 3}, {.letterCase = Case::Insensitive}, 0},
        {u"a", u"a", {UINT64_MAX, UINT64_MAX}, {}, NotFound},
        {u"b a", u"a", {0, UINT64_MAX}, {}, 2},
    };
    for (const auto& [text, word, range, options, expected] : cases)
        EXPECT_EQ(FindWordInString(text, range, word, options), expected) << utf8(text) << " / " << utf8(word);
    CharacterSetRep dashes = alphaNumCharacterSetRep();
    dashes.add(u'-');
    EXPECT_EQ(FindWordInString(u"a-b a", {0, 5}, u"a", {.termCharacters = &dashes}), 4u);
}

TEST(WordSearch, Phrases) {
    const std::tuple<View, Strings, FindPhraseOptions, Range> cases[] = {
        {u"a data base.", {u"data", u"base"}, {}, {2, 9}},
        {u"a data base", {u"data", u"base"}, {}, Range::none()},  // ends where the text does
        {u"data,\r\n  base ", {u"data", u"base"}, {}, {0, 13}},
        {u"database data x base ", {u"data", u"base"}, {}, Range::none()},
        {u"data bases ", {u"data", u"base"}, {}, {0, 9}},
        {u"data bases ", {u"data", u"base"}, {.exact = true}, Range::none()},
        {u"data Data BASE ", {u"data", u"base"}, {.letterCase = Case::Insensitive}, {5, 9}},
        {u"data Data BASE ", {u"data", u"base"}, {.letterCase = Case::Sensitive}, Range::none()},
        {u"a a a b ", {u"a", u"a", u"b"}, {}, {2, 5}},
        {u"x y x y x ", {u"x", u"y"}, {.direction = Direction::Backward}, {4, 3}},
        {u"x y x", {u"x", u"y"}, {.direction = Direction::Backward}, {0, 3}},
        {u"x z x", {u"x", u"y"}, {.direction = Direction::Backward}, Range::none()},
        {u"x ", {u"x"}, {}, {0, 1}},
        {u"x", {u"x"}, {}, Range::none()},
        {u"x y ", {}, {}, Range::none()},
        {u"x y ", {u"*", u"y"}, {}, {0, 3}},
        {u"x y ", {u"*", u"z"}, {}, Range::none()},
        {u"x y ", {u"*", u"z"}, {.direction = Direction::Backward}, Range::none()},
    };
    for (const auto& [text, words, options, expected] : cases)
        EXPECT_EQ(FindNonExactPhraseInString(text, {0, text.size()}, words, options), expected) << utf8(text);
}

TEST(WordSearch, RangesAndCounts) {
    EXPECT_EQ(countWord(u"aa aa aa", u"aa", Case::Sensitive), 3u);
    EXPECT_EQ(countWord(u"Aa aaa aA", u"aa", Case::Insensitive), 2u);
    EXPECT_EQ(countWord(u"a", u"", Case::Sensitive), 0u);
    EXPECT_EQ(countWord(u"abcd", u"*x", Case::Sensitive), 2u);
    EXPECT_EQ(rangeOfWord(u"ab a", u"a", Case::Sensitive), (Range{3, 1}));
    EXPECT_EQ(rangeOfWord(u"", u"*a", Case::Sensitive), Range::none());
    EXPECT_EQ(rangeOfWord(u"ab", u"*abcd", Case::Sensitive), (Range{0, 2}));  // cut at the end of the text
    const Strings words = {u"", u"longer than the text", u"two", u"one"};
    EXPECT_EQ(rangeOfAnyWord(u"one two one", words, Case::Sensitive), (Range{4, 3}));
    EXPECT_EQ(countAnyWord(u"one two one", words, Case::Sensitive), 3u);
    EXPECT_EQ(rangeOfAnyWord(u"three", words, Case::Sensitive), Range::none());

    const View text = u"cat concat Cat";
    const std::tuple<Range, TermSearchOptions, Range, Range> cases[] = {
        {{0, 14}, {.letterCase = Case::Sensitive}, {0, 3}, {0, 3}},
        {{0, 14}, {}, {0, 3}, {11, 3}},
        {{0, 14}, {.letterCase = Case::Sensitive, .anchored = false}, {0, 3}, {7, 3}},
        {{1, 13}, {.letterCase = Case::Sensitive}, Range::none(), Range::none()},
        {{0, 15}, {}, Range::none(), Range::none()},  // not inside the text
        {{0, 0}, {}, Range::none(), Range::none()},
        {{14, 1}, {}, Range::none(), Range::none()},
        {{1, UINT64_MAX}, {.letterCase = Case::Sensitive}, Range::none(), Range::none()},
    };
    for (const auto& [range, options, next, previous] : cases) {
        EXPECT_EQ(findNextWord(text, u"cat", range, options), next) << range.location;
        EXPECT_EQ(findPreviousWord(text, u"cat", range, options), previous);
    }
    EXPECT_EQ(findNextWord(u"a", u"*longer", {0, 1}), Range::none());
}

TEST(WordSearch, QueryTerms) {
    const View text = u"Boston, New   York and new york.";
    const Range whole{0, text.size()};
    const TermSearchOptions noCase, exact{.letterCase = Case::Sensitive};
    const struct {
        Strings terms;
        TermSearchOptions options;
        Range next, previous;
        std::size_t left;  // when the list may be changed
    } cases[] = {
        {{u"x", u"york", u"boston", u"y"}, noCase, {0, 6}, {27, 4}, 3},
        {{u"new york", u"new"}, noCase, {8, 10}, {23, 8}, 2},
        {{u"new", u"new york"}, noCase, {8, 3}, {23, 3}, 2},
        {{u"new york"}, exact, {23, 8}, {23, 8}, 1},
        {{u"new york"}, {.exactPhrase = true}, {23, 8}, {23, 8}, 1},
        {{u"or"}, noCase, Range::none(), Range::none(), 0},
        {{u"or"}, {.anchored = false}, {15, 2}, {28, 2}, 1},
        {{u"", u"*", u"and"}, {}, {19, 3}, {19, 3}, 1},
        {{}, {}, Range::none(), Range::none(), 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.terms.empty() ? "" : c.terms[0].utf8());
        EXPECT_EQ(findNextQueryTerm(c.terms, text, whole, c.options), c.next);
        EXPECT_EQ(findPreviousQueryTerm(c.terms, text, whole, c.options), c.previous);
        Strings next = c.terms, previous = c.terms;
        EXPECT_EQ(findNextMutableQueryTerm(next, text, whole, c.options), c.next);
        EXPECT_EQ(findPreviousMutableQueryTerm(previous, text, whole, c.options), c.previous);
        EXPECT_EQ(next.size(), c.left);
        EXPECT_EQ(previous.size(), c.left);
    }
    const Strings terms = {u"new", u"york"};
    EXPECT_EQ(findNextQueryTerm(terms, text, {9, UINT64_MAX}, exact), (Range{23, 3}));
    EXPECT_EQ(findNextQueryTerm(terms, text, {32, 1}), Range::none());
    EXPECT_EQ(findNextQueryTerm(terms, u"", {0, 0}), Range::none());
}

TEST(WordSearch, SetTermCharacters) {
    CharacterSetRep letters;
    letters.add(u"abc-");
    EXPECT_EQ(countWord(u"a-b a", u"a", Case::Sensitive), 2u);
    setQueryTermCharacters(&letters);
    EXPECT_EQ(countWord(u"a-b a", u"a", Case::Sensitive), 1u);
    setQueryTermCharacters(nullptr);
    EXPECT_EQ(countWord(u"a-b a", u"a", Case::Sensitive), 2u);
}

/// All positions at which a word stands in a stretch, unit by unit.
std::vector<std::uint64_t> slowPositions(const detail::SoughtWord& sought, std::uint64_t start, std::uint64_t end) {
    std::vector<std::uint64_t> positions;
    const auto fold = [&](char16_t unit) { return sought.letterCase == Case::Sensitive ? unit : toUpper(unit); };
    for (std::uint64_t i = start; i + sought.word.size() <= end; ++i) {
        bool same = true;
        for (std::size_t k = 0; k < sought.word.size(); ++k) same &= fold(sought.text[i + k]) == fold(sought.word[k]);
        const std::uint64_t behind = i + sought.word.size();
        const auto isTerm = [&](std::uint64_t k) { return sought.termCharacters.contains(sought.text[k]); };
        if (same && !(sought.wholeWord && ((i > start && isTerm(i - 1)) || (behind < end && isTerm(behind)))))
            positions.push_back(i);
    }
    return positions;
}

TEST(WordSearch, RandomScansAgreeWithASlowOne) {
    std::mt19937 random(11);
    const View alphabets[] = {u"ab ", u"kK\u212A ", u"sS\u017F\u00DF -", u"iI\u0131\u0130.",
                              u"\u00E4\u00C4a7 \u0416\u0436"};
    for (int round = 0; round < 40000; ++round) {
        const View alphabet = alphabets[random() % std::size(alphabets)];
        const std::u16string text = test::randomText(random, alphabet, random() % (random() % 8 ? 25 : 121));
        const std::u16string word = test::randomText(random, alphabet, 1 + random() % 4);
        const detail::SoughtWord sought{text, word, random() % 2 ? Case::Insensitive : Case::Sensitive,
                                        random() % 2 == 0, alphaNumCharacterSetRep()};
        detail::WordOccurrences occurrences;
        for (int stretch = 0; stretch < 4; ++stretch) {
            const std::uint64_t a = random() % (text.size() + 1), b = random() % (text.size() + 1);
            const std::uint64_t start = stretch ? std::min(a, b) : 0;
            const std::uint64_t end = stretch ? std::max(a, b) : text.size();
            SCOPED_TRACE(utf8(text) + " / " + utf8(word) + " / " + std::to_string(start) + "-" + std::to_string(end) +
                         (sought.wholeWord ? " whole" : "") + (sought.letterCase == Case::Sensitive ? " case" : ""));
            const auto expected = slowPositions(sought, start, end);
            const std::uint64_t first = expected.empty() ? NotFound : expected.front();
            ASSERT_EQ(detail::scanForWord(sought, start, end), first);
            ASSERT_EQ(detail::scanBackForWord(sought, start, end), expected.empty() ? NotFound : expected.back());
            ASSERT_EQ(occurrences.find(sought, start, end), first);
        }
    }
}

TEST(WordSearch, StepsOverWords) {
    const View text = u"ab, cd  ef";
    const CharacterSetRep& set = alphaNumCharacterSetRep();
    const std::tuple<std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t> cases[] = {
        {1, 0, 10, 2, 0},  // edge is the end forward; back it is 0
        {1, 2, 10, 6, 0},   {2, 1, 10, 6, 0},
        {3, 0, 10, 10, 0},  {0, 5, 10, 5, 4},
        {1, 8, 10, 10, 3},  {2, 8, 10, 10, 0},
        {1, 10, 10, 10, 7}, {9, 10, 10, 10, 0},
        {8, 10, 10, 10, 0}, {UnboundedDistance, 5, 10, 10, 0},
    };
    for (const auto& [n, position, edge, forward, back] : cases) {
        EXPECT_EQ(NWordsForward(n, text, set, position, edge), forward) << n << position;
        EXPECT_EQ(NWordsBack(n, text, set, position, 0), back) << n << ' ' << position;
    }
    EXPECT_EQ(NWordsForward(1, text, set, 3, 99), 6u);
    EXPECT_EQ(NWordsBack(1, text, set, 99, 9), 9u);

    // Far steps use a list, with the same answers.
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        const std::u16string longText = test::randomText(random, u"ab ,", random() % 401);
        detail::WordSteps steps({longText, set});
        for (int i = 0; i < 40; ++i) {
            const std::uint64_t position = random() % (longText.size() + 1);
            const std::uint64_t edge = random() % (longText.size() + 1), n = random() % 60;
            ASSERT_EQ(steps.forward(position, edge, n), detail::wordsForward({longText, set}, position, edge, n));
            ASSERT_EQ(steps.back(position, edge, n), detail::wordsBack({longText, set}, position, edge, n));
        }
    }
}

}  // namespace
}  // namespace velmo
