#include <velmocore/query/QueryHits.h>

#include "TestSupport.h"

namespace velmo {
namespace {

/// The words hit, with their places.
std::string shown(std::u16string_view text, const std::vector<Range>& hits) {
    std::string out;
    for (const Range hit : hits)
        out += std::to_string(hit.location) + utf8(text.substr(hit.location, hit.length)) + " ";
    return out;
}

TEST(QueryHits, WhatMadeItTrue) {
    const struct {
        std::u16string_view query, text;
        std::string expected;
    } cases[] = {
        {u"a b", u"a b A x", "0a 2b 4A "},
        {u"a b", u"a x", ""},
        {u"a OR b", u"b x b", "0b 4b "},
        {u"a OPT b", u"a b", "0a "},
        {u"a XOR b", u"x b", "2b "},
        {u"a -b", u"a x", "0a "},
        {u"-(a b)", u"a x", ""},
        {u"a NEAR/1 b", u"a x a b x x b", "4a 6b "},
        {u"a NEAR/1 b NEAR/1 c", u"a b x c b", "0a 2b 6c 8b "},
        {u"a AFTER b", u"a b a", "2b 4a "},
        {u"a NEXT -b", u"a x a b", "0a "},
        {u"(a OR c) BEFORE b", u"a c b c", "0a 2c 4b "},
        {u"-a BEFORE b", u"x b", "2b "},
        {u"\"a b\" c", u"c a b", "0c 2a b "},
        {u"* a", u"x a", "2a "},
    };
    for (const auto& c : cases)
        EXPECT_EQ(shown(c.text, hitsOfQueryTerms(c.text, QueryTerms(c.query))), c.expected) << utf8(c.query);
    const QueryTerms wildcards(u"e-mai? \"t* a\"", {.wildcard = true});
    EXPECT_EQ(shown(u"the, A email", hitsOfQueryTerms(u"the, A email", wildcards)), "0the, A 7email ");
    EXPECT_TRUE(hitsOfQueryTerms(u"a", QueryTerms()).empty());
    EXPECT_TRUE(hitsOfQueryTerms(u"", QueryTerms(u"-a")).empty());
}

TEST(QueryHits, DeepQueries) {
    std::u16string query;
    for (int i = 0; i < 30000; ++i) query += u"(a ";
    query += u"b";
    EXPECT_EQ(hitsOfQueryTerms(u"b a", QueryTerms(query)).size(), 2u);
}

}  // namespace
}  // namespace velmo
