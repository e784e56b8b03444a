// Unlike the mere question whether a query holds, finding what made it hold asks for places again
// and again, so that they are always kept.
#include <velmocore/query/QueryHits.h>

#include "query/HitCollection.h"
#include "query/QueryWords.h"

namespace velmo {
namespace {

template <class Words, class Comparison, class Keeps>
std::vector<Range> hitsOf(std::u16string_view text, const QueryTerms& terms, Comparison comparison,
                          Keeps keeps) {
    if (terms.isAbsent() || text.empty()) return {};
    const detail::QueryTree& tree = detail::QueryTree::of(terms);
    Words words(tree, text, comparison, keeps);
    return detail::HitCollection(tree, words).of(detail::QueryTree::indexOf(terms));
}

}  // namespace

std::vector<Range> hitsOfQueryTerms(std::u16string_view text, const QueryTerms& terms,
                                    Case letterCase) {
    return hitsOf<detail::PlainWords>(text, terms, letterCase, detail::PlacesKept::All);
}

std::vector<Range> hitsOfQueryTerms(std::u16string_view text, const QueryTerms& terms,
                                    WildcardComparison comparison) {
    return hitsOf<detail::WildcardWords>(text, terms, comparison, true);
}

std::vector<Range> hitsOfQueryTerms(std::u16string_view text, const QueryTerms& terms) {
    return terms.hasWildcards() ? hitsOfQueryTerms(text, terms, DefaultComparison)
                                : hitsOfQueryTerms(text, terms, DefaultCase);
}

}  // namespace velmo
