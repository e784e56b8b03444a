#include <velmocore/query/QueryTerms.h>

#include <velmocore/query/QueryDump.h>

#include "TestSupport.h"

namespace velmo {
namespace {

/// The lines of a dump below the top node, without the blanks before them, joined by " | ";
/// in front the top node's number of children and common operator.
std::string shape(const QueryTerms& terms) {
    std::string result;
    std::string dump = dumpOfQueryTerms(terms);
    for (std::size_t start = 0, end; start < dump.size(); start = end + 1) {
        end = dump.find('\n', start);
        const std::string line = dump.substr(start, end - start);
        if (start > 0) result += " | ";
        const std::size_t indent = line.find_first_not_of(' ');
        result += std::string(indent > 2 ? indent / 2 - 1 : 0, '>') + line.substr(indent);
    }
    const std::string top = "AND group of ";
    return result.starts_with(top) ? result.substr(top.size()) : result;
}

TEST(QueryTerms, Parsing) {
    const std::pair<String, std::string> cases[] = {
        // terms and operators
        {u"a OR b c", "3 (NONE) | AND a | OR b | AND c"},
        {u"\"a or b\"", "1 (NONE) | AND \"a or b\""},
        {u"a xor b EOR c but d OPT e", "5 (NONE) | AND a | XOR b | XOR c | AND d | OPT e"},
        {u"OR a", "1 (NONE) | OR a"},
        // distances
        {u"a after/0 b before/+7x c", "3 (NONE) | AND a | AFTER/0 b | BEFORE/7 c"},
        {u"a NEAR/x b", "2 (NEAR) | AND a | NEAR/0 b"},
        {u"a NEAR/-1 b", "2 (NEAR) | AND a | NEAR/18446744073709551615 b"},
        {u"a NEXT/99999999999999999999 b", "2 (NEXT) | AND a | NEXT/any b"},
        {u"a NEXT NEAR b", "2 (NEAR) | AND a | NEAR/1 b"},
        {u"NEARBY NEAR/ NEXT/ BEFORE/ AFTER1",
         "5 (AND) | AND NEARBY | AND NEAR/ | AND NEXT/ | AND BEFORE/ | AND AFTER1"},
        // marks
        {u"-a +b !c ~d", "4 (AND) | AND -a | AND b | AND -c | AND ~d"},
        {u"a-b a+b a!b a~b", "6 (AND) | AND a-b | AND a+b | AND a | AND -b | AND a | AND ~b"},
        // quotes
        {u"-\" a \u201D~\u201Cb", "2 (AND) | AND -\"a\" | AND ~\"b\""},
        {u"\"\" \" \" -\"\" a", "1 (NONE) | AND a"},
        // parentheses
        {u"~(-a) OR ~(b c)", "2 (OR) | AND -~a | OR ~group of 2 (AND) | >AND b | >AND c"},
        {u"a NEAR/3 (b c)", "2 (NEAR) | AND a | NEAR/3 group of 2 (AND) | >AND b | >AND c"},
        // Parentheses are matched first, whatever stands in them.
        {u"(a \"b) c\" d", "3 (AND) | AND group of 2 (AND) | >AND a | >AND \"b\" | AND c | AND \"d\""},
        // comments
        {u"a[b OR]c]d", "3 (AND) | AND a | AND c | AND d"},
        {u"(a [b) c] d", "3 (AND) | AND a | AND c | AND d"},
        {u" \u2028\uFEFF", "0 (NONE)"},
    };
    for (const auto& [query, expected] : cases) EXPECT_EQ(shape(QueryTerms(query)), expected) << query;
}

TEST(QueryTerms, ParsingOfWildcards) {
    const std::pair<String, std::string> cases[] = {
        {u"a[b c]d e]", "2 (AND) | AND a[b c]d | AND e]"},
        {u"~abc ~*abc* ~abc*", "3 (AND) | AND ~*abc* | AND ~*abc* | AND ~*abc**"},
        {u"~\"a b\" ~*", "2 (AND) | AND ~\"*a b*\" | AND ~*"},
    };
    for (const auto& [query, expected] : cases)
        EXPECT_EQ(shape(QueryTerms(query, {.wildcard = true})), expected) << query;
}

TEST(QueryTerms, Defaults) {
    const QueryOptions options{.defaultOperator = QueryOperator::Near, .defaultDistance = 4};
    EXPECT_EQ(dumpOfQueryTerms(QueryTerms(u"a b OR c (d e)", options)),
              "NEAR/4 group of 4 (NONE)\n  NEAR/4 a\n  NEAR/4 b\n  OR c\n"
              "  NEAR/4 group of 2 (NEAR)\n    NEAR/4 d\n    NEAR/4 e\n");
    const QueryTermFields fields{QueryOperator::Xor, 3, true, true};
    EXPECT_EQ(dumpOfQueryTerms(QueryTerms(u"a", options, fields)), "XOR -~group of 1 (NONE)\n  NEAR/4 a\n");
    EXPECT_EQ(dumpOfQueryTerms(QueryTerms::queryTermsWithWord(u" a OR", fields, true)), "XOR -~\" a OR\"\n");
    EXPECT_EQ(shape(QueryTerms::queryTermsWithWildcard(u"~a")), "1 (NONE) | AND ~*a*");
}

TEST(QueryTerms, Accessors) {
    const QueryTerms absent = QueryTerms::queryTermsWithString(String());
    EXPECT_TRUE(absent.isAbsent());
    EXPECT_FALSE(absent.isValid() || absent.isWord());
    EXPECT_EQ(absent.numberOfChildren(), 0u);
    EXPECT_EQ(dumpOfQueryTerms(absent), "");

    const QueryTerms empty = QueryTerms::queryTermsWithString(u"");
    EXPECT_FALSE(empty.isAbsent() || empty.isValid());

    QueryTerms word;
    {
        const QueryTerms query(u"x AFTER/7 -(~\"a b\") y");
        EXPECT_TRUE(query.isValid());
        EXPECT_EQ(query.commonOperator(), QueryOperator::None);
        word = query.child(1);
    }
    // A node keeps its tree.
    EXPECT_TRUE(word.isWord() && word.isValid());
    EXPECT_EQ(word.word(), u"a b");
    EXPECT_EQ(word.queryOperator(), QueryOperator::After);
    EXPECT_EQ(word.proximityDistance(), 10u);
    EXPECT_TRUE(word.queryNot() && word.querySubstring() && word.queryPhrase());
    EXPECT_EQ(word.numberOfChildren(), 0u);
    EXPECT_TRUE(word.child(0).isAbsent() && absent.child(0).isAbsent());
}

// Neither depth nor what is never closed may cost more than its length.
TEST(QueryTerms, DeepQueries) {
    const std::size_t depth = 100000;
    const auto times = [&](View part) { return test::repeated(part, depth); };
    QueryTerms node = QueryTerms(times(u"(a ") + u"b" + times(u")")).child(0);
    std::size_t levels = 0;
    for (; !node.child(1).isWord(); node = node.child(1)) ++levels;
    EXPECT_EQ(levels, depth - 1);
    EXPECT_EQ(shape(QueryTerms(times(u"(") + u"a b" + times(u")"))),
              "1 (NONE) | AND group of 2 (AND) | >AND a | >AND b");
    EXPECT_EQ(shape(QueryTerms(times(u"-(") + u"a")), "1 (NONE) | AND a");
    for (const char16_t* part : {u"(", u")", u"()", u"(\"", u"([", u"a(", u"~(", u"(a b)", u"\"("})
        EXPECT_FALSE(QueryTerms(times(part)).isAbsent());
}

}  // namespace
}  // namespace velmo
