#include <velmocore/query/QueryEvaluation.h>

#include <cstdlib>
#include <random>
#include <thread>

#include <velmocore/query/QueryDump.h>

#include "TestSupport.h"
#include "query/EvaluationCore.h"
#include "query/WordScan.h"
#include "query/reference/QueryReference.h"

namespace velmo {
namespace {

using View = std::u16string_view;

TEST(QueryEvaluation, Operators) {
    const struct {
        View query, text;
        bool matches, contains;
    } cases[] = {
        {u"", u"a", false, false},
        {u"a", u"", false, false},
        {u"a b", u"b a", true, true},
        {u"a b", u"a", false, true},
        {u"a OR b", u"b", true, true},
        {u"a XOR b", u"a b", false, true},
        {u"a XOR b XOR c", u"a b c", true, true},
        {u"a OPT b", u"a", true, true},
        {u"a OPT b", u"b", false, true},
        {u"b OPT -b", u"b", true, true},
        {u"-a", u"b", true, false},
        {u"-a", u"a", false, false},
        {u"-(a b)", u"a", true, false},
        {u"-(-a b)", u"a", true, true},
        {u"a b OR c", u"c", true, true},
        {u"c OR a b", u"c", false, true},
        {u"a OR b c OR d", u"d", true, true},
        {u"cat", u"concatenate", false, false},
        {u"~cat", u"concatenate", true, true},
        {u"~(cat)", u"concatenate", true, true},
        {u"~(cat dog)", u"concatenate dogs", false, false},
        {u"*", u"a", true, true},
        {u"\"a b\"", u"a b", true, true},
        {u"\"a b\"", u"a  b", false, false},  // a phrase is taken as it is written
        // windows
        {u"y NEAR/1 z", u"x y z", true, true},
        {u"x NEAR/1 z", u"x y z", false, true},
        {u"x NEAR/2 z", u"x y z", true, true},
        {u"z NEAR/2 x", u"x y z", true, true},
        {u"a NEXT b", u"a b", true, true},
        {u"a NEXT b", u"b a", false, true},
        {u"a NEXT b", u"a x b", false, true},
        {u"a NEXT/2 b", u"a x b", true, true},
        {u"a BEFORE b", u"a x x x b", true, true},
        {u"a BEFORE b", u"b a", false, true},
        {u"a AFTER b", u"b x x a", true, true},
        {u"a AFTER b", u"a b", false, true},
        {u"a AFTER/1 b", u"b x a", false, true},
        {u"a NEAR/0 b", u"a x x x x x b", true, true},
        {u"a NEAR b NEXT c", u"a x b c", true, true},
        {u"a NEAR b NEXT c", u"a x b x c", false, true},
        {u"a NEAR a", u"a", true, true},  // a window holds its word
        // groups on either side
        {u"(a OR b) NEXT c", u"b c", true, true},
        {u"a NEXT (b OR c)", u"x a c", true, true},
        {u"a NEXT (b c)", u"a b c", false, true},
        {u"a NEXT (b c)", u"a b a c", true, true},
        {u"(a NEXT b) NEAR/3 c", u"a b x c", true, true},
        {u"(a NEXT b) NEAR/2 c", u"a b x x c", false, true},
        {u"c NEAR/3 (a NEXT b)", u"c x a b", true, true},
        {u"c NEAR/1 (a NEXT b)", u"x c x a b", false, true},
        {u"a NEXT -(b OR c)", u"a x", true, true},  // the group is negated, not its words
        // negated windows
        {u"a NEAR -b", u"a", true, true},
        {u"a NEAR/2 -b", u"b a b", false, true},
        {u"a NEAR/2 -b", u"a x x x b", true, true},
        {u"a NEAR/1 -b", u"b x x a x x b", true, true},
        {u"a NEXT -b", u"a b a", true, true},
        {u"a NEXT -b", u"a b", false, true},
        {u"a NEXT -b", u"a b a x", true, true},
        {u"-a NEAR b", u"b", true, true},
        {u"-a NEAR/1 b", u"a b", false, true},
        {u"x OPT a NEAR/1 b", u"x b", false, true},   // the sibling before counts, optional or not
        {u"-a NEAR/1 b", u"a b x x b", false, true},  // it must hold for the text, too
        {u"x OPT -a NEAR/1 b", u"a x b x x b", true, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(utf8(c.query) + " / " + utf8(c.text));
        const QueryTerms query(c.query);
        EXPECT_EQ(query.matchesString(c.text, true), c.matches);
        EXPECT_EQ(query.containsString(c.text, true), c.contains);
        EXPECT_EQ(matchesQueryTerms(c.text, query, true), c.matches);
        EXPECT_EQ(containsQueryTerms(c.text, query, true), c.contains);
    }
}

TEST(QueryEvaluation, CaseAbsentAndParts) {
    const QueryTerms query(u"\u00C4b (x OR -Y)");
    EXPECT_FALSE(query.matchesString(u"\u00E4B", true));
    EXPECT_TRUE(query.matchesString(u"\u00E4B", false));
    EXPECT_FALSE(query.matchesString(u"\u00E4B y", false));
    EXPECT_FALSE(matchesQueryTerms(u"a", QueryTerms(), false));
    EXPECT_FALSE(containsQueryTerms(u"a", QueryTerms(), false));
    // A node below the top is a query of its own.
    EXPECT_TRUE(query.child(1).matchesString(u"z", true));
    EXPECT_FALSE(query.child(1).containsString(u"Y", true));
    EXPECT_TRUE(query.child(1).child(1).containsString(u"Y", true));
    EXPECT_FALSE(QueryTerms::queryTermsWithWord(u"", {}).matchesString(u"a", true));
}

TEST(QueryEvaluation, TermCharacters) {
    CharacterSetRep dashes = alphaNumCharacterSetRep();
    dashes.add(u'-');
    const QueryTerms query(u"a NEXT b");
    EXPECT_TRUE(query.matchesString(u"x a-y b", true) == false &&
                QueryTerms(u"y NEXT b").matchesString(u"x a-y b", true));
    setQueryTermCharacters(&dashes);
    EXPECT_FALSE(QueryTerms(u"y NEXT b").matchesString(u"x a-y b", true));
    EXPECT_TRUE(QueryTerms(u"a-y NEXT b").matchesString(u"x a-y b", true));
    setQueryTermCharacters(nullptr);
}

TEST(QueryEvaluation, ThreadsShareAQuery) {
    const QueryTerms query(u"(one NEAR/3 two) OR three");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                EXPECT_TRUE(query.matchesString(u"one and two", true));
                EXPECT_FALSE(query.child(0).matchesString(u"one a b c d two", true));
            }
        });
    for (auto& thread : threads) thread.join();
}

