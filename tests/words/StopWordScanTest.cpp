#include "words/StopWordScan.h"

#include <map>

#include <velmocore/text/ConversionTables.h>
#include <velmocore/words/Words.h>

#include "TestSupport.h"

namespace velmo::detail {
namespace {

using Languages = StopWordIndex::Languages;
using Counts = std::map<std::vector<std::uint32_t>, std::size_t>;  // of found words, by their languages

// Words across blocks of 64 units, of all lengths and at both ends of texts of all lengths.
TEST(StopWordScan, FindsAndCountsEachWord) {
    const std::vector<Strings> lists = {
        {u"abc", u"ab1b", u"abcabcab", u"abcabcabc", u"aabbccaabbccaabb", u"aabbccaabbccaabbc", u"b", u"Ab", u"1a"},
        {u"abc", u"b\u00E4b", u"cc", u"kab", u"ac\u0434", u"abcabcabcabcab"},
    };
    const std::vector<const Strings*> pointers = {&lists[0], &lists[1]};
    const StopWordIndex index(pointers, false, 1);
    std::vector<std::u16string> pieces;
    for (const Strings& list : lists)
        for (const String& word : list) pieces.emplace_back(word.view());
    for (View piece : {u"ABC", u"kelvin", u"\u212Aab", u"B\u00C4B", u"12", u"x", u"abcd", u"1ab", u"ab1"})
        pieces.emplace_back(piece);
    pieces.push_back(test::repeated(u"ab", 70));
    std::mt19937 random(3);
    std::size_t found = 0;
    for (int round = 0; round < 3000; ++round) {
        std::u16string text;
        const std::size_t length = round % 20 ? random() % 200 : 4000;
        while (text.size() < length)
            text += pieces[random() % pieces.size()] +
                    std::u16string(random() % 8 ? 1 : random() % 70, u" ,\n"[random() % 3]);
        if (random() % 2) text.resize(random() % (text.size() + 1));
        const std::size_t leastCounted = 1 + random() % 3, leastSought = leastCounted + random() % 3;

        StopWordScan scan(text, index, leastCounted, leastSought);
        Counts counts;
        WordCount others;
        const auto add = [&](Languages word) {
            if (!word.empty()) ++counts[{word.begin(), word.end()}];
        };
        scan.run(add, [&](View word) {
            others.add(word);
            if (word.size() >= leastSought && word.front() >= u'A' && word.back() >= u'A') add(index.find(word));
        });

        Counts expected;
        WordCount words, packed;
        for (const Range& range : wordsOfCharacters(text, {.minLen = leastCounted})) {
            const View word = View(text).substr(range.location, range.length);
            const bool isEdged = word.front() >= u'A' && word.back() >= u'A';
            const bool isAscii = std::ranges::all_of(word, [](char16_t unit) { return unit < 128; });
            words.add(word);
            packed.addIf(isEdged && isAscii && word.size() <= MostPackedUnits, word.size());
            std::u16string lower(word);
            for (char16_t& unit : lower) unit = lowerCharsTable()[unit];
            std::vector<std::uint32_t> languages;
            for (std::uint32_t i = 0; i < 2; ++i)
                if (std::ranges::count(lists[i], String(View(lower))) && isEdged && word.size() >= leastSought)
                    languages.push_back(i);
            if (!languages.empty()) ++expected[languages], ++found;
        }
        ASSERT_EQ(counts, expected) << utf8(text);
        ASSERT_EQ(scan.packed().words, packed.words) << utf8(text);
        ASSERT_EQ(scan.packed().units, packed.units) << utf8(text);
        ASSERT_EQ(others.words, words.words - packed.words) << utf8(text);
        ASSERT_EQ(others.units, words.units - packed.units) << utf8(text);
    }
    EXPECT_GT(found, 20000u);
}

}  // namespace
}  // namespace velmo::detail
