// The commands with queries read them here, so that a query means the same in all of them, and
// what cannot mean what was written is told in the same words. Such a query still runs, as every
// text is one: only --strict, for scripts, makes it a failure.
#include "QueryOptions.h"

#include <fmt/core.h>

#include <velmocore/query/QueryDiagnosis.h>
#include <velmocore/query/QueryHits.h>

namespace velmo::tool {
namespace {

/// Plain words know no other comparison than by case.
bool isForWildcards(WildcardComparison comparison) {
    return (comparison & WildcardComparison::DiacriticsInsensitive) != WildcardComparison::Exact ||
           isFuzzy(comparison);
}

/// The problems with their places, counted from 1 in UTF-16 units.
void explain(Report& report, std::string_view what, const std::vector<QueryProblem>& problems,
             bool strict) {
    for (const QueryProblem& problem : problems) {
        const std::string text =
            fmt::format("at {}: {}", problem.range.location + 1, problem.text.utf8());
        if (strict)
            report.fail(what, text);
        else
            report.warn(what, text);
    }
}

/// Enough for plain words, as readQuery() has refused all other comparisons.
Case caseOf(WildcardComparison comparison) {
    return isCaseInsensitive(comparison) ? Case::Insensitive : Case::Sensitive;
}

}  // namespace

QueryOptions QueryParseOptions::read() const {
    // Patterns unless told otherwise: people who search from a shell expect * to work.
    return {.defaultOperator = defaultOperator,
            .defaultDistance = defaultDistance,
            .wildcard = !plain,
            .withinRuns = !wholeWords};
}

std::vector<Option> queryParseOptions(QueryParseOptions& options) {
    return {
        flag("--plain", options.plain,
             "words are no patterns: * and ? stand for themselves, and [text] is a comment"),
        flag("--strict", options.strict, "fail if the query cannot mean what was written"),
        wholeWordsOption(options.wholeWords),
        choice("--default-operator", "NAME", options.defaultOperator,
               "what joins words that nothing else joins: and, or, xor, near, before, after, "
               "next or opt",
               {{"and", QueryOperator::And},
                {"or", QueryOperator::Or},
                {"xor", QueryOperator::Xor},
                {"near", QueryOperator::Near},
                {"before", QueryOperator::Before},
                {"after", QueryOperator::After},
                {"next", QueryOperator::Next},
                {"opt", QueryOperator::Opt}}),
        number("--default-distance", "N", options.defaultDistance,
               "of NEAR and its like without a number, in words"),
    };
}

bool Query::holdsFor(std::u16string_view units) const {
    return plain ? terms.matchesString(units, caseOf(comparison))
                 : terms.matchesString(units, comparison);
}

bool Query::occursIn(std::u16string_view units) const {
    return plain ? terms.containsString(units, caseOf(comparison))
                 : terms.containsString(units, comparison);
}

std::vector<Range> Query::hitsIn(std::u16string_view units) const {
    return plain ? hitsOfQueryTerms(units, terms, caseOf(comparison))
                 : hitsOfQueryTerms(units, terms, comparison);
}

Option wholeWordsOption(bool& wholeWords) {
    return flag("--whole-words", wholeWords,
                "words of Chinese, Japanese, Thai and their like end at separators only, and are "
                "not found inside what is written without spaces");
}

void explainPattern(Report& report, const String& pattern, bool strict, bool wholeWords) {
    explain(report, "pattern",
            problemsOfWildcard(pattern, {.wildcard = true, .withinRuns = !wholeWords}), strict);
}

Query readQuery(Report& report, const std::string& text, const QueryParseOptions& options,
                WildcardComparison comparison) {
    if (options.plain && isForWildcards(comparison))
        throw UsageError("--plain knows no comparison but exact and case");
    const String query = String::fromUTF8(text);
    explain(report, "query", problemsOfQuery(query, options.read()), options.strict);
    // Read even after a problem that counts as a failure: the run goes on, and ends with 2.
    QueryTerms terms(query, options.read());
    return {query, std::move(terms), options.plain, comparison};
}

}  // namespace velmo::tool