/// Counts what the evaluation asks; finds single words as the plain evaluation does.
struct CountingFinder {
    const detail::QueryTree& tree;
    View text;
    std::uint64_t asked = 0;

    Range find(std::size_t node, std::uint64_t start, std::uint64_t end) {
        ++asked;
        const View word = tree.wordOf(tree.nodes[node]);
        const std::uint64_t found =
            detail::scanForWord({text, word, true, true, alphaNumCharacterSetRep()}, start, end);
        return found == NotFound ? Range::none() : Range{found, word.size()};
    }
    bool isOneRun(std::size_t) const { return true; }
};

std::uint64_t questionsOf(const std::u16string& query, const std::u16string& text, bool expected) {
    const QueryTerms terms(query);
    const detail::QueryTree& tree = detail::QueryTree::of(terms);
    CountingFinder finder{tree, text};
    EXPECT_EQ(detail::QueryEvaluation(tree, text, alphaNumCharacterSetRep(), finder)
                  .matches(detail::QueryTree::indexOf(terms)),
              expected);
    return finder.asked;
}

/// first, then depth times around it: ( ... op a)
std::u16string nested(std::u16string first, View op, int depth) {
    std::u16string opening, rest;
    for (int i = 0; i < depth; ++i) {
        opening += u"(";
        rest.append(op).append(u" a)");
    }
    return opening + first + rest;
}

std::u16string repeated(View part, int count) {
    std::u16string text;
    for (int i = 0; i < count; ++i) text += part;
    return text;
}

