#include <velmocore/query/QueryRewriting.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(QueryRewriting, FixedDialects) {
    const std::tuple<String, String, String, String> cases[] = {
        {u"", u"", u"", u""},
        {u"A or B", u"A OR B", u"a|b", u"A OR B"},
        {u"a ^ b", u"a XOR b", u"a XOR b", u"a XOR b"},
        {u"a OPT b", u"a OPT b", u"a OPT b", u"a OPT b"},
        {u"-a | !b", u"-a OR -b", u"-a|-b", u"NOT a OR NOT b"},
        {u"a after b before/2 c", u"a b c", u"a AFTER/-1 b BEFORE/2 c", u"a AFTER/-1 b BEFORE/2 c"},
        {u"a next b next/3 -c", u"a b -c", u"a BEFORE/1 b BEFORE/3 -c", u"a NEXT b BEFORE/3 NOT c"},
        {u"~Ab \"C d\"", u"Ab \"C d\"", u"~ab \"c d\"", u"~Ab AND \"C d\""},
        {u"a (b OR (c d)) ((e))", u"a (b OR (c d)) e", u"a (b|(c d)) e", u"a AND (b OR (c AND d)) AND e"},
        {u"-(a b) ~(c d)", u"-(a b) (c d)", u"-(a b) ~(c d)", u"NOT (a AND b) AND ~(c AND d)"},
    };
    for (const auto& [query, standardized, normalized, description] : cases) {
        EXPECT_EQ(standardizedQueryTerm(query), standardized);
        EXPECT_EQ(normalizedQueryTerm(query), normalized);
        EXPECT_EQ(QueryTerms(query).description(), description);
        // What comes out means the same.
        EXPECT_EQ(standardizedQueryTerm(standardized), standardized);
        EXPECT_EQ(normalizedQueryTerm(normalized), normalized);
    }
    EXPECT_EQ(QueryTerms(u"A \u00C4\u00DF", {.defaultOperator = QueryOperator::Near}).normalizedQueryTerm(),
              u"a NEAR/10 \u00E4\u00DF");
    EXPECT_EQ(normalizedWildcardQueryTerm(u"~A [B C]*"), u"~*a* [b c]*");
    EXPECT_EQ(standardizedWildcardQueryTerm(u"a[b c]d"), u"a[b c]d");
    EXPECT_TRUE(standardizedQueryTerm(String()).isAbsent() && queryTermsForOperators(String(), 0).empty());
    EXPECT_EQ(QueryTerms(u"a", {}, {QueryOperator::And, 10, true, true}).description(), u"NOT ~a");
}

TEST(QueryRewriting, FlagsAndDictionary) {
    const std::tuple<String, std::uint64_t, String> cases[] = {
        {u"a -b c", RenderPlus | RenderNegated, u"+a -b +c"},
        {u"(a b) c", RenderPlus | RenderBrackets, u"++(a +b) +c"},
        {u"-a b", 0, u" b"},  // the joiner of a second child stands whether or not the first does
        {u"a -b", RenderNegated | RenderAndNot | RenderNotWord, u"a ANDNOT b"},
        {u"a NEXT/2 b", RenderNext | RenderAnd | RenderNotWord, u"a AND b"},
    };
    for (const auto& [query, flags, expected] : cases)
        EXPECT_EQ(queryTermsForOperators(query, flags), Strings{expected}) << query;
    const OperatorDictionary german = {{u"AND", u"UND"},   {u"OR", u"ODER"}, {u"NOT", u"NICHT"},
                                       {u"NEAR", u"NAHE"}, {u"|", u"//"},    {u"-", u"\u2212"}};
    EXPECT_EQ(queryTermsForOperators(u"a b OR -c NEAR/2 d", 0x287FF, german),
              Strings{u"a UND b ODER NICHT c NAHE/2 d"});
    EXPECT_EQ(wildcardQueryTermsForOperators(u"a | -b*", 0x313FF, german), Strings{u"a//\u2212b*"});
}

