#include <velmocore/query/QueryEvaluation.h>

#include <thread>

#include "TestSupport.h"
#include "query/EvaluationCore.h"
#include "query/WordScan.h"

namespace velmo {
namespace {

TEST(QueryEvaluation, Operators) {
    const std::tuple<View, View, bool, bool> cases[] = {
        {u"", u"a", false, false},
        {u"a", u"", false, false},
        {u"a XOR b", u"a b", false, true},
        {u"a OPT b", u"b", false, true},
        {u"-(a b)", u"a", true, false},
        {u"a b OR c", u"c", true, true},
        {u"~cat", u"concatenate", true, true},
        {u"~(cat dog)", u"concatenate dogs", false, false},
        {u"\"a b\"", u"a  b", false, false},  // a phrase is taken as it is written
        // windows
        {u"x NEAR/1 z", u"x y z", false, true},
        {u"a NEXT b", u"b a", false, true},
        {u"a AFTER b", u"a b", false, true},
        {u"a NEAR/0 b", u"a x x x x x b", true, true},
        {u"a NEAR b NEXT c", u"a x b x c", false, true},
        {u"a NEAR a", u"a", true, true},  // a window holds its word
        // groups on either side
        {u"a NEXT (b c)", u"a b a c", true, true},
        {u"(a NEXT b) NEAR/2 c", u"a b x x c", false, true},
        {u"a NEXT -(b OR c)", u"a x", true, true},  // the group is negated, not its words
        // negated windows
        {u"a NEAR/2 -b", u"b a b", false, true},
        {u"a NEAR/1 -b", u"b x x a x x b", true, true},
        {u"a NEXT -b", u"a b a x", true, true},
        {u"x OPT a NEAR/1 b", u"x b", false, true},   // the sibling before counts, optional or not
        {u"-a NEAR/1 b", u"a b x x b", false, true},  // it must hold for the text, too
        {u"x OPT -a NEAR/1 b", u"a x b x x b", true, true},
    };
    for (const auto& [units, text, matches, contains] : cases) {
        SCOPED_TRACE(utf8(units) + " / " + utf8(text));
        const QueryTerms query(units);
        EXPECT_EQ(query.matchesString(text, Case::Sensitive), matches);
        EXPECT_EQ(query.containsString(text, Case::Sensitive), contains);
        EXPECT_EQ(matchesQueryTerms(text, query, Case::Sensitive), matches);
        EXPECT_EQ(containsQueryTerms(text, query, Case::Sensitive), contains);
    }
}

TEST(QueryEvaluation, CaseAbsentAndParts) {
    const QueryTerms query(u"\u00C4b (x OR -Y)");
    EXPECT_FALSE(query.matchesString(u"\u00E4B", Case::Sensitive));
    EXPECT_TRUE(query.matchesString(u"\u00E4B", Case::Insensitive));
    EXPECT_FALSE(query.matchesString(u"\u00E4B y", Case::Insensitive));
    EXPECT_FALSE(matchesQueryTerms(u"a", QueryTerms(), Case::Insensitive));
    EXPECT_FALSE(containsQueryTerms(u"a", QueryTerms(), Case::Insensitive));
    // A node below the top is a query of its own.
    EXPECT_TRUE(query.child(1).matchesString(u"z", Case::Sensitive));
    EXPECT_FALSE(query.child(1).containsString(u"Y", Case::Sensitive));
    EXPECT_TRUE(query.child(1).child(1).containsString(u"Y", Case::Sensitive));
    EXPECT_FALSE(QueryTerms::queryTermsWithWord(u"", {}).matchesString(u"a", Case::Sensitive));
}

TEST(QueryEvaluation, Wildcards) {
    const std::tuple<View, View, bool, WildcardComparison> cases[] = {
        {u"D[a-c]t? *BASE", u"data base", true, WildcardComparison::CaseInsensitive},
        {u"arger", u"\u00C4rger", true, WildcardComparison::Insensitive},
        {u"analogy", u"analogie", true, WildcardComparison::Fuzzy},
        {u"analogy", u"anal", false, WildcardComparison::Fuzzy},
        {u"e-mail", u"an email", true, WildcardComparison::Exact},
        {u"[z", u"z", false, WildcardComparison::Exact},
    };
    for (const auto& [units, text, matches, comparison] : cases) {
        SCOPED_TRACE(utf8(units) + " / " + utf8(text));
        const QueryTerms query(units, {.wildcard = true});
        EXPECT_EQ(query.matchesString(text, comparison), matches);
        EXPECT_EQ(matchesQueryTerms(text, query, comparison), matches);
    }
    const QueryTerms query(u"-(a* -b?)", {.wildcard = true});
    EXPECT_TRUE(query.containsString(u"bc", WildcardComparison::Exact));
    EXPECT_FALSE(containsQueryTerms(u"ab", query, WildcardComparison::Exact));
    EXPECT_FALSE(matchesQueryTerms(u"a", QueryTerms(), WildcardComparison::Exact));
    EXPECT_FALSE(query.matchesString(u"", WildcardComparison::Exact));
}

TEST(QueryEvaluation, TermCharacters) {
    CharacterSetRep dashes = alphaNumCharacterSetRep();
    dashes.add(u'-');
    EXPECT_TRUE(QueryTerms(u"y NEXT b").matchesString(u"x a-y b", Case::Sensitive));
    setQueryTermCharacters(&dashes);
    EXPECT_FALSE(QueryTerms(u"y NEXT b").matchesString(u"x a-y b", Case::Sensitive));
    EXPECT_TRUE(QueryTerms(u"a-y NEXT b").matchesString(u"x a-y b", Case::Sensitive));
    setQueryTermCharacters(nullptr);
}

TEST(QueryEvaluation, ThreadsShareAQuery) {
    const QueryTerms query(u"(one NEAR/3 two) OR three");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                EXPECT_TRUE(query.matchesString(u"one and two", Case::Sensitive));
                EXPECT_TRUE(query.matchesString(u"ONE and two", WildcardComparison::Insensitive));
                EXPECT_FALSE(query.child(0).matchesString(u"one a b c d two", Case::Sensitive));
            }
        });
    for (auto& thread : threads) thread.join();
}

