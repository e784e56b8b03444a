// Many words are sought in one walk, few of them one by one: both must find the same.
#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/query/QueryTerms.h>

#include <atomic>
#include <set>
#include <thread>
#include <tuple>

#include "TestSupport.h"
#include "text/SmallerMachine.h"

namespace velmo {
namespace {

/// Letters of an alphabet with what folds into them, and what is of no word.
constexpr View Alphabets[] = {u"abcABC \u017F\u212A\u0131ksiKSI", u"ab \u00E9\u00C9\u0101\u0100-",
                              u"\u0430\u0410\u043F\u041F\u0131 ", u"a \u03C9\u03A9\u2126\u03B9\u0399\u1FBE\u0345_",
                              u"ab1 \u5B57\U00020000\u0E17"};

std::u16string randomWord(std::mt19937& random, View alphabet, std::size_t longest) {
    std::u16string word;
    for (std::size_t length = 1 + random() % longest; length > 0; --length)
        word += alphabet[random() % alphabet.size()];
    return word;
}

QueryTerms anyOf(const std::vector<std::u16string>& words) {
    std::u16string query;
    for (const std::u16string& word : words) query += u"OR \"" + word + u"\" ";
    return QueryTerms(query);
}

void expectFoundAsEachAlone(unsigned seed, int rounds) {
    std::mt19937 random(seed);
    long found = 0;
    for (int round = 0; round < rounds; ++round) {
        const View alphabet = Alphabets[round % std::size(Alphabets)];
        const std::size_t longest = round % 3 ? 4 : 20;
        std::vector<std::u16string> words;
        for (std::size_t count = 3 + random() % (round % 4 ? 40 : 90); count > 0; --count)
            words.push_back(randomWord(random, alphabet, random() % 40 ? longest : 150));
        std::u16string text(random() % 200, u'.');
        while (text.size() < 1000) {
            if (random() % 16 == 0) text += words[random() % words.size()];
            text += randomWord(random, alphabet, 2 * longest) + (random() % 2 ? u" " : u"");
        }
        const Case letterCase = random() % 2 ? Case::Insensitive : Case::Sensitive;
        bool isAny = false;
        std::set<std::tuple<std::uint64_t, std::uint64_t>> expected, hits;
        for (const std::u16string& word : words) {
            const QueryTerms alone = anyOf({word});
            isAny |= alone.matchesString(text, letterCase);
            for (const Range hit : hitsOfQueryTerms(text, alone, letterCase))
                expected.emplace(hit.location, hit.length);
        }
        const QueryTerms all = anyOf(words);
        for (const Range hit : hitsOfQueryTerms(text, all, letterCase)) hits.emplace(hit.location, hit.length);
        ASSERT_EQ(hits, expected) << utf8(all.description()) << "\n" << utf8(text);
        ASSERT_EQ(all.matchesString(text, letterCase), isAny) << utf8(all.description()) << "\n" << utf8(text);
        ASSERT_EQ(all.containsString(text, letterCase), isAny) << utf8(all.description()) << "\n" << utf8(text);
        found += static_cast<long>(hits.size());
    }
    EXPECT_GT(found, 2 * rounds);
}

TEST(ManyWords, AreFoundAsEachAlone) { expectFoundAsEachAlone(11, 4000); }

TEST(ManyWords, AreFoundOnSmallerMachines) {
    const test::WithoutAvx512 smaller;
    expectFoundAsEachAlone(12, 2000);
}

TEST(ManyWords, FollowTheTermCharacters) {
    const QueryTerms query(u"a OR b1 OR c OR d OR e OR f OR g OR h OR i OR j");
    const std::u16string text = std::u16string(3000, u'.') + u"b1b x.b1+";
    EXPECT_TRUE(query.matchesString(text));
    // Where digits are of no word, b1 ends with one; where + is, the run is longer than the word.
    CharacterSetRep letters = alphaNumCharacterSetRep(), more = letters;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        letters.bits[digit / 8] &= static_cast<std::uint8_t>(~(1u << digit % 8));
    more.bits[u'+' / 8] |= 1u << u'+' % 8;
    setQueryTermCharacters(&letters);
    EXPECT_EQ(hitsOfQueryTerms(text, query), (std::vector<Range>{{3006, 2}}));
    setQueryTermCharacters(&more);
    EXPECT_FALSE(query.matchesString(text));
    setQueryTermCharacters(nullptr);
    EXPECT_TRUE(query.matchesString(text));
}

TEST(ManyWords, MayHaveAZeroInThem) {
    CharacterSetRep all = alphaNumCharacterSetRep();
    all.bits[0] |= 1;
    setQueryTermCharacters(&all);
    const std::u16string word = {u'a', u'\0', u'b'}, longer = word + u'c', rest(3000, u'.');
    const QueryTerms query = anyOf({word, u"d", u"e", u"f", u"g", u"h", u"i", u"j", u"k"});
    EXPECT_EQ(hitsOfQueryTerms(rest + longer + u"." + word, query), (std::vector<Range>{{3005, 3}}));
    setQueryTermCharacters(nullptr);
}

TEST(ManyWords, AreMadeReadyByAnyThread) {
    const std::u16string text = std::u16string(5000, u'.') + u"Ninth";
    for (int round = 0; round < 50; ++round) {
        const QueryTerms query(u"first OR second OR third OR fourth OR fifth OR sixth OR seventh OR ninth OR tenth");
        std::atomic<int> matches = 0;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] { matches += query.matchesString(text) + query.containsString(text); });
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(matches, 8);
    }
}

}  // namespace
}  // namespace velmo
