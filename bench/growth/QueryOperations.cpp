// Wildcards, word search, queries and excerpts: a fixed query over the text, and the text as a
// query over a fixed text.
#include <velmocore/query/FuzzyAnalogy.h>
#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryDump.h>
#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/query/QueryRewriting.h>
#include <velmocore/query/WildcardSearch.h>
#include <velmocore/query/WordSearch.h>
#include <velmocore/words/Words.h>

#include <set>
#include <string>
#include <vector>

#include "Growth.h"

namespace velmo::growth {

namespace {

constexpr char16_t FixedText[] = u"The quiz before the fox: aab digs [a-z] caf\u00E9s, word7 (b).";

constexpr WildcardComparison Comparisons[] = {WildcardComparison::Exact,
                                              WildcardComparison::CaseInsensitive,
                                              WildcardComparison::Insensitive};

/// Plain words, frequent ones, and the kinds of wildcards.
const std::vector<std::vector<String>>& wildcardLists() {
    static const std::vector<std::vector<String>> Lists = {
        {u"zebra"},     {u"the"},
        {u"a*"},        {u"*b"},
        {u"*ab*"},      {u"qu?z"},
        {u"a*a*a*b"},   {u"??????b"},
        {u"[!a]*z"},    {u"zz?z", u"the"},
        {u"c++", u"b"}, {u"aa aa b"},
        {u"the quiz"},  {u"a?b", u"*z", u"[x-z]q"},
        {u"\u0301*z"},  {u"\u041C*\u0430", u"zebra"},
    };
    return Lists;
}

const std::vector<QueryTerms>& fixedQueries() {
    static const std::vector<QueryTerms> Queries = [] {
        std::vector<QueryTerms> queries;
        for (const char16_t* query :
             {u"qu?z BEFORE the", u"the NEAR/3 zebra", u"a NEXT b", u"\"a a b\"",
              u"a* AND NOT zz?z", u"(the OR quiz) NEAR (fox OR b)", u"the AFTER/900 qu?z",
              u"a NEAR (b NEAR (c NEAR d))", u"the XOR a", u"~a BEFORE ~b",
              u"the NEAR/100000 word*"})
            queries.emplace_back(query, QueryOptions{.wildcard = true});
        return queries;
    }();
    return Queries;
}

/// Words of scripts without spaces, and what stands beside them.
const std::vector<QueryTerms>& queriesWithinRuns() {
    static const std::vector<QueryTerms> Queries = [] {
        std::vector<QueryTerms> queries;
        for (const char16_t* query :
             {u"\u4E2D\u6587", u"\u4E2D*\u5B57", u"*\u6587", u"\u4E2D*\u6587*\u4E2D*\uAAAA",
              u"?\u6587*", u"[\u4E2D\u5B57]\u6587*\u5B57*", u"\"\u4E2D \u6587\u5B57\"",
              u"\u4E2D NEAR/3 \u5B57\u4E2D", u"\u6587\u5B57 AFTER \u4E2D\u6587",
              u"\u5B57 BEFORE (\u4E2D\u6587 NEAR/2 \u6587)", u"\u4E2D\u6587 NEAR/900 -\u5B57\u5B57",
              u"\u0E17* NEAR a*"})
            queries.emplace_back(query, QueryOptions{.wildcard = true, .withinRuns = true});
        return queries;
    }();
    return Queries;
}

/// Any of 10,000 words that begin alike, and of some that are not plain.
const QueryTerms& anyOfManyWords() {
    static const QueryTerms Query = [] {
        std::u16string query = u"~zebra OR \"the quiz\" OR caf\u00E9";
        for (int i = 0; i < 10000; ++i)
            query += u" OR word" + String::fromUTF8(std::to_string(7 * i));
        return QueryTerms(query);
    }();
    return Query;
}

/// Any of the words of a text.
QueryTerms anyWordOf(std::u16string_view text) {
    std::set<std::u16string> words;
    std::u16string query;
    for (const String& word : wordsUsingDefaultSeparation(String(text)))
        if (words.emplace(word).second) query += u"OR \"" + word + u"\" ";
    return QueryTerms(query);
}

template <class Work>
void eachList(Work work) {
    for (const std::vector<String>& wildcards : wildcardLists()) work(wildcards);
}

constexpr Operation Rows[] = {
    {"wildcards against the whole",
     [](const Input& in) {
         for (const char16_t* wildcard :
              {u"*a*a*b", u"a*a*a*a*b", u"*?*?*?z", u"*[!a]*[a-z]*\u0301z", u"*the*quiz*b"}) {
             use(stringMatchesWildcard(in.text, wildcard));
             use(stringMatchesUnixWildcard(in.text, wildcard));
             use(isCaseInsensitiveLikeUnixWildcard(in.text, wildcard));
         }
     }},
    {"the text as a wildcard",
     [](const Input& in) {
         for (const std::u16string_view text : {u"aaaaaaaaaaaaaaaaaaaaaaaa", FixedText}) {
             use(stringMatchesWildcard(text, in.text));
             use(stringMatchesUnixWildcard(text, in.text));
             use(isCaseInsensitiveLikeUnixWildcard(text, in.text));
         }
     }},
    {"making a wildcard ready",
     [](const Input& in) {
         std::u16string units(in.text);
         use(optimizeWildcard(units));
         use(wildcardType(in.text));
         use(minWildcardLen(in.text));
         use(maxWildcardLen(in.text));
         use(wildcardLength(in.text));
     }},
    {"fuzzy, a fixed word",
     [](const Input& in) { use(stringMatchesUnixWildcardFuzzy(in.text, u"analogy")); }},
    {"wildcards in the text",
     [](const Input& in) {
         eachList([&](const std::vector<String>& wildcards) {
             for (const WildcardComparison comparison : Comparisons)
                 use(forEachWildcard(in.text, wildcards, [](Range) { return true; },
                                     {.comparison = comparison}));
         });
     }},
    {"wildcards backwards",
     [](const Input& in) {
         eachList([&](const std::vector<String>& wildcards) {
             use(forEachWildcardBackwards(in.text, wildcards, [](Range) { return true; }));
         });
     }},
    {"next wildcard",
     [](const Input& in) {
         eachList([&](const std::vector<String>& wildcards) {
             use(containsAnyWildcard(in.text, wildcards));
             use(findNextWildcard(in.text, wildcards));
             use(findPreviousWildcard(in.text, wildcards));
             use(FindWildcardStringInCharacters(in.text, {0, in.text.length()}, wildcards[0]));
             use(FindWildcardInCharacters(in.text, {0, in.text.length()}, wildcards[0],
                                          {.direction = Direction::Backward}));
         });
     }},
    {"fuzzy words in the text",
     [](const Input& in) {
         const std::vector<String> words = {u"zebra", u"analogy"};
         use(containsAnyWildcard(in.text, words, {.comparison = WildcardComparison::Fuzzy}));
     }},
    {"strings of wildcards",
     [](const Input& in) {
         const std::vector<String> wildcards = {u"a*", u"*b", u"the"};
         use(findStringsMatchingWildcards(in.text, wildcards));
     }},
    {"wildcards of the text",
     [](const Input& in) {
         // A part of it, as a prepared word takes many times the memory of its units.
         const auto part = [](const String& text) {
             return text.substring({0, text.length() / 16});
         };
         const std::vector<String> wildcards = {part(in.text), part(in.almost)};
         use(containsAnyWildcard(FixedText, wildcards));
         use(findPreviousWildcard(FixedText, wildcards));
     }},
    {"40 units and another as a wildcard",
     [](const Input& in) {
         // Not half of the text: a match may take as long as pattern times text.
         const std::vector<String> wildcards = {String(in.text.view().substr(0, 40)) + u"\uE001"};
         use(containsAnyWildcard(in.text, wildcards));
     }},
    {"words in the text",
     [](const Input& in) {
         const std::vector<String> words = {u"zebra", u"aab", u"fox b"};
         for (const Case letterCase : {Case::Sensitive, Case::Insensitive}) {
             for (const char16_t* word : {u"the", u"zebra", u"aab", u"a a b", u"a"}) {
                 use(rangeOfWord(in.text, word, letterCase));
                 use(countWord(in.text, word, letterCase));
             }
             use(rangeOfAnyWord(in.text, words, letterCase));
             use(countAnyWord(in.text, words, letterCase));
         }
     }},
    {"next and previous terms",
     [](const Input& in) {
         const std::vector<String> terms = {u"zebra", u"a b c", u"quz"};
         const Range range = {in.text.length() / 2, 0};
         for (const bool exact : {false, true}) {
             use(findNextQueryTerm(terms, in.text, range, {.exactPhrase = exact}));
             use(findPreviousQueryTerm(terms, in.text, range, {.exactPhrase = exact}));
         }
     }},
    {"phrases in the text",
     [](const Input& in) {
         const std::vector<String> words = {u"a", u"a", u"b"}, other = {u"the", u"zebra"};
         for (const Direction direction : {Direction::Forward, Direction::Backward})
             for (const bool exact : {false, true})
                 for (const auto* phrase : {&words, &other})
                     use(FindNonExactPhraseInString(in.text, {0, in.text.length()}, *phrase,
                                                    {.direction = direction, .exact = exact}));
     }},
    {"half and another unit as a phrase",
     [](const Input& in) { use(rangeOfWord(in.text, in.almost, Case::Insensitive)); }},
    {"queries over the text",
     [](const Input& in) {
         for (const QueryTerms& terms : fixedQueries()) {
             use(terms.matchesString(in.text));
             use(terms.containsString(in.text));
         }
     }},
    {"10,000 words in the text",
     [](const Input& in) {
         use(anyOfManyWords().matchesString(in.text));
         use(anyOfManyWords().containsString(in.text));
         use(hitsOfQueryTerms(in.text, anyOfManyWords()));
     }},
    {"the words of the text in it",
     [](const Input& in) {
         const QueryTerms terms = anyWordOf(in.text);
         const QueryTerms others = anyWordOf(in.almost);
         use(terms.matchesString(in.text));
         use(others.containsString(in.text));
         use(hitsOfQueryTerms(in.text, terms));
     }},
    {"hits of queries",
     [](const Input& in) {
         for (const QueryTerms& terms : fixedQueries()) use(hitsOfQueryTerms(in.text, terms));
     }},
    {"queries within runs",
     [](const Input& in) {
         for (const QueryTerms& terms : queriesWithinRuns()) {
             use(terms.matchesString(in.text));
             use(hitsOfQueryTerms(in.text, terms));
             use(assembleOccurrencesOfQueryTerms(
                 in.text, terms, {.ellipsizeAfterNCharacters = 900, .withinRuns = true}));
             use(getOccurrencesOfQueryTerms(in.text, terms,
                                            {.minEnclosingWords = 6, .withinRuns = true}));
         }
     }},
    {"wildcards within runs",
     [](const Input& in) {
         eachList([&](const std::vector<String>& wildcards) {
             const WildcardSearchOptions options{.withinRuns = true};
             const auto goesOn = [](Range) { return true; };
             use(forEachWildcard(in.text, wildcards, goesOn, options));
             use(forEachWildcardBackwards(in.text, wildcards, goesOn, options));
         });
         for (const QueryTerms& terms : queriesWithinRuns()) {
             const WildcardSearchOptions options{.withinRuns = true};
             const auto goesOn = [](Range) { return true; };
             const std::vector<String> wildcards = terms.plusParts();
             use(forEachWildcard(in.text, wildcards, goesOn, options));
             use(forEachWildcardBackwards(in.text, wildcards, goesOn, options));
         }
     }},
    {"excerpts of wildcards",
     [](const Input& in) {
         eachList([&](const std::vector<String>& wildcards) {
             use(assembleOccurrencesOfWildcards(in.text, wildcards));
             use(assembleOccurrencesOfWildcards(
                 in.text, wildcards,
                 {.paragraphs = true, .onlyOccurrences = true, .ellipsizeAfterNCharacters = 900}));
         });
     }},
    {"records of wildcards",
     [](const Input& in) {
         eachList([&](const std::vector<String>& wildcards) {
             use(getOccurrencesOfWildcards(in.text, wildcards));
             use(getOccurrencesOfWildcards(in.text, wildcards,
                                           {.paragraphs = true, .minEnclosingWords = 6}));
         });
     }},
    {"excerpts of queries",
     [](const Input& in) {
         for (const QueryTerms& terms : fixedQueries()) {
             use(assembleOccurrencesOfQueryTerms(in.text, terms));
             use(getOccurrencesOfQueryTerms(in.text, terms));
         }
         use(getOccurrencesOfString(in.text, u"a"));
         use(assembleOccurrencesOfString(in.text, u"aab"));
     }},
    {"reading a query",
     [](const Input& in) {
         for (const bool wildcard : {false, true}) use(QueryTerms(in.text, {.wildcard = wildcard}));
         use(queryTermWithoutSiteOperator(in.text));
     }},
    {"rewriting a query",
     [](const Input& in) {
         const QueryTerms terms(in.text, {.wildcard = true});
         use(terms.plusParts());
         use(terms.plusTerms());
         use(terms.plusWildcards());
         use(terms.extendedPlusWildcards());
         use(terms.minTermLen());
     }},
    {"writing a query",
     [](const Input& in) {
         const QueryTerms terms(in.text, {.wildcard = true});
         use(terms.description());
         use(terms.standardizedQueryTerm());
         use(terms.normalizedQueryTerm());
         use(terms.queryTermsForOperators(RenderAnd | RenderOr | RenderNear | RenderQuotes));
         use(dumpOfQueryTerms(terms));
     }},
    {"the text as a query",
     [](const Input& in) {
         const QueryTerms terms(in.text.substring({0, in.text.length() / 4}), {.wildcard = true});
         use(terms.matchesString(FixedText));
         use(terms.containsString(FixedText));
         use(hitsOfQueryTerms(FixedText, terms));
     }},
};

}  // namespace

std::span<const Operation> queryOperations() { return Rows; }

}  // namespace velmo::growth
