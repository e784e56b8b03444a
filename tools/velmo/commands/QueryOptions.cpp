#include "QueryOptions.h"

namespace velmo::tool {
namespace {

/// Plain words know no other comparison than by case.
bool isForWildcards(WildcardComparison comparison) {
    return (comparison & WildcardComparison::DiacriticsInsensitive) != WildcardComparison::Exact ||
           isFuzzy(comparison);
}

Case caseOf(WildcardComparison comparison) {
    return isCaseInsensitive(comparison) ? Case::Insensitive : Case::Sensitive;
}

}  // namespace

QueryOptions QueryParseOptions::read() const {
    return {
        .defaultOperator = defaultOperator, .defaultDistance = defaultDistance, .wildcard = !plain};
}

std::vector<Option> queryParseOptions(QueryParseOptions& options) {
    return {
        flag("--plain", options.plain,
             "words are no patterns: * and ? stand for themselves, and [text] is a comment"),
        flag("--strict", options.strict, "fail if the query cannot mean what was written"),
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
               "of NEAR and its like without a number, in words; 10"),
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

Query readQuery(Report& report, const std::string& text, const QueryParseOptions& options,
                WildcardComparison comparison) {
    if (options.plain && isForWildcards(comparison))
        throw UsageError("--plain knows no comparison but exact and case");
    const String query = String::fromUTF8(text);
    QueryTerms terms(query, options.read());
    if (!terms.isValid()) {
        if (options.strict)
            report.fail("query", "nothing to look for");
        else
            report.warn("query", "nothing to look for");
    }
    return {query, std::move(terms), options.plain, comparison};
}

}  // namespace velmo::tool
