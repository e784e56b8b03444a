#include "gather/SearchQuery.h"

#include <algorithm>

namespace velmo::detail {

SearchQuery::SearchQuery(const QueryTerms& query, WildcardComparison comparison)
    : query_(query), comparison_(comparison), signature_(query, comparison) {
    std::vector<char> isTaken(signature_.numberOfWords());
    for (const QueryTerms& word : query_.plusTerms()) {
        const std::size_t number = signature_.numberOf(word);
        if (std::exchange(isTaken[number], true)) continue;
        // By itself: what negates it in the query plays no role where it is counted.
        QueryTerms alone =
            !word.queryNot()
                ? word
                : QueryTerms::queryTermsWithWord(
                      word.word(), {.querySubstring = word.querySubstring()}, word.queryPhrase());
        words_.push_back({std::move(alone), number});
    }
}

bool SearchQuery::holdsFor(std::u16string_view text) const {
    return query_.hasWildcards() ? query_.matchesString(text, comparison_)
                                 : query_.matchesString(text, letterCaseOf(comparison_));
}

std::vector<Range> SearchQuery::hitsOf(const QueryTerms& terms, std::u16string_view text) const {
    return query_.hasWildcards() ? hitsOfQueryTerms(text, terms, comparison_)
                                 : hitsOfQueryTerms(text, terms, letterCaseOf(comparison_));
}

}  // namespace velmo::detail