using test::repeated;

/// Counts what the evaluation asks; finds single words as the plain evaluation does.
struct CountingFinder {
    const detail::QueryTree& tree;
    View text;
    std::uint64_t asked = 0;

    Range find(std::size_t node, std::uint64_t start, std::uint64_t end) {
        ++asked;
        const View word = tree.wordOf(tree.nodes[node]);
        const std::uint64_t found =
            detail::scanForWord({text, word, Case::Sensitive, true, alphaNumCharacterSetRep()}, start, end);
        return found == NotFound ? Range::none() : Range{found, word.size()};
    }
    bool isOneRun(std::size_t) const { return true; }
    bool isApart(std::size_t) const { return true; }
    bool isInOrder(std::size_t) const { return true; }
    bool cutsRuns(std::size_t) const { return false; }
};

template <bool Remembers = true>
std::uint64_t questionsOf(const std::u16string& query, const std::u16string& text, bool expected) {
    const QueryTerms terms(query);
    const detail::QueryTree& tree = detail::QueryTree::of(terms);
    CountingFinder finder{tree, text};
    detail::QueryEvaluation<CountingFinder, Remembers> evaluation(tree, {text, alphaNumCharacterSetRep()}, finder);
    EXPECT_EQ(evaluation.matches(detail::QueryTree::indexOf(terms)), expected);
    return finder.asked;
}

/// first, then depth times around it: ( ... op a)
std::u16string nested(const std::u16string& first, View op, std::size_t depth) {
    return std::u16string(depth, u'(') + first + repeated(std::u16string(op) + u" a)", depth);
}

