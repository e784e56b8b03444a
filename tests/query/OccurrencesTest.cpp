#include <velmocore/query/Occurrences.h>

#include "TestSupport.h"

namespace velmo {
namespace {

constexpr auto AnyCase = WildcardComparison::CaseInsensitive;

TEST(Occurrences, Summaries) {
    const std::tuple<String, Strings, AssemblyOptions, String> cases[] = {
        {u"Foo. Foo bar. Foo bar.", {u"foo"}, {.comparison = AnyCase}, u"Foo bar"},
        {u"Foo. Foo bar.", {u"foo"}, {.comparison = AnyCase, .singleWords = true}, u"Foo Foo bar"},
        {u"Foo bar. Foo.", {u"fo"}, {}, u"Foo bar. Foo."},             // no hit: the text
        {u"Foo. Bar", {u"Foo"}, {.onlyOccurrences = true}, String()},  // no more than the hit
        {u"short", {u"x"}, {.ellipsizeAfterNCharacters = 5}, u"short"},
        {u"one two three", {u"x"}, {.ellipsizeAfterNCharacters = 9}, u"one two..."},
        {u"one two three", {}, {.ellipsizeAfterNCharacters = 9}, u"one two..."},
        // limits
        {u"a b. a c. a d.", {u"a"}, {.ellipsizeAfterNCharacters = 8}, u"a b a c"},
        {u"a b. a cc dd", {u"a"}, {.ellipsizeAfterNCharacters = 10}, u"a b a cc d..."},
        {u"one two three four five six", {u"four"}, {.ellipsizeAfterNCharacters = 5}, u" four..."},
        // beside what is described
        {u"See v2.4 at a.org. No? A?!\" b", {u"a*"}, {.strictSentenceEnds = true}, u"See v2.4 at a.org A?!\" b"},
        {u"a 1. x 2. a 3. a 4", {u"a"}, {.separator = u", ", .gapSeparator = u" ... "}, u"a 1 ... a 3, a 4"},
        {u"a \U0001F600b c d e", {u"a"}, {.ellipsizeAfterNCharacters = 3, .keepsPairs = true}, u"a ..."},
        {u"b \U0001F600 a c d e", {u"a"}, {.ellipsizeAfterNCharacters = 3, .keepsPairs = true}, u"\U0001F600 a..."},
    };
    for (const auto& [text, wildcards, options, expected] : cases)
        EXPECT_EQ(assembleOccurrencesOfWildcards(text, wildcards, options), expected) << text;
    const String text = u"short";
    EXPECT_TRUE(assembleOccurrencesOfWildcards(text, {}, {.ellipsizeAfterNCharacters = 5}).isIdenticalTo(text));
    EXPECT_EQ(assembleOccurrencesOfString(u"Xaax y. z", u"AA", {.comparison = AnyCase}), u"Xaax y");
    EXPECT_EQ(assembleOccurrencesOfString(u"Xaax", u"AA", {.comparison = AnyCase, .onlyOccurrences = true}), u"Xaax");
    EXPECT_TRUE(assembleOccurrencesOfString(u"Xaax", u"", {.onlyOccurrences = true}).isAbsent());
}

/// line:location,length:text of each record.
std::string listed(const std::vector<Occurrence>& records) {
    std::string out;
    for (const Occurrence& o : records)
        out += std::to_string(o.line) + ":" + std::to_string(o.range.location) + "," + std::to_string(o.range.length) +
               ":" + o.string.utf8() + ";";
    return out;
}

TEST(Occurrences, Records) {
    const std::tuple<String, OccurrenceOptions, std::string> cases[] = {
        {u"a x\r\n\r\nb a\rc\na", {}, "0:0,3:a x;2:7,3:b a;4:13,1:a;"},
        {u"", {}, ""},
        // across boundaries
        {u"p q. r a. s t u. v", {.minEnclosingWords = 3}, "0:0,15:...p q. r a. s t u...;"},
        {u". a .", {.minEnclosingWords = 2}, "0:2,1:a;"},  // nothing is left out
        {u"p\na q\nr s", {.paragraphs = true, .minEnclosingWords = 1}, "0:0,5:...p\na q;"},
    };
    for (const auto& [text, options, expected] : cases)
        EXPECT_EQ(listed(getOccurrencesOfWildcards(text, Strings{u"a"}, options)), expected) << text;
    EXPECT_EQ(listed(getOccurrencesOfString(u"xax.x\nXA", u"XA", {.comparison = AnyCase})), "0:0,3:xax;1:6,2:XA;");
    EXPECT_EQ(listed(getOccurrencesOfString(u"a-b. -", u"-", {.minEnclosingWords = 1})), "0:0,3:a-b;0:0,6:...a-b. -;");
    EXPECT_TRUE(getOccurrencesOfString(u"a", u"").empty());
}

// Many hits and a rare wildcard do not make the time the square of the text.
TEST(Occurrences, LongTexts) {
    const std::u16string text = test::repeated(u"a b. ", 200000);
    const Strings wildcards = {u"*zz*", u"no-such", u"no such", u"a"};
    EXPECT_EQ(getOccurrencesOfWildcards(text, wildcards).size(), 200000u);
    EXPECT_EQ(getOccurrencesOfWildcards(text, wildcards, {.minEnclosingWords = 1000000}).size(), 1u);
    EXPECT_EQ(assembleOccurrencesOfWildcards(text, wildcards), u"a b");
}

TEST(Occurrences, OfQueries) {
    const String text = u"One cat. A dog, far from the mat. Her cat on my mat.";
    const QueryTerms query(u"cat BEFORE/3 mat");
    EXPECT_EQ(assembleOccurrencesOfQueryTerms(text, query), u"Her cat on my mat");
    EXPECT_EQ(listed(getOccurrencesOfQueryTerms(text, query)), "0:34,17:Her cat on my mat;");
    EXPECT_EQ(assembleOccurrencesOfQueryTerms(text, QueryTerms(u"c?t mat -dog", {.wildcard = true}),
                                              {.onlyOccurrences = true}),
              String());
    const std::vector<Range> hits = {{4, 3}, {11, 3}};
    EXPECT_EQ(listed(getOccurrencesOfHits(text, hits)), "0:0,7:One cat;0:9,23:A dog, far from the mat;");
}

TEST(Occurrences, PartsOfASummaryStandInTheText) {
    const String text = u"One cat sat. A dog, far from the mat; it sat. Another cat, here and there. A cat.";
    std::vector<Range> hits;
    for (std::size_t at = 0; (at = text.view().find(u"cat", at)) != View::npos; ++at) hits.push_back({at, 3});
    for (const bool only : {false, true})
        for (std::size_t limit = 0; limit < text.length() + 4; ++limit) {
            const AssemblyOptions options = {.onlyOccurrences = only, .ellipsizeAfterNCharacters = limit};
            const Summary summary = summaryOfHits(text, hits, options);
            EXPECT_EQ(summary.string, assembleOccurrencesOfHits(text, hits, options));
            EXPECT_FALSE(summary.parts.empty());
            for (const auto& [range, start] : summary.parts)
                EXPECT_EQ(summary.string.view().substr(start, range.length),
                          text.view().substr(range.location, range.length))
                    << limit;
        }
}

}  // namespace
}  // namespace velmo