// A chain of groups asks its left terms in windows of windows of windows. Asked anew each
// time, these queries would take 12 questions and more to the power of the depth.
TEST(QueryEvaluation, NestedWindowsDoNotMultiply) {
    const int depth = 30, words = 60;
    const auto limit = static_cast<std::uint64_t>(depth) * words * 30 * 30;
    // z is never there; -z holds in no window of two words and more.
    EXPECT_LT(questionsOf(nested(u"z", u" NEAR/5", depth), repeated(u"a ", words), false), 200u);
    EXPECT_LT(questionsOf(nested(u"-z", u" NEAR/5", depth), repeated(u"a z ", words), false), limit);
    EXPECT_LT(questionsOf(nested(u"-z", u" NEAR/3 -", depth), repeated(u"a z ", words), false), limit);
    EXPECT_LT(questionsOf(nested(u"(z XOR z)", u" BEFORE", depth), repeated(u"a z ", words), false), limit);
    EXPECT_LT(questionsOf(nested(u"(-z NEXT a)", u" AFTER", depth) + u" AFTER a", repeated(u"a z ", words), false),
              limit);
}

TEST(QueryEvaluation, DeepTrees) {
    const int depth = 100000;
    EXPECT_TRUE(QueryTerms(nested(u"b", u" AND", depth)).matchesString(u"a b", true));
    EXPECT_FALSE(QueryTerms(nested(u"c", u" OR b AND", depth)).matchesString(u"a", true));
    EXPECT_TRUE(QueryTerms(nested(u"b", u" NEAR", depth)).matchesString(u"a b", true));
    EXPECT_FALSE(QueryTerms(nested(u"c", u" NEAR", depth)).matchesString(u"a b", true));
    for (View text : {u"a b", u"b", u"a a", u"b a c"})
        EXPECT_EQ(QueryTerms(repeated(u"(a NEXT -", depth) + u"b c").matchesString(text, true),
                  QueryTerms(repeated(u"(a NEXT -", 100) + u"b c").matchesString(text, true));
    EXPECT_FALSE(QueryTerms(repeated(u"-(b ", depth) + u"a").containsString(u"c", true));
    const QueryTerms wide(repeated(u"b OR ", depth) + u"a");
    EXPECT_TRUE(wide.matchesString(u"a", true) && wide.containsString(u"a", true));
}

struct RandomCase {
    std::u16string query, text;
    bool caseSensitive;
    QueryOptions options;
};

std::u16string joined(std::mt19937& random, std::span<const View> parts, std::size_t count) {
    std::u16string result;
    while (count-- > 0) result += parts[random() % parts.size()];
    return result;
}

/// Anything that a scanner may meet, in any order.
RandomCase randomCase(std::mt19937& random) {
    static constexpr View Parts[] = {
        u"a ",      u"b ",    u"c ",         u"A ",      u"ab ",       u"a",        u"b",
        u"(",       u"(",     u"(",          u") ",      u")",         u") ",       u"-",
        u"~",       u"\"",    u"\"a b\" ",   u"[",       u"]",         u" ",        u"NOT ",
        u"OR ",     u"or ",   u"AND ",       u"XOR ",    u"OPT ",      u"NEAR ",    u"NEAR/1 ",
        u"NEAR/2 ", u"NEXT ", u"NEXT/3 ",    u"BEFORE ", u"BEFORE/2 ", u"AFTER ",   u"AFTER/1 ",
        u"NEAR/0 ", u"|",     u"&",          u"^",       u"!",         u"*",        u"a-",
        u"+",       u"-a ",   u"NEAR/1 -b ", u"NEXT -",  u"AFTER/2 (", u"NEAR/2 (", u"a OR b) "};
    static constexpr View Words[] = {u"a",  u"b",  u"c",  u"A", u" ",   u" ",    u" ",
                                     u"a ", u"b ", u" b", u"-", u"ab ", u"a b ", u"x "};
    RandomCase c;
    c.query = joined(random, Parts, 1 + random() % 16);
    c.text = joined(random, Words, random() % 14);
    c.caseSensitive = random() % 2 == 0;
    if (random() % 4 == 0) c.options.defaultOperator = static_cast<QueryOperator>(random() % 8);
    if (random() % 4 == 0) c.options.defaultDistance = random() % 4;
    c.options.wildcard = random() % 8 == 0;
    return c;
}