TEST(QueryRewriting, PlusWords) {
    const std::tuple<String, std::uint32_t, String, Strings, Strings, std::uint64_t> cases[] = {
        {u"", AllWords, u"", {}, {}, 0},
        {u"a -b \"c d\"", AllWords, u"a c d", {u"a", u"c d"}, {u"a", u"c", u"d"}, 1},
        {u"a ~b", SubstringWords, u"b", {u"b"}, {u"b"}, 1},
        {u"a ~b", WholeWords, u"a", {u"a"}, {u"a"}, 1},
        {u"-aaa bb", AllWords, u"bb", {u"bb"}, {u"bb"}, 2},
        {u"-(a -(b c-d)) OR ee", AllWords, u"b c-d ee", {u"b", u"c-d", u"ee"}, {u"b", u"c", u"d", u"ee"}, 1},
        {u"-a", AllWords, u"", {}, {}, 0},
    };
    for (const auto& [query, kinds, string, parts, words, minTermLen] : cases) {
        SCOPED_TRACE(query.utf8());
        EXPECT_EQ(plusString(query, kinds), string);
        EXPECT_EQ(plusParts(query, kinds), parts);
        EXPECT_EQ(plusWords(query, kinds), words);
        EXPECT_EQ(QueryTerms(query).minTermLen(), minTermLen);
        const std::vector<QueryTerms> terms = plusTerms(query, kinds);
        ASSERT_EQ(terms.size(), parts.size());
        for (std::size_t i = 0; i < terms.size(); ++i) EXPECT_EQ(terms[i].word(), parts[i].view());
    }
    // The negation of the node itself counts for the length only.
    const QueryTerms negated(u"ab", {}, {QueryOperator::And, 10, true, false});
    EXPECT_EQ(negated.plusString(), u"ab");
    EXPECT_EQ(negated.minTermLen(), 0u);
    EXPECT_EQ(plusWildcardString(u"~a [b c]"), u"*a* [b c]");
    EXPECT_EQ(plusWildcardParts(u"~a [b c]", WholeWords), Strings{u"[b c]"});
    EXPECT_EQ(plusWildcardWords(u"a*,[b c]"), (Strings{u"a*", u"[b c]"}));
    EXPECT_EQ(plusWildcardTerms(u"a*").size(), 1u);
    EXPECT_TRUE(plusString(String()).isAbsent());
}

TEST(QueryRewriting, PlusWildcards) {
    const std::tuple<String, Strings, Strings> cases[] = {
        {u"foo-bar", {u"foobar", u"foo bar", u"foo-bar"}, {u"foobar", u"foo bar"}},
        {u"\"foo-bar\"", {u"foo bar", u"foo-bar"}, {u"foo bar"}},
        {u"U.S.A. \"x\"", {u"x", u"USA", u"U S A", u"U.S.A."}, {u"x", u"USA", u"U S A", u"USA x"}},
        {u"-a NEAR b", {}, {}},  // negated with what it stands near
        {u"-(-a NEAR -b)", {u"a", u"b"}, {u"a", u"b", u"a b"}},
    };
    for (const auto& [query, plain, extended] : cases) {
        SCOPED_TRACE(query.utf8());
        EXPECT_EQ(plusWildcards(query), plain);
        EXPECT_EQ(extendedPlusWildcards(query), extended);
    }
    EXPECT_EQ(plusWildcards(u""), std::nullopt);
    EXPECT_EQ(extendedPlusWildcards(String()), std::nullopt);
}

TEST(QueryRewriting, SiteOperator) {
    EXPECT_EQ(queryTermWithoutSiteOperator(u"foo site:bar baz"), u"foo baz");
    EXPECT_EQ(queryTermWithoutSiteOperator(u"Site:bar"), u"Site:bar");
    EXPECT_EQ(queryTermWithoutSiteOperator(u" (a\tsite:b site: OR\n-site:c) "), u"(a OR -site:c)");
    EXPECT_EQ(queryTermWithoutSiteOperator(u"site:a"), u"");
    EXPECT_TRUE(queryTermWithoutSiteOperator(String()).isAbsent());
}

// Time in proportion to the query, and no recursion.
TEST(QueryRewriting, DeepQueries) {
    const std::size_t depth = 100000;
    const std::u16string text = test::repeated(u"(a ", depth) + u"b" + std::u16string(depth, u')');
    const QueryTerms query(text);
    EXPECT_EQ(query.standardizedQueryTerm(), text);
    const String plus = query.queryTermsForOperators(RenderPlus).at(0);
    EXPECT_EQ(plus.length(), 4 * depth + 1);
    EXPECT_TRUE(plus.view().starts_with(u"+a ++a ++a ++a"));
    EXPECT_EQ(query.plusParts().size(), depth + 1);
    EXPECT_EQ(query.plusWildcards(), (Strings{u"a", u"b"}));
    EXPECT_EQ(query.extendedPlusWildcards(), (Strings{u"a", u"b", u"a b"}));
    EXPECT_EQ(query.minTermLen(), 1u);
}

}  // namespace
}  // namespace velmo
