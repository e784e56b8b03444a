#include <velmocore/query/QueryHits.h>

#include "TestSupport.h"

namespace velmo {
namespace {

/// The words hit, with their places.
std::string shown(View text, const std::vector<Range>& hits) {
    std::string out;
    for (const Range hit : hits)
        out += std::to_string(hit.location) + utf8(text.substr(hit.location, hit.length)) + " ";
    return out;
}

TEST(QueryHits, WhatMadeItTrue) {
    const std::tuple<View, View, std::string> cases[] = {
        {u"a b", u"a b A x", "0a 2b 4A "},
        {u"a XOR b", u"x b", "2b "},
        {u"a NEAR/1 b NEAR/1 c", u"a b x c b", "0a 2b 6c 8b "},
        {u"a NEXT -b", u"a x a b", "0a "},
        {u"-a BEFORE b", u"x b", "2b "},
        {u"\"a b\" c", u"c a b", "0c 2a b "},
    };
    for (const auto& [query, text, expected] : cases)
        EXPECT_EQ(shown(text, hitsOfQueryTerms(text, QueryTerms(query))), expected) << utf8(query);
    const std::tuple<View, View, std::string> wildcards[] = {
        {u"e-mai? \"t* a\"", u"the, A email", "0the, A 7email "},
        // What the second word of the last group asks goes on where the first one's answers ended.
        {u"([^a]* AFTER/1 ab) AFTER (\"a b\" XOR a)", u"a c.ax b a ab ab x a-b ab a-b a-b ", "0a 9a 14ab 17x "},
        // Up to the second a-b, the ab stands for one; in the whole text that one does.
        {u"c OPT (a*b NEAR/2 a-b) BEFORE ~a", u"a-b a. Bb ab x c a-b a.", "10ab 15c 17a "},
    };
    for (const auto& [query, text, expected] : wildcards)
        EXPECT_EQ(shown(text, hitsOfQueryTerms(text, QueryTerms(query, {.wildcard = true}))), expected) << utf8(query);
    EXPECT_TRUE(hitsOfQueryTerms(u"a", QueryTerms()).empty());
    EXPECT_TRUE(hitsOfQueryTerms(u"", QueryTerms(u"-a")).empty());
}

TEST(QueryHits, DeepQueries) {
    EXPECT_EQ(hitsOfQueryTerms(u"b a", QueryTerms(test::repeated(u"(a ", 30000) + u"b")).size(), 2u);
}

}  // namespace
}  // namespace velmo
