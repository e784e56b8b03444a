// Signatures may say too little, but never that something is not there which is.
#include "gather/PageSignature.h"

#include <cstdlib>

#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/text/CharacterSets.h>

#include "TestSupport.h"
#include "gather/SearchQuery.h"
#include "gather/SignatureUnits.h"

namespace velmo {
namespace {

using detail::PageSignature;
using detail::QuerySignature;
using detail::SearchQuery;

template <std::size_t N>
View anyOf(std::mt19937& random, const View (&parts)[N]) {
    return parts[random() % N];
}

// Letters that comparisons take for one another, units that scripts join, halves of pairs.
constexpr View Alphabets[] = {
    u"aAbBcC",
    u"a\u00E4\u00C4\u00E5\u0101eE\u00E9\u0301",
    u"kK\u212AsS\u017FiI\u0131\u0130",
    u"\u00B5\u03BC\u039C\u0399\u03B9\u0345\u1FBE\u03AC",
    u"\u0431\u0411\u0439\u0419",
    u"0123\u0663\u00B2\uFF11",
    u"\u6771\u4EAC\u8336\u3005",
    u"\u30AB\u30AC\u3042\uFF76\uFF9E",
    u"\u0E01\u0E02\u0E33\u0E31",
    u"\uD55C\uAD6D",
    u"a\uFB01\u00DF\u01C4\u01C6",
    u"x\U00020000\U0001F600\uFFFDy",
};
constexpr View Gaps[] = {u" ", u" ", u" ", u"\n", u"-", u".", u". ", u"'", u"\u2019", u"_", u"", u", "};

std::u16string randomWord(std::mt19937& random) {
    std::u16string word = test::randomText(random, anyOf(random, Alphabets), 1 + random() % 6);
    if (random() % 6 == 0) word += test::randomText(random, anyOf(random, Alphabets), 1 + random() % 3);
    return word;
}

std::u16string randomPage(std::mt19937& random) {
    std::vector<std::u16string> words(12);
    for (auto& word : words) word = randomWord(random);
    std::u16string text;
    for (std::size_t count = 1 + random() % 40; count > 0; --count)
        text.append(words[random() % words.size()]).append(anyOf(random, Gaps));
    return text;
}

/// A unit that some comparison takes for this one, mostly itself.
char16_t variantOf(std::mt19937& random, char16_t unit) {
    const auto& classes = detail::signatureUnits().classes;
    for (int tries = 0; tries < 2; ++tries)
        for (const char16_t other : anyOf(random, Alphabets))
            if (classes[other] && classes[other] == classes[unit] && random() % 2) return other;
    return unit;
}

/// What stands in the text, or nearly so.
std::u16string randomTerm(std::mt19937& random, View text) {
    if (random() % 4 == 0) return randomWord(random);
    std::size_t start = random() % text.size();
    while (random() % 3 && start > 0 && detail::signatureUnits().classes[text[start - 1]]) --start;
    std::u16string term(text.substr(start, 1 + random() % 8));
    for (char16_t& unit : term) {
        if (random() % 4 == 0) unit = variantOf(random, unit);
        if (random() % 12 == 0) unit = u"*?"[random() % 2];
    }
    if (random() % 6 == 0) term.insert(random() % term.size(), u"[ab\u4EAC-]");
    if (random() % 6 == 0) term += u'*';
    if (random() % 8 == 0) term.insert(0, u"*");
    return term;
}

std::u16string randomQuery(std::mt19937& random, View text) {
    static constexpr View Joins[] = {u" ",      u" ",        u" OR ",      u" XOR ",    u" OPT ", u" NEAR/2 ",
                                     u" NEXT ", u" BEFORE ", u" AFTER/3 ", u" NEAR ",   u" -",    u" NOT ",
                                     u" (",     u") ",       u" NEAR/1 ~", u" AFTER ~", u" OR (", u") BEFORE *"};
    std::u16string query;
    for (std::size_t count = 1 + random() % 5; count > 0; --count) {
        const std::u16string term = randomTerm(random, text);
        if (!query.empty()) query += anyOf(random, Joins);
        if (random() % 5 == 0) query += u'~';
        if (random() % 4 == 0)
            query.append(u"\"").append(term).append(u"\"");
        else
            query += term;
    }
    return query;
}

/// The sets that words are made of: the usual one, one with joints, one without most of it.
const CharacterSetRep* randomTermCharacters(std::mt19937& random) {
    static const CharacterSetRep joined = [] {
        CharacterSetRep set = alphaNumCharacterSetRep();
        set.add(u"-_'.");
        return set;
    }();
    static const CharacterSetRep few = [] {
        CharacterSetRep set;
        set.add(u"abcABC \u6771");
        return set;
    }();
    const CharacterSetRep* sets[] = {nullptr, nullptr, nullptr, nullptr, &joined, &few};
    return sets[random() % std::size(sets)];
}

struct Outcomes {
    std::size_t holding = 0, refused = 0, refusedByBytes = 0;
};

void checkCase(std::mt19937& random, Outcomes& outcomes) {
    const std::u16string text = randomPage(random);
    // Few bits in one case and more than enough in another.
    const Data bytes = detail::signatureOfText(text, 700 + random() % 20000);
    const PageSignature signature(bytes);
    ASSERT_TRUE(signature.isWhole());
    setQueryTermCharacters(randomTermCharacters(random));
    std::vector<char> mayStand, stack;
    for (int queries = 0; queries < 4; ++queries) {
        const std::u16string written = randomQuery(random, text);
        const QueryTerms terms(written, {.wildcard = random() % 2 == 0, .withinRuns = random() % 2 == 0});
        const auto comparison = static_cast<WildcardComparison>(random() % 8);
        const SearchQuery query(terms, comparison);
        query.signature().findWords(signature, mayStand);
        const bool mayHold = query.signature().mayHold(mayStand, stack);
        const bool holds = query.holdsFor(text);
        std::vector<char> all(query.signature().numberOfWords(), true);
        const bool mayHoldFor = query.signature().mayHoldFor(String(text).utf8(), all, stack);
        ASSERT_TRUE(mayHoldFor || !holds) << String(written).utf8() << "\n" << String(text).utf8();
        ASSERT_TRUE(mayHold || !holds) << String(written).utf8() << "\n" << String(text).utf8();
        for (std::size_t word = 0; word < query.numberOfWords(); ++word)
            ASSERT_TRUE(mayStand[query.signatureNumberOf(word)] || query.countOf(word, text) == 0)
                << String(written).utf8() << "\n"
                << String(text).utf8();
        outcomes.holding += holds;
        outcomes.refused += !mayHold;
        outcomes.refusedByBytes += !mayHoldFor;
    }
}

TEST(PageSignature, LosesNoHitOfRandomQueries) {
    const char* wanted = std::getenv("VELMO_QUERY_CASES");
    const std::size_t count = wanted ? std::strtoull(wanted, nullptr, 10) : 1000;
    std::mt19937 random(15);
    Outcomes outcomes;
    for (std::size_t i = 0; i < count && !testing::Test::HasFatalFailure(); ++i) checkCase(random, outcomes);
    setQueryTermCharacters(nullptr);
    // Otherwise nothing was proved.
    EXPECT_GT(outcomes.holding, count / 2);
    EXPECT_GT(outcomes.refused, count / 2);
    EXPECT_GT(outcomes.refusedByBytes, count / 10);
    RecordProperty("holding", static_cast<int>(outcomes.holding));
    RecordProperty("refused", static_cast<int>(outcomes.refused));
}

TEST(PageSignature, TellsWhatAQueryNeeds) {
    const std::u16string text =
        u"The well-known Ferrets don't dig at caf\u00E9s in \u6771\u4EAC\u90FD; U.S.A. 3.14 x\U0001F600y";
    const Data bytes = detail::signatureOfText(text, 40000);
    const PageSignature signature(bytes);
    const struct {
        View query;
        bool wildcard, mayHold;
    } cases[] = {
        {u"ferrets", false, true},
        {u"ferret", false, false},
        {u"~erret", false, true},
        {u"~errot", false, false},
        {u"fer*", true, true},
        {u"ret*", true, false},
        {u"*ets", true, true},
        {u"*ret", true, false},
        {u"f?rret[rs]", true, true},
        {u"f?rrat[rs]", true, false},
        {u"wellknown", true, false},
        {u"\"well known ferrets\"", true, true},
        {u"\"well known badgers\"", true, false},
        {u"don't", false, true},
        {u"don't", true, true},
        {u"won't", true, false},
        {u"cafes", true, true},
        {u"\u6771\u4EAC", true, true},
        {u"\u4EAC\u6771", true, false},
        {u"\u90FD", true, true},
        {u"usa", true, false},
        {u"3.14", false, true},
        {u"3.15", false, false},
        {u"badger OR dig", false, true},
        {u"badger dig", false, false},
        {u"-badger", false, true},
        {u"dig NOT badger", false, true},
        {u"badger XOR dig", false, true},
        {u"dig OPT badger", false, true},
        {u"badger OPT dig", false, false},
        {u"dig NEAR badger", false, false},
        {u"(badger XOR otter) OR (dig -(x y))", false, true},
        {u"()", false, false},
        {u"*", true, true},
    };
    std::vector<char> mayStand, stack;
    for (const auto& c : cases) {
        const QuerySignature query(QueryTerms(c.query, {.wildcard = c.wildcard}), WildcardComparison::Insensitive);
        query.findWords(signature, mayStand);
        EXPECT_EQ(query.mayHold(mayStand, stack), c.mayHold) << String(c.query).utf8();
    }
}

TEST(PageSignature, SaysNothingWhenDamagedOrMadeOtherwise) {
    std::mt19937 random(1);
    const Data whole = detail::signatureOfText(randomPage(random), 3000);
    for (std::size_t i = 0; i < whole.size(); ++i) {
        Data damaged = whole;
        damaged[i] ^= static_cast<std::uint8_t>(1 << random() % 8);
        EXPECT_FALSE(PageSignature(damaged).isWhole()) << i;
        EXPECT_FALSE(PageSignature(Bytes(whole).first(i)).isWhole()) << i;
    }
    EXPECT_TRUE(PageSignature(whole).isWhole());
}

TEST(PageSignature, TakesItsPartOfTheText) {
    EXPECT_TRUE(detail::signatureOfText(u"tea", 3).empty());
    EXPECT_TRUE(detail::signatureOfText(u"", 0).empty());
    for (const char* name : {"cc-about-en.html", "httpd-ja-utf8.html", "httpd-ru-koi8-r.html"}) {
        const String text = String::fromUTF8(test::readPage(name));
        const std::size_t bytes = text.utf8().size();
        EXPECT_LE(detail::signatureOfText(text, bytes).size() + 16, bytes * 6 / 100) << name;
    }
    // Few words need few bits.
    EXPECT_LT(detail::signatureOfText(test::repeated(u"tea ", 100000), 400000).size(), 100u);
}

}  // namespace
}  // namespace velmo
