// The public questions to a query. They differ in how words are found, as they are written or as
// wildcards, and what is asked: whether the query holds, or whether any of its positive words
// occurs. Places of words are kept only where proximity asks for the same ones over and over.
#include <velmocore/query/QueryEvaluation.h>

#include <atomic>
#include <vector>

#include "query/EvaluationCore.h"
#include "query/PositiveWords.h"
#include "query/QueryWords.h"

namespace velmo {
namespace {

using detail::PlacesKept;
using detail::PlainWords;
using detail::QueryTree;
using detail::WildcardWords;
using detail::WordsAsked;

// Null stands for the usual set, so that nothing needs to be made before main().
std::atomic<const CharacterSetRep*> currentTermCharacters = nullptr;

template <class Words>
bool matches(const QueryTree& tree, std::size_t top, Words&& words) {
    return detail::QueryEvaluation(tree, words.text(), words).matches(top);
}

/// The negation of the top node does not count.
template <class Words>
bool contains(const QueryTree& tree, std::size_t top, std::u16string_view text, Words&& words) {
    if constexpr (requires { words.findsAny({}); }) {
        std::vector<std::size_t> positive;
        detail::anyPositiveWord(tree, top, false, [&](std::size_t word) {
            positive.push_back(word);
            return false;
        });
        return words.findsAny(positive);
    }
    return detail::anyPositiveWord(tree, top, false, [&](std::size_t word) {
        return words.find(word, 0, text.size()).isFound();
    });
}

}  // namespace

const CharacterSetRep& queryTermCharacters() {
    const CharacterSetRep* set = currentTermCharacters.load();
    return set ? *set : alphaNumCharacterSetRep();
}

void setQueryTermCharacters(const CharacterSetRep* set) noexcept { currentTermCharacters = set; }

bool QueryTerms::matchesString(std::u16string_view text, Case letterCase) const {
    if (isAbsent() || text.empty()) return false;
    const bool keeps = node().hasProximity;
    return matches(
        *tree_, index_,
        PlainWords(*tree_, text, letterCase, keeps ? PlacesKept::NearOthers : PlacesKept::None,
                   keeps ? WordsAsked::All : WordsAsked::Alternatives));
}

bool QueryTerms::matchesString(std::u16string_view text, WildcardComparison comparison) const {
    if (isAbsent() || text.empty()) return false;
    return matches(*tree_, index_, WildcardWords(*tree_, text, comparison, node().hasProximity));
}

bool QueryTerms::containsString(std::u16string_view text, Case letterCase) const {
    if (isAbsent() || text.empty()) return false;
    return contains(*tree_, index_, text, PlainWords(*tree_, text, letterCase, PlacesKept::None));
}

bool QueryTerms::containsString(std::u16string_view text, WildcardComparison comparison) const {
    if (isAbsent() || text.empty()) return false;
    return contains(*tree_, index_, text, WildcardWords(*tree_, text, comparison, false));
}

bool QueryTerms::matchesString(std::u16string_view text) const {
    return hasWildcards() ? matchesString(text, DefaultComparison)
                          : matchesString(text, DefaultCase);
}

bool QueryTerms::containsString(std::u16string_view text) const {
    return hasWildcards() ? containsString(text, DefaultComparison)
                          : containsString(text, DefaultCase);
}

}  // namespace velmo
