#include <velmocore/words/Words.h>

#include <set>
#include <stdexcept>

#include <velmocore/words/Separators.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Words, Strings) {
    const std::tuple<String, std::uint64_t, Strings> cases[] = {
        {String(), 1, {}},
        {u"", 0, {}},
        {u" ,. ", 1, {}},
        {u"a b c", 2, {}},
        {u"a b c", 0, {u"a", u"b", u"c"}},
        {u"don't 3.14 abc123_x", 1, {u"don", u"t", u"3", u"14", u"abc123", u"x"}},
        {u"-a bc--def ", 2, {u"bc", u"def"}},
        {u"x\U0001F600y \u4E00\u4E01 e\u0301", 1, {u"x", u"y", u"\u4E00\u4E01", u"e\u0301"}},
    };
    for (const auto& [text, minLen, words] : cases) {
        SCOPED_TRACE(text.utf8());
        EXPECT_EQ(wordsUsingDefaultSeparation(text, minLen), words);
        EXPECT_EQ(numberOfWordsUsingDefaultSeparation(text, minLen), words.size());
    }
    EXPECT_EQ(wordsUsingWhiteSeparation(u" it's\u2028a-b c", 2), (Strings{u"it's", u"a-b"}));
    EXPECT_EQ(wordsUsingSeparators(u"a  b,", {.withSeparators = true}), (Strings{u"a", u"  ", u"b", u","}));
    const String whole(u"whole");
    EXPECT_TRUE(wordsUsingDefaultSeparation(whole)[0].isIdenticalTo(whole));
}

TEST(Words, Hyphenated) {
    const std::tuple<String, std::uint64_t, bool, bool> cases[] = {
        {u"U.S.A", 1, false, true},       {u"U.S.A.", 1, false, true},
        {u"U.S", 1, false, true},         {u"U.S.A", 2, false, false},
        {u"U.S.x1", 1, false, false},     {u"1.2", 1, false, false},
        {u"a-b", 1, false, true},         {u"well-known", 1, false, true},
        {u"well--known", 1, false, true}, {u"a-b.c", 1, false, false},
        {u"a b", 1, false, false},        {u"well - known", 1, false, false},
        {u"single", 1, false, false},     {u"single.", 1, false, false},
        {u"", 1, false, false},           {u"U.S. ", 1, false, false},
        {u"U.S", 1, true, true},          {u"a- b", 1, true, true},  // the run's first unit tells
        {u"abc-d-efg", 3, false, true},
    };
    for (const auto& [text, minLen, withSeparators, expected] : cases) {
        const WordOptions options{.withSeparators = withSeparators, .minLen = minLen};
        EXPECT_EQ(separatedWords(text, options).hyphenated, expected) << text;
    }
}

TEST(Words, RangesAreMarked) {
    const std::vector<Range> ranges = wordsOfCharacters(u"a  b", {.withSeparators = true});
    EXPECT_EQ(ranges, (std::vector<Range>{{0, 1}, {1, 2 | SeparatorMark}, {3, 1}}));
    EXPECT_TRUE(isSeparatorEntry(ranges[1]));
    EXPECT_FALSE(isSeparatorEntry(ranges[2]));
    EXPECT_EQ(withoutSeparatorMark(ranges[1]), (Range{1, 2}));
    EXPECT_TRUE(wordsOfCharacters(u"").empty());
    EXPECT_EQ(wordsUsingSeparators<std::multiset<String>>(u"a b a").count(u"a"), 2u);
}

TEST(Words, InRange) {
    const View text = u"one two three";
    const std::tuple<Range, std::uint64_t, std::uint64_t> cases[] = {
        {{0, 13}, 1, 3},       {{1, 5}, 1, 2}, {{1, 5}, 2, 2},          {{4, NotFound}, 1, 2}, {{13, 1}, 1, 0},
        {{NotFound, 9}, 1, 0}, {{3, 1}, 1, 0}, {{8, UINT64_MAX}, 4, 1}, {{0, 0}, 1, 0},        {{UINT64_MAX, 2}, 1, 0}};
    for (const auto& [range, minLen, words] : cases)
        EXPECT_EQ(numberOfWordsInRange(text, range, nullptr, minLen), words) << range.location;
}

TEST(Words, Handlers) {
    std::set<View> seen;
    const View text = u"to be or not to be";
    EXPECT_EQ(parseWordsWithHandler(text,
                                    [&](View units, Range word) {
                                        EXPECT_EQ(units.data(), text.data());
                                        seen.insert(units.substr(word.location, word.length));
                                    }),
              6u);
    EXPECT_EQ(seen, (std::set<View>{u"to", u"be", u"or", u"not"}));
    EXPECT_EQ(parseWordsWithHandler(text, nullptr), 0u);
    EXPECT_EQ(parseWordsWithHandler(u"ab", [](auto, auto) { FAIL(); }, {.minLen = 3}), 0u);
    EXPECT_THROW(parseWordsWithHandler(text, [](auto, auto) { throw std::runtime_error("x"); }), std::runtime_error);

    // What a handler writes reaches the handler's later calls, but joins or cuts no words.
    std::u16string last;
    EXPECT_EQ(parseMutableWordsWithHandler(u"a b c",
                                           [&](std::span<char16_t> units, Range word) {
                                               units[word.location] = u' ';
                                               units[4] = u'x';
                                               last.assign(units.begin(), units.end());
                                           }),
              3u);
    EXPECT_EQ(last, u"    x");
    EXPECT_EQ(parseMutableWordsWithHandler(u"a", nullptr), 0u);
}

/// The entries by a walk from unit to unit.
std::vector<Range> slowWords(View text, const CharacterSetRep& set, const WordOptions& options) {
    const std::uint64_t minLen = std::max<std::uint64_t>(options.minLen, 1);
    std::vector<Range> entries;
    std::size_t start = 0, i = 0;
    for (; i < text.size(); ++i) {
        if (!set.contains(text[i])) {
            if (options.wildcard && text[i] == u'[')
                while (i + 1 < text.size() && text[i + 1] != u']') ++i;
            continue;
        }
        if (i - start >= minLen) entries.push_back({start, i - start});
        const std::size_t run = i;
        while (options.withSeparators && i + 1 < text.size() && set.contains(text[i + 1])) ++i;
        if (options.withSeparators) entries.push_back({run, (i + 1 - run) | SeparatorMark});
        start = i + 1;
    }
    if (i - start >= minLen) entries.push_back({start, i - start});
    return entries;
}

TEST(Words, RandomTextsAgreeWithAWalk) {
    std::mt19937 random(7);
    const View alphabet = u"ab [] \u00E9";
    CharacterSetRep blanks;
    blanks.add(u' ');
    for (int round = 0; round < 20000; ++round) {
        const std::size_t length = random() % 8 ? random() % 24 : 50 + random() % 160;
        const std::u16string text = test::randomText(random, alphabet, length);
        const WordOptions options{.separators = random() % 2 ? &blanks : nullptr,
                                  .withSeparators = random() % 2 == 0,
                                  .minLen = random() % 4,
                                  .wildcard = random() % 2 == 0};
        const CharacterSetRep& set = options.separators ? *options.separators : defaultWordSeparators();
        const std::vector<Range> expected = slowWords(text, set, options);
        ASSERT_EQ(wordsOfCharacters(text, options), expected) << utf8(text);
        ASSERT_EQ(numberOfWordsOfCharacters(text, options), expected.size()) << utf8(text);
        ASSERT_EQ(wordsUsingSeparators(text, options).size(), expected.size()) << utf8(text);
    }
}

}  // namespace
}  // namespace velmo
