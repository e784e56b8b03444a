#include <velmocore/query/QueryDiagnosis.h>

#include "TestSupport.h"

namespace velmo {
namespace {

std::string shown(const std::vector<QueryProblem>& problems) {
    static constexpr const char* Names[] = {"nothing", "hopeless", "quote", "(", ")", "[", "distance", "negative"};
    std::string out;
    for (const QueryProblem& problem : problems) {
        out += std::string(Names[static_cast<int>(problem.kind)]) + "@" + std::to_string(problem.range.location) + "+" +
               std::to_string(problem.range.length) + " ";
        EXPECT_FALSE(problem.text.isEmpty());
    }
    return out;
}

TEST(QueryDiagnosis, Queries) {
    const std::tuple<View, bool, std::string> cases[] = {
        {u"(tea OR \"two cups\") NEAR/5 -a|b [x] NEAR/+2 c", false, ""},
        {u"data* [a-d]?x \"t* ?b\" * c++ e-mai?", true, ""},
        {u"", false, "nothing@0+0 "},
        {u" NEAR/5 ", false, "nothing@0+8 "},
        {u"a \"b c", false, "quote@2+1 "},
        {u"(a (b)", false, "(@0+1 "},
        {u"a) b", false, ")@1+1 "},
        {u"a [b c", false, "[@2+4 "},
        {u"a [b c", true, "[@2+4 "},
        {u"a NEAR/x b AFTER/-5 c BEFORE/3x d", false, "distance@2+6 negative@11+8 distance@22+9 "},
        {u"NEAR/ a", false, ""},  // a word
        {u"a ?? b", true, "hopeless@2+2 "},
        {u"a]b c+* .net \"x ]\"", true, "hopeless@0+3 hopeless@8+4 hopeless@14+3 "},
        {u"a]b c+* .net", false, ""},
        {u"[]", true, "hopeless@0+2 "},
    };
    for (const auto& [query, wildcard, expected] : cases)
        EXPECT_EQ(shown(problemsOfQuery(query, {.wildcard = wildcard})), expected) << utf8(query);
}

TEST(QueryDiagnosis, Wildcards) {
    const std::pair<View, std::string> cases[] = {
        {u"dat* b?se", ""},       {u"c++", ""}, {u" ", "nothing@0+1 "}, {u"[ab", "[@0+3 "}, {u"??", "hopeless@0+2 "},
        {u"a]", "hopeless@0+2 "},
    };
    for (const auto& [wildcard, expected] : cases)
        EXPECT_EQ(shown(problemsOfWildcard(wildcard)), expected) << utf8(wildcard);
}

}  // namespace
}  // namespace velmo
