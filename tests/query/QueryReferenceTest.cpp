// Random queries and texts: the library beside a slow transcription of its rules.
#include <velmocore/query/QueryTerms.h>

#include <array>
#include <cstdlib>
#include <span>

#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryDump.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/query/WildcardSearch.h>

#include "TestSupport.h"
#include "query/reference/ExcerptReference.h"
#include "query/reference/QueryReference.h"
#include "query/reference/RewritingReference.h"
#include "query/reference/RunsReference.h"
#include "query/reference/WildcardReference.h"
#include "text/SmallerMachine.h"

namespace velmo {
namespace {

struct RandomCase {
    std::u16string query, text;
    QueryOptions options;
    WildcardComparison comparison = WildcardComparison::Exact;
    std::uint64_t flags = 0;  // of the rendering
    AssemblyOptions assembly;
    std::uint64_t minEnclosingWords = 0;
};

template <std::size_t N>
View anyOf(std::mt19937& random, const View (&parts)[N]) {
    return parts[random() % N];
}

template <std::size_t N>
std::u16string joined(std::mt19937& random, const View (&parts)[N], std::size_t count) {
    std::u16string result;
    while (count-- > 0) result += anyOf(random, parts);
    return result;
}

constexpr View Patterns[] = {u"*",     u"a*",      u"*b",   u"*a*",   u"a?",   u"?",      u"[ab]",
                             u"[^a]*", u"a*b",     u"?b*",  u"[a-c",  u"a]",   u"a-b",    u"*-b",
                             u"a.b.",  u"[|-]",    u"a[b]", u"**",    u"[a]b", u"*[bc]",  u"\"a* b\"",
                             u"ab",    u"\"* b\"", u"a-?",  u"a-b-c", u"?-b",  u"\"a a\""};

/// Anything that a scanner may meet, in any order.
std::u16string randomQuery(std::mt19937& random, bool wildcard) {
    static constexpr View Parts[] = {
        u"a ",      u"b ",    u"c ",         u"A ",      u"ab ",       u"a",        u"b",
        u"(",       u"(",     u"(",          u") ",      u")",         u") ",       u"-",
        u"~",       u"\"",    u"\"a b\" ",   u"[",       u"]",         u" ",        u"NOT ",
        u"OR ",     u"or ",   u"AND ",       u"XOR ",    u"OPT ",      u"NEAR ",    u"NEAR/1 ",
        u"NEAR/2 ", u"NEXT ", u"NEXT/3 ",    u"BEFORE ", u"BEFORE/2 ", u"AFTER ",   u"AFTER/1 ",
        u"NEAR/0 ", u"|",     u"&",          u"^",       u"!",         u"*",        u"a-",
        u"+",       u"-a ",   u"NEAR/1 -b ", u"NEXT -",  u"AFTER/2 (", u"NEAR/2 (", u"a OR b) "};
    std::u16string query;
    for (std::size_t count = 1 + random() % 11; count > 0; --count) {
        query += anyOf(random, Parts);
        if (wildcard && random() % 3 == 0) query.append(anyOf(random, Patterns)).append(u" ");
    }
    return query;
}

/// Well-formed groups in groups, mostly joined by proximity.
void addGroup(std::mt19937& random, std::u16string& query, int depth, bool odd, bool wildcard) {
    static constexpr View Plain[] = {u"a", u"b", u"c"};
    static constexpr View Words[] = {u"a", u"b", u"c", u"a", u"b", u"c", u"~a", u"\"a b\"", u"\" a\"", u"-b"};
    static constexpr View Operators[] = {u" NEAR/1 ", u" NEAR/2 ",  u" NEXT ",     u" NEXT/2 ", u" BEFORE ",
                                         u" AFTER ",  u" AFTER/1 ", u" BEFORE/2 ", u" NEAR/3 ", u" ",
                                         u" OR ",     u" XOR ",     u" OPT "};
    const std::size_t terms = 2 + random() % 2;
    for (std::size_t i = 0; i < terms; ++i) {
        if (i) query += Operators[random() % (std::size(Operators) - (odd ? 0 : 2))];
        if (random() % 12 == 0 && odd) query += u'-';
        if (depth == 0 || random() % 3 == 0) {
            query += wildcard && random() % 2 ? anyOf(random, Patterns)
                     : odd                    ? anyOf(random, Words)
                                              : anyOf(random, Plain);
        } else {
            query += u'(';
            addGroup(random, query, depth - 1, odd, wildcard);
            query += u')';
        }
    }
}

RandomCase randomCase(std::mt19937& random) {
    static constexpr View Words[] = {u"a",  u"b", u"c",   u"A",    u" ",  u" ",  u" ",  u"a ",  u"b ",
                                     u" b", u"-", u"ab ", u"a b ", u"x ", u". ", u"\n", u"bc ", u"aab "};
    static constexpr View Spaced[] = {u"a ", u"b ", u"c ", u"x ", u"a-b ", u"ab ", u"a. ", u"b\r\n", u"Bb ", u"c.a"};
    RandomCase c;
    const bool wildcard = c.options.wildcard = random() % 2 == 0;
    if (random() % 2) {
        c.query = randomQuery(random, wildcard);
        c.text = joined(random, Words, random() % 14);
        if (random() % 4 == 0) c.options.defaultOperator = static_cast<QueryOperator>(random() % 8);
        if (random() % 4 == 0) c.options.defaultDistance = random() % 4;
    } else {
        addGroup(random, c.query, random() % 8 ? 1 : 3, random() % 4 > 0, wildcard);
        c.text = joined(random, Spaced, 2 + random() % 11);
        if (random() % 2) c.text.pop_back();
    }
    c.comparison = static_cast<WildcardComparison>(random() % 4 ? random() % 2 : random() % 8);
    c.flags = random() % 0x40000;
    c.assembly = {.comparison = c.comparison,
                  .paragraphs = random() % 2 == 0,
                  .singleWords = random() % 2 == 0,
                  .onlyOccurrences = true,
                  .separator = random() % 2 ? String(u" / ") : String(),
                  .ellipsizeAfterNCharacters = random() % 2 * (random() % 14)};
    c.minEnclosingWords = random() % 4;
    return c;
}

// The words of a query as wildcards, by the slow search for these.

std::optional<test::RefHit> hitOf(Range range) {
    if (!range.isFound()) return {};
    return test::RefHit{range.location, range.length};
}

test::RefFind refWildcards(const std::u16string& text, WildcardComparison comparison, bool withinRuns) {
    test::RefSearch search{.text = text, .comparison = static_cast<unsigned>(comparison), .acceptStar = true};
    search.withinRuns = withinRuns;
    return [search](const test::RefNode& word, std::size_t start, std::size_t end) mutable {
        search.start = start;
        search.end = end;
        return hitOf(test::refFindString(search, word.word));
    };
}

test::RefNextHit refNextWildcard(const std::u16string& text, const std::vector<std::u16string>& wildcards,
                                 WildcardComparison comparison, bool withinRuns) {
    test::RefSearch search{.text = text, .end = text.size(), .comparison = static_cast<unsigned>(comparison)};
    search.withinRuns = withinRuns;
    return [search, wildcards](std::size_t from) mutable {
        search.start = from;
        return hitOf(test::refNearest(search, wildcards, false));
    };
}

/// What an operation says for the way in which the case compares.
template <class Operation>
auto compared(const RandomCase& c, const Operation& operation) {
    return c.options.wildcard ? operation(c.comparison) : operation(letterCaseOf(c.comparison));
}

test::RefFind refFindOf(const RandomCase& c) {
    return c.options.wildcard ? refWildcards(c.text, c.comparison, c.options.withinRuns)
                              : test::refPlainWords(c.text, letterCaseOf(c.comparison), c.options.withinRuns);
}

// The parts of a case; each gives what differs, or nothing.

std::string evaluationOf(const RandomCase& c, const QueryTerms& terms, const test::RefNode& reference) {
    const test::RefFind find = refFindOf(c);
    const bool expected = test::refMatches(reference, c.text, find, c.options.withinRuns);
    if (expected != compared(c, [&](auto how) { return terms.matchesString(c.text, how); }))
        return "does" + std::string(expected ? " not" : "") + " match";
    const bool contained = test::refContains(reference, c.text, find);
    if (contained != compared(c, [&](auto how) { return terms.containsString(c.text, how); }))
        return "does" + std::string(contained ? " not" : "") + " contain";
    return {};
}

/// Whether a wildcard is found everywhere: a lone star, be it in pieces.
bool isLoneStar(const std::u16string& wildcard) {
    const auto [words, hyphenated] = separatedWildcardWords(String(test::refMasked(wildcard)));
    std::u16string joined = wildcard;
    if (wildcard.size() >= 3 && words.size() > 1) {
        if (!hyphenated) return false;
        joined.clear();
        for (const String& word : words) joined += word;
    }
    return test::refOptimize(joined, 1).wildcard == u"*";
}

std::string hitsOf(const RandomCase& c, const QueryTerms& terms, const test::RefNode& reference) {
    const auto isEverywhere = [&](const test::RefNode& word) {
        return c.options.wildcard ? isLoneStar(word.word) : word.word.starts_with(u'*');
    };
    std::vector<Range> expected;
    for (const test::RefHit& hit : test::refHits(reference, c.text, refFindOf(c), isEverywhere, c.options.withinRuns))
        expected.push_back({hit.location, hit.length});
    const auto found = compared(c, [&](auto how) { return hitsOfQueryTerms(c.text, terms, how); });
    if (found == expected) return {};
    return "has the hits " + testing::PrintToString(found) + " and not " + testing::PrintToString(expected);
}

std::vector<std::u16string> unitsOf(const Strings& strings) { return {strings.begin(), strings.end()}; }

std::string rewritingOf(const RandomCase& c, const QueryTerms& terms, const test::RefNode& reference) {
    const OperatorDictionary none, some = {{u"AND", u"UND"}, {u"-", u"--"}};
    const test::RefDictionary refNone, refSome = {{u"AND", u"UND"}, {u"-", u"--"}};
    const bool plain = c.flags % 2 == 0;
    const String text = terms.queryTermsForOperators(c.flags, plain ? none : some).at(0);
    const std::u16string expected = test::refRender(reference, c.flags, plain ? refNone : refSome);
    if (text != expected) return "written as " + text.utf8() + " and not as " + utf8(expected);
    const auto mask = static_cast<std::uint32_t>(c.flags % 4);
    const std::vector<QueryTerms> plus = terms.plusTerms(mask);
    if (!std::ranges::equal(plus, test::refPlusTerms(reference, mask), {}, &QueryTerms::word,
                            [](const test::RefNode* node) { return View(node->word); }))
        return "has other positive words";
    return {};
}

std::string excerptsOf(const RandomCase& c, const Strings& wildcards) {
    const bool strings = !c.options.wildcard;
    const String sought = wildcards.front();
    const auto next = strings ? test::refNextString(c.text, sought.view(), letterCaseOf(c.comparison))
                              : refNextWildcard(c.text, unitsOf(wildcards), c.comparison, c.options.withinRuns);
    const AssemblyOptions& options = c.assembly;
    const String summary = strings ? assembleOccurrencesOfString(c.text, sought, options)
                                   : assembleOccurrencesOfWildcards(c.text, wildcards, options);
    const auto expected = test::refAssemble(c.text, next,
                                            {options.singleWords, options.paragraphs,
                                             options.separator.isAbsent() ? u" " : std::u16string(options.separator),
                                             options.ellipsizeAfterNCharacters, options.withinRuns});
    if (summary != (expected ? String(*expected) : String()))
        return "has the summary " + summary.utf8() + " and not " + (expected ? utf8(*expected) : "none");
    const OccurrenceOptions how{c.comparison, 1, options.paragraphs, c.minEnclosingWords, false, options.withinRuns};
    std::vector<test::RefRecord> records;
    for (const Occurrence& o :
         strings ? getOccurrencesOfString(c.text, sought, how) : getOccurrencesOfWildcards(c.text, wildcards, how))
        records.push_back({o.range.location, o.range.length, o.line, std::u16string(o.string)});
    return records == test::refOccurrences(c.text, next, options.paragraphs, c.minEnclosingWords, options.withinRuns)
               ? ""
               : "has other occurrences";
}

std::string wildcardsOf(const RandomCase& c, const QueryTerms& terms, const test::RefNode& reference) {
    const auto wildcards = terms.plusWildcards();
    if (wildcards.has_value() != !reference.children.empty()) return "has wildcards or not";
    if (!wildcards) return {};
    if (unitsOf(*wildcards) != test::refPlusWildcards(reference, false)) return "has other wildcards";
    if (c.flags % 8 < 2 && unitsOf(*terms.extendedPlusWildcards()) != test::refPlusWildcards(reference, true))
        return "has other extended wildcards";
    return wildcards->empty() ? std::string() : excerptsOf(c, *wildcards);
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
    for (const auto part : {evaluationOf, hitsOf, rewritingOf, wildcardsOf})
        if (std::string difference = part(c, terms, reference); !difference.empty()) return difference;
    return {};
}

/// The same in letters of scripts without spaces, and of others.
RandomCase caseWithinRuns(std::mt19937& random) {
    RandomCase c = randomCase(random);
    const test::RefScripts scripts(random);
    c.query = scripts(c.query);
    c.text = scripts(c.text);
    // Most spaces go, so that there are runs.
    std::erase_if(c.text, [&](char16_t unit) { return unit == u' ' && random() % 3; });
    c.options.withinRuns = c.assembly.withinRuns = true;
    return c;
}

/// Eight to forty words, most of them joined by OR, with some of everything else between; and a text
/// long enough that the words are sought all at once.
RandomCase caseOfManyWords(std::mt19937& random) {
    static constexpr View Letters[] = {u"a", u"b", u"c", u"A", u"ab", u"d", u"Bc"};
    static constexpr View Others[] = {u"-",        u"~",  u"\"a b\"", u"(b OR ca OR ab) ", u"x-y",
                                      u"*",        u"a*", u"\" a\"",  u"(ba NEAR/2 ",      u"(a OR -bb OR cc) ",
                                      u"a NEXT b", u")",  u"NOT ",    u"(a b OR c) "};
    static constexpr View Operators[] = {u" ", u" XOR ", u" NEAR/3 ", u" AFTER ", u" BEFORE/4 ", u" OPT ", u" NEXT/2 "};
    RandomCase c;
    const auto word = [&] { return joined(random, Letters, 1 + random() % 4); };
    c.options.wildcard = random() % 8 == 0;
    const unsigned oddness = random() % 2 ? 64 : 12;  // one in so many is no plain alternative
    for (std::size_t count = 8 + random() % 33; count > 0; --count) {
        c.query += random() % oddness ? word() : std::u16string(anyOf(random, Others));
        c.query += random() % oddness ? View(u" OR ") : anyOf(random, Operators);
    }
    c.query += word();
    while (c.text.size() < 300) c.text.append(word()).append(random() % 8 ? u" " : u"-, ");
    if (random() % 2) c.text.pop_back();
    if (random() % 2) std::erase(c.text, u'b');
    c.comparison = static_cast<WildcardComparison>(random() % 2);
    return c;
}

/// Words that must stand in a long text, and some that must not, alone, in groups and near each other.
RandomCase caseOfForbiddenWords(std::mt19937& random) {
    static constexpr View Letters[] = {u"a", u"b", u"C", u"d"};
    RandomCase c;
    const auto word = [&](std::size_t length) { return joined(random, Letters, length); };
    const auto common = [&] { return word(1 + random() % 2); };
    const auto rare = [&] { return word(random() % 8 ? 4 : 2); };
    const auto part = [&]() -> std::u16string {
        switch (random() % 10) {
            case 0:
                return u"(" + common() + u" OR " + rare() + u")";
            case 1:
                return u"-(" + rare() + u" OR " + rare() + u")";
            case 2:
                return u"(" + common() + u" NEAR/4 " + common() + u")";
            case 3:
                return u"(" + common() + u" -" + rare() + u" " + common() + u")";
            case 4:
                return u"(-" + common() + u" AFTER/2 (" + common() + u" -" + rare() + u"))";
            case 5:
                return u"(" + rare() + u" XOR " + common() + u")";
            case 6:
                return random() % 2 ? u"~" + common() : u"\"" + common() + u" a\"";
            case 7:
                return common();
            default:
                return u"-" + rare();
        }
    };
    for (std::size_t count = 4 + random() % 4; count > 0; --count) c.query += part() + (random() % 16 ? u" " : u" OR ");
    c.query += common();
    while (c.text.size() < 500) c.text.append(word(1 + random() % 3)).append(random() % 8 ? u" " : u"-, ");
    c.comparison = static_cast<WildcardComparison>(random() % 2);
    return c;
}

/// VELMO_QUERY_CASES sets another number of cases, VELMO_QUERY_SEED other ones.
struct Cases {
    explicit Cases(long usual) {
        const char* wanted = std::getenv("VELMO_QUERY_CASES");
        const char* seed = std::getenv("VELMO_QUERY_SEED");
        count = wanted ? std::atol(wanted) : usual;
        random.seed(seed ? static_cast<unsigned>(std::atol(seed)) : 2024);
    }
    long count;
    std::mt19937 random;
};

std::string described(const RandomCase& c) {
    return "query \"" + utf8(c.query) + "\", text \"" + utf8(c.text) + "\", wildcard " +
           std::to_string(c.options.wildcard) + ", operator " +
           std::to_string(static_cast<int>(c.options.defaultOperator)) + ", distance " +
           std::to_string(c.options.defaultDistance) + ", comparison " +
           std::to_string(static_cast<int>(c.comparison)) + ", flags " + std::to_string(c.flags);
}

TEST(QueryReference, RandomCasesWithinRunsAgree) {
    Cases cases(20000);
    long found = 0;
    for (long i = 0; i < cases.count; ++i) {
        const RandomCase c = caseWithinRuns(cases.random);
        ASSERT_EQ(differenceOf(c), "") << described(c);
        found += QueryTerms(c.query, c.options).matchesString(c.text);
    }
    EXPECT_GT(found, cases.count / 8);
    EXPECT_LT(found, cases.count - cases.count / 8);
}

void expectManyWordsAgree(long usual, RandomCase (*randomCaseOf)(std::mt19937&) = caseOfManyWords) {
    Cases cases(usual);
    long found = 0;
    for (long i = 0; i < cases.count; ++i) {
        const RandomCase c = randomCaseOf(cases.random);
        test::RefNode reference;
        test::refParse(reference, c.query, {reference.op, reference.distance, c.options.wildcard});
        const QueryTerms terms(c.query, c.options);
        for (const auto part : {evaluationOf, hitsOf}) ASSERT_EQ(part(c, terms, reference), "") << described(c);
        found += terms.matchesString(c.text);
    }
    EXPECT_GT(found, cases.count / 8);
    EXPECT_LT(found, cases.count);
}

TEST(QueryReference, ManyWordsAgree) { expectManyWordsAgree(4000); }

TEST(QueryReference, ForbiddenWordsAgree) { expectManyWordsAgree(4000, caseOfForbiddenWords); }

TEST(QueryReference, ManyWordsAgreeOnSmallerMachines) {
    const test::WithoutAvx512 smaller;
    expectManyWordsAgree(2000);
    expectManyWordsAgree(1000, caseOfForbiddenWords);
}

TEST(QueryReference, RandomCasesAgree) {
    auto [count, random] = Cases(200000);
    std::array<long, 2> matches = {};  // without and with wildcards
    for (long i = 0; i < count; ++i) {
        const RandomCase c = randomCase(random);
        ASSERT_EQ(differenceOf(c), "") << described(c);
        if (i < 20000)
            matches[c.options.wildcard] +=
                compared(c, [&](auto how) { return QueryTerms(c.query, c.options).matchesString(c.text, how); });
    }
    // The cases are worth something only if both answers are common.
    if (count < 20000) return;
    for (long some : matches) {
        EXPECT_GT(some, 1500);
        EXPECT_LT(some, 8500);
    }
}

}  // namespace
}  // namespace velmo