// Groups whose left terms are asked in windows of windows of windows. As the sibling before
// counts even if it is optional, nothing but these windows decides.
TEST(QueryEvaluation, NestedWindowsDoNotMultiply) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"-a", u" NEAR/5"}, {u"-a", u" BEFORE"}, {u"-a", u" AFTER"}, {u"(z XOR z)", u" NEAR/9"}};
    const std::size_t words = 60;
    const std::u16string text = repeated(u"a z ", words);
    for (const auto& each : cases) {
        SCOPED_TRACE(utf8(each.first + each.second));
        const auto query = [&each](std::size_t depth) {
            return repeated(u"(a OPT ", depth) + each.first + repeated(each.second + u" a)", depth);
        };
        EXPECT_LT(questionsOf(query(30), text, false), 30 * words * 60);
        // Without its memory the evaluation would fail here: each level multiplies.
        EXPECT_GT(questionsOf<false>(query(4), text, false), 2 * questionsOf(query(4), text, false));
    }
    // Where a part cannot hold more than the whole, the whole is asked first.
    EXPECT_LT(questionsOf(nested(u"z", u" NEAR/5", 30), repeated(u"a ", words), false), 200u);
}

// A pair that is asked for on one stretch after the other, which begin or end together.
TEST(QueryEvaluation, QuestionsGrowWithTheText) {
    const struct {
        std::u16string query, head, part, tail;
    } cases[] = {
        {u"(a BEFORE -b) BEFORE c", u"", u"a b c ", u"a"},
        {u"(a NEAR/2 -b) BEFORE c", u"", u"a b c ", u"a"},
        {u"(a NEXT -b) AFTER c", u"a ", u"a b c ", u""},
        {u"((a XOR q) BEFORE z) BEFORE c", u"", u"b c ", u"a z"},
        {u"((z AFTER b) XOR q) BEFORE c", u"", u"b c ", u"b z"},
        {u"((x BEFORE b) BEFORE c) BEFORE d", u"c c c c c x b ", u"c d ", u"c"},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(utf8(each.query));
        const auto questions = [&each](std::size_t count) {
            const std::u16string text = each.head + repeated(each.part, count) + each.tail;
            return questionsOf(each.query, text, each.query.find(u'x') != View::npos);
        };
        EXPECT_LT(questions(800), 3 * questions(400));
    }
}

TEST(QueryEvaluation, DeepTrees) {
    const std::size_t depth = 100000;
    EXPECT_TRUE(QueryTerms(nested(u"b", u" AND", depth)).matchesString(u"a b", Case::Sensitive));
    EXPECT_FALSE(QueryTerms(nested(u"c", u" OR b AND", depth)).matchesString(u"a", Case::Sensitive));
    EXPECT_TRUE(QueryTerms(nested(u"b", u" NEAR", depth)).matchesString(u"a b", Case::Sensitive));
    EXPECT_FALSE(QueryTerms(nested(u"c", u" NEAR", depth)).matchesString(u"a b", Case::Sensitive));
    for (View text : {u"a b", u"b", u"a a", u"b a c"})
        EXPECT_EQ(QueryTerms(repeated(u"(a NEXT -", depth) + u"b c").matchesString(text, Case::Sensitive),
                  QueryTerms(repeated(u"(a NEXT -", 100) + u"b c").matchesString(text, Case::Sensitive));
    EXPECT_FALSE(QueryTerms(repeated(u"-(b ", depth) + u"a").containsString(u"c", Case::Sensitive));
    const QueryTerms wildcards(nested(u"b*", u" NEAR", depth), {.wildcard = true});
    EXPECT_TRUE(wildcards.matchesString(u"a bc", WildcardComparison::Exact));
    EXPECT_FALSE(wildcards.matchesString(u"a c", WildcardComparison::Exact));
    const QueryTerms wide(repeated(u"b OR ", depth) + u"a");
    EXPECT_TRUE(wide.matchesString(u"a", Case::Sensitive) && wide.containsString(u"a", Case::Sensitive));
}

}  // namespace
}  // namespace velmo
