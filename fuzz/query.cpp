// Queries against texts, with plain words and with wildcards: the input is split at its
// first zero byte, and its first byte chooses how units are compared and whether scripts without
// spaces have words of their own. The parser's tree is
// well formed, evaluation ends, what a query is written as is read again to the same, and
// excerpts hold what they say.
#include <velmocore/query/Occurrences.h>
#include <velmocore/query/QueryDiagnosis.h>
#include <velmocore/query/QueryDump.h>
#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/query/QueryRewriting.h>
#include <velmocore/query/WordSearch.h>

#include <algorithm>
#include <vector>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

/// Hits stand in their order inside the text, and only where the query holds.
void requireHits(const String& text, const std::vector<Range>& hits, bool matches, bool contains) {
    require(hits.empty() || (matches && contains));
    for (std::size_t i = 0; i < hits.size(); ++i) {
        require(hits[i].length > 0 && hits[i].end() <= text.length());
        require(i == 0 || hits[i - 1].location <= hits[i].location);
    }
}

void evaluate(const QueryTerms& terms, const String& text, WildcardComparison comparison) {
    const Case letterCase = letterCaseOf(comparison);
    require(!text.isEmpty() || !terms.matchesString(text, letterCase));
    requireHits(text, hitsOfQueryTerms(text, terms, letterCase),
                terms.matchesString(text, letterCase), terms.containsString(text, letterCase));
    requireHits(text, hitsOfQueryTerms(text, terms, comparison),
                terms.matchesString(text, comparison), terms.containsString(text, comparison));
}

void diagnose(const String& query, bool wildcard) {
    for (const QueryProblem& problem : problemsOfQuery(query, {.wildcard = wildcard}))
        require(problem.range.end() <= query.length() && !problem.text.isEmpty());
}

void rewrite(const QueryTerms& terms, std::uint64_t flags) {
    require(terms.queryTermsForOperators(flags).size() == 1);
    require(!terms.description().isAbsent() && !terms.standardizedQueryTerm().isAbsent());
    dumpOfQueryTerms(terms);
    const std::vector<String> parts = terms.plusParts();
    require(terms.plusTerms().size() == parts.size());
    require(terms.minTermLen() == 0 || !parts.empty());
    require(terms.plusWildcards().has_value() == terms.isValid());
    require(terms.extendedPlusWildcards().has_value() == terms.isValid());
    // Words that were quoted twice, or hold what means something outside quotes, may change.
    const String text = terms.normalizedQueryTerm();
    const auto isPlain = [](char16_t unit) { return unit < 128 && unit != u'"' && unit != u'['; };
    if (std::ranges::all_of(text, isPlain) &&
        text.view().find_first_of(u"&^!~+-]") == text.view().npos)
        require(normalizedQueryTerm(text) == text);
}

void excerpt(const String& text, const std::vector<String>& wildcards,
             WildcardComparison comparison, std::uint64_t limit, bool withinRuns) {
    const String summary = assembleOccurrencesOfWildcards(text, wildcards,
                                                          {.comparison = comparison,
                                                           .paragraphs = limit % 2 == 1,
                                                           .onlyOccurrences = true,
                                                           .ellipsizeAfterNCharacters = limit,
                                                           .withinRuns = withinRuns});
    std::uint64_t behind = 0;
    const auto records = getOccurrencesOfWildcards(text, wildcards,
                                                   {.comparison = comparison,
                                                    .paragraphs = limit % 2 == 1,
                                                    .minEnclosingWords = limit / 8,
                                                    .withinRuns = withinRuns});
    for (const Occurrence& record : records) {
        require(record.range.end() <= text.length() && record.range.end() > behind);
        require(record.string.view().find(text.view().substr(
                    record.range.location, record.range.length)) != std::u16string_view::npos);
        behind = record.range.end();
    }
    require(summary.isEmpty() || !records.empty());
    getOccurrencesOfString(text, text.view().substr(0, limit % 4));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const std::uint8_t choice = data[0];
    const auto comparison = static_cast<WildcardComparison>(choice % 8);
    const auto split = static_cast<std::size_t>(std::find(data, data + size, 0) - data);
    // Many terms on a long text are slow by nature; the target looks for faults.
    const String query = fuzz::unitsOf(data, std::min<std::size_t>(split, 300));
    const String text = fuzz::unitsOf(data + std::min(split + 1, size),
                                      std::min<std::size_t>(size - std::min(split + 1, size), 600));
    const bool withinRuns = (choice & 0x40) != 0;
    for (bool wildcard : {false, true}) {
        const QueryTerms terms(query, {.wildcard = wildcard, .withinRuns = withinRuns});
        evaluate(terms, text, comparison);
        diagnose(query, wildcard);
        rewrite(terms, std::uint64_t{choice} << 10 | split);
        excerpt(text, terms.plusWildcards().value_or(std::vector<String>()), comparison, choice / 8,
                withinRuns);
    }
    queryTermWithoutSiteOperator(query);

    const Range range = rangeOfWord(text, query, Case::Insensitive);
    require(!range.isFound() || range.end() <= text.length());
    require(range.isFound() == (countWord(text, query, Case::Insensitive) > 0));
    return 0;
}