/// Well-formed groups in groups, mostly joined by proximity.
void addGroup(std::mt19937& random, std::u16string& query, int depth, bool odd) {
    static constexpr View Words[] = {u"a", u"b", u"c", u"a", u"b", u"c", u"~a", u"\"a b\"", u"\" a\"", u"-b"};
    static constexpr View Operators[] = {u" NEAR/1 ", u" NEAR/2 ",  u" NEXT ",     u" NEXT/2 ", u" BEFORE ",
                                         u" AFTER ",  u" AFTER/1 ", u" BEFORE/2 ", u" NEAR/3 ", u" ",
                                         u" OR ",     u" XOR ",     u" OPT "};
    const std::size_t terms = 2 + random() % 2;
    for (std::size_t i = 0; i < terms; ++i) {
        if (i) query += Operators[random() % (std::size(Operators) - (odd ? 0 : 2))];
        if (random() % 12 == 0 && odd) query += u'-';
        if (depth == 0 || random() % 3 == 0) {
            query += Words[random() % (odd ? std::size(Words) : 3)];
        } else {
            query += u'(';
            addGroup(random, query, depth - 1, odd);
            query += u')';
        }
    }
}

RandomCase randomGroups(std::mt19937& random) {
    static constexpr View Words[] = {u"a ", u"b ", u"c ", u"x ", u"a-b ", u"ab "};
    RandomCase c;
    addGroup(random, c.query, 1 + static_cast<int>(random() % 3), random() % 4 > 0);
    c.text = joined(random, Words, 2 + random() % 11);
    if (random() % 2) c.text.pop_back();
    c.caseSensitive = random() % 2 == 0;
    return c;
}

/// Where the library and the reference differ; empty if they do not.
std::string differenceOf(const RandomCase& c) {
    test::RefNode reference;
    reference.op = static_cast<int>(c.options.defaultOperator);
    reference.distance = c.options.defaultDistance;
    test::refParse(reference, c.query, {reference.op, reference.distance, c.options.wildcard});
    const QueryTerms terms(c.query, c.options);
    if (const std::string dump = dumpOfQueryTerms(terms); dump != test::refDump(reference))
        return "parsed as\n" + dump + "and not as\n" + test::refDump(reference);
    if (c.options.wildcard) return {};
    const bool expected = test::refMatches(reference, c.text, c.caseSensitive);
    if (terms.matchesString(c.text, c.caseSensitive) != expected)
        return "does" + std::string(expected ? " not" : "") + " match";
    const bool contained = test::refContains(reference, c.text, c.caseSensitive);
    if (terms.containsString(c.text, c.caseSensitive) != contained)
        return "does" + std::string(contained ? " not" : "") + " contain";
    return {};
}

// VELMO_QUERY_CASES sets another number of cases.
TEST(QueryEvaluation, RandomCasesAgreeWithTheReference) {
    const char* wanted = std::getenv("VELMO_QUERY_CASES");
    const long count = wanted ? std::atol(wanted) : 50000;
    std::mt19937 random(2024);
    std::size_t smallest = SIZE_MAX;
    std::string report;
    long matches = 0;
    for (long i = 0; i < count; ++i) {
        const RandomCase c = i % 2 ? randomGroups(random) : randomCase(random);
        const std::string difference = differenceOf(c);
        if (!c.text.empty()) matches += QueryTerms(c.query).matchesString(c.text, true);
        const std::size_t size = c.query.size() + c.text.size();
        if (difference.empty() || size >= smallest) continue;
        smallest = size;
        report = "query \"" + utf8(c.query) + "\", text \"" + utf8(c.text) + "\", " +
                 (c.caseSensitive ? "case-sensitive: " : "any case: ") + difference;
    }
    EXPECT_TRUE(report.empty()) << report;
    // The cases are worth something only if both answers are common.
    EXPECT_GT(matches, count / 10);
    EXPECT_LT(matches, count - count / 10);
}

}  // namespace
}  // namespace velmo
