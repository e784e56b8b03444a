// Wildcards on random patterns and texts beside the slow reference.
#include <velmocore/query/WildcardSearch.h>

#include <cstdlib>

#include <velmocore/query/FuzzyAnalogy.h>

#include "TestSupport.h"
#include "query/reference/RunsReference.h"
#include "query/reference/WildcardReference.h"

namespace velmo {
namespace {

using test::RefSearch;

struct RandomCase {
    std::vector<std::u16string> wildcards;
    RefSearch search;  // with the text
};

RandomCase randomCase(std::mt19937& random) {
    // Meaningless patterns test the rules of sets, meaningful ones the searches.
    static constexpr View Units[] = {u"ab*?[]^-| \u00E4A", u"aab*?", u"aabA\u00E4-* ?", u"[a-b]^*"};
    static constexpr View Parts[] = {u"*", u"*",    u"a",     u"a",    u"b", u"ab", u"[ab]",
                                     u"?", u"[^a]", u"[A-b]", u"[A-]", u" ", u"-"};
    static constexpr View Texts[] = {u"aabbA\u00E4 -.|[]^*?", u"ab ", u"abA -"};
    RandomCase c;
    for (std::size_t i = 1 + random() % 5 / 3; i > 0; --i) {
        std::u16string wildcard;
        if (random() % 4 == 0)
            wildcard = test::randomText(random, Units[random() % std::size(Units)], random() % 9);
        else
            for (std::size_t parts = 1 + random() % 4; parts > 0; --parts)
                wildcard += Parts[random() % std::size(Parts)];
        c.wildcards.push_back(wildcard);
    }
    RefSearch& search = c.search;
    const std::size_t length = random() % 8 ? 2 + random() % 14 : random() % 120;
    search.text = test::randomText(random, Texts[random() % std::size(Texts)], length);
    search.start = random() % 4 ? 0 : random() % (length + 1);
    search.end = random() % 4 ? length : search.start + random() % (length - search.start + 1);
    search.comparison = random() % 8;
    search.minCharacters = random() % 4 ? 1 : random() % 4;
    search.minAnalogy = random() % 2 ? 0.75 : static_cast<double>(random() % 12) / 10;
    search.anchored = random() % 4 == 0;
    search.forward = random() % 3 != 0;
    search.acceptStar = random() % 2 == 0;
    search.starIsWord = random() % 2 == 0;
    return c;
}

/// All hits one after the other, each search going on behind the hit before.
std::vector<Range> refAllHits(RefSearch search, const std::vector<std::u16string>& wildcards) {
    std::vector<Range> hits;
    search.acceptStar = false;
    for (Range hit; (hit = refNearest(search, wildcards, false)).isFound();) {
        hits.push_back(hit);
        (search.forward ? search.start : search.end) = search.forward ? hit.end() : hit.location;
    }
    return hits;
}

/// What the library and the reference disagree about, or "".
std::string differenceOf(const RandomCase& c) {
    const RefSearch& in = c.search;
    const std::u16string& wildcard = c.wildcards[0];
    const auto comparison = static_cast<WildcardComparison>(in.comparison);
    const View head = View(in.text).substr(0, 12);
    const ConversionTable* table = unicharTableForWildcardComparison(comparison);
    const Range range{in.start, in.end - in.start};
    std::string found;
    const auto check = [&](const char* what, const auto& value, const auto& expected) {
        if (found.empty() && value != expected)
            found = std::string(what) + ": " + testing::PrintToString(value) + ", but the reference " +
                    testing::PrintToString(expected);
    };

    check(
        "plain",
        table ? stringMatchesWildcardUsingUnicharTable(head, wildcard, *table) : stringMatchesWildcard(head, wildcard),
        test::refMatchesPlain(head, wildcard, in.comparison));
    check("unix",
          table ? stringMatchesUnixWildcardUsingUnicharTable(head, wildcard, *table)
                : stringMatchesUnixWildcard(head, wildcard),
          test::refMatchesUnix(head, wildcard, in.comparison));
    if (!head.empty() || !wildcard.empty())  // not a number is never the same
        check("analogy",
              table ? stringMatchesUnixWildcardFuzzyUsingUnicharTable(head, wildcard, *table)
                    : stringMatchesUnixWildcardFuzzy(head, wildcard),
              test::refAnalogy(head, wildcard, in.comparison));
    std::u16string compacted = wildcard;
    const OptimizedWildcard optimized = optimizeWildcard(compacted, in.minCharacters);
    const test::RefOptimized expected = test::refOptimize(wildcard, in.minCharacters);
    check("type", static_cast<int>(optimized.type), expected.type);
    check("core", optimized.core, expected.core);
    check("compacted", utf8(compacted), utf8(expected.wildcard));

    setMinWildcardFuzzyAnalogy(in.minAnalogy);
    const Direction direction = in.forward ? Direction::Forward : Direction::Backward;
    check("word",
          FindWildcardInCharacters(in.text, range, wildcard,
                                   {.comparison = comparison,
                                    .minCharacters = in.minCharacters,
                                    .anchored = in.anchored,
                                    .direction = direction,
                                    .acceptStar = in.acceptStar,
                                    .starIsWord = in.starIsWord,
                                    .withinRuns = in.withinRuns}),
          refFind(in, wildcard));
    check("string",
          FindWildcardStringInCharacters(in.text, range, wildcard,
                                         {.comparison = comparison,
                                          .minCharacters = in.minCharacters,
                                          .direction = direction,
                                          .acceptStar = in.acceptStar,
                                          .withinRuns = in.withinRuns}),
          refFindString(in, wildcard));
    const Strings wildcards(c.wildcards.begin(), c.wildcards.end());
    RefSearch starless = in;
    starless.acceptStar = false;
    check("first",
          rangeOfWildcard(in.text, range, wildcards, {comparison, in.minCharacters, direction, true, in.withinRuns}),
          refNearest(starless, c.wildcards, true));
    check("nearest",
          rangeOfWildcard(in.text, range, wildcards, {comparison, in.minCharacters, direction, false, in.withinRuns}),
          refNearest(starless, c.wildcards, false));
    std::vector<Range> hits;
    (in.forward ? forEachWildcard : forEachWildcardBackwards)(in.text, wildcards,
                                                              [&](Range hit) { return hits.push_back(hit), true; },
                                                              {comparison, in.minCharacters, range, in.withinRuns});
    check("all", hits, refAllHits(in, c.wildcards));
    setMinWildcardFuzzyAnalogy(0.75);
    return found;
}

std::string described(const RandomCase& c) {
    std::string line;
    for (const std::u16string& wildcard : c.wildcards) line += "'" + utf8(wildcard) + "' ";
    const RefSearch& in = c.search;
    return line + "in '" + utf8(in.text) + "' from " + std::to_string(in.start) + " to " + std::to_string(in.end) +
           ", comparison " + std::to_string(in.comparison) + ", at least " + std::to_string(in.minCharacters) +
           " and " + std::to_string(in.minAnalogy) + (in.anchored ? ", anchored" : "") +
           (in.forward ? "" : ", backwards") + (in.acceptStar ? ", star" : "") + (in.starIsWord ? " as word" : "");
}

/// The same in letters of scripts without spaces, and of others.
RandomCase caseWithinRuns(std::mt19937& random) {
    RandomCase c = randomCase(random);
    const test::RefScripts scripts(random);
    RefSearch& search = c.search;
    for (std::u16string& wildcard : c.wildcards) wildcard = scripts(wildcard);
    const std::size_t start = scripts(search.text.substr(0, search.start)).size();
    search.end = scripts(search.text.substr(0, search.end)).size();
    search.start = start;
    search.text = scripts(search.text);
    search.withinRuns = true;
    return c;
}

void compareCases(unsigned long usual, RandomCase (*next)(std::mt19937&)) {
    // VELMO_QUERY_CASES sets another number of cases.
    const char* wanted = std::getenv("VELMO_QUERY_CASES");
    const unsigned long cases = wanted ? std::strtoul(wanted, nullptr, 10) : usual;
    std::mt19937 random(2026);
    unsigned long found = 0;
    for (unsigned long i = 0; i < cases; ++i) {
        const RandomCase c = next(random);
        found += refNearest(c.search, c.wildcards, true).isFound();
        ASSERT_EQ(differenceOf(c), "") << "case " << i << ": " << described(c);
    }
    // The cases are worth something only if hits and misses are common.
    EXPECT_GT(found, cases / 5);
    EXPECT_LT(found, cases - cases / 5);
}

TEST(WildcardReference, RandomPatternsAndTexts) { compareCases(200'000, randomCase); }
TEST(WildcardReference, RandomPatternsWithinRuns) { compareCases(20'000, caseWithinRuns); }

}  // namespace
}  // namespace velmo
