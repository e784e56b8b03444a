#include <velmocore/query/QueryEvaluation.h>

#include <algorithm>
#include <atomic>

#include "query/EvaluationCore.h"
#include "query/WordOccurrences.h"

namespace velmo {
namespace {

using detail::QueryNode;
using detail::QueryTree;

std::atomic<const CharacterSetRep*> currentTermCharacters = nullptr;

/// Finds the words of a tree as they are written.
class PlainWords {
public:
    /// If the words are asked for over and over, as proximity does, their places are kept.
    PlainWords(const QueryTree& tree, std::u16string_view text, bool caseSensitive, bool keeps)
        : tree_(tree), text_(text), caseSensitive_(caseSensitive) {
        if (keeps) occurrences_.resize(tree.nodes.size());
    }

    Range find(std::size_t index, std::uint64_t start, std::uint64_t end) {
        const QueryNode& node = tree_.nodes[index];
        const std::u16string_view word = tree_.wordOf(node);
        if (word.empty()) return Range::none();
        if (word.front() == u'*') return {start, word.size()};
        const detail::SoughtWord sought{text_, word, caseSensitive_, !node.substring,
                                        termCharacters_};
        const std::uint64_t found = occurrences_.empty()
                                        ? detail::scanForWord(sought, start, end)
                                        : occurrences_[index].find(sought, start, end);
        return found == NotFound ? Range::none() : Range{found, word.size()};
    }

    bool isOneRun(std::size_t index) const {
        const QueryNode& node = tree_.nodes[index];
        const std::u16string_view word = tree_.wordOf(node);
        return !node.substring && !word.empty() && word.front() != u'*' &&
               std::ranges::all_of(word, [&](char16_t u) { return termCharacters_.contains(u); });
    }

    const CharacterSetRep& termCharacters() const { return termCharacters_; }

private:
    const QueryTree& tree_;
    std::u16string_view text_;
    bool caseSensitive_;
    const CharacterSetRep& termCharacters_ = queryTermCharacters();
    std::vector<detail::WordOccurrences> occurrences_;  // by node
};

/// Whether a word below the top node that is not negated there is found. Nodes are taken
/// from the last on, so that each group hands its negation down before it is asked for.
template <class Finds>
bool findsPositiveWord(const QueryTree& tree, std::size_t top, Finds finds) {
    std::vector<bool> isBelow(top + 1), isNegated(top + 1);
    isBelow[top] = true;
    for (std::size_t i = top + 1; i-- > 0;) {
        const QueryNode& node = tree.nodes[i];
        if (!isBelow[i]) continue;
        if (node.isWord && !isNegated[i] && finds(i)) return true;
        for (std::size_t child : tree.childrenOf(node)) {
            isBelow[child] = true;
            isNegated[child] = isNegated[i] != tree.nodes[child].negated;
        }
    }
    return false;
}

}  // namespace

const CharacterSetRep& queryTermCharacters() {
    const CharacterSetRep* set = currentTermCharacters.load();
    return set ? *set : alphaNumCharacterSetRep();
}

void setQueryTermCharacters(const CharacterSetRep* set) noexcept { currentTermCharacters = set; }

bool QueryTerms::matchesString(std::u16string_view text, bool caseSensitive) const {
    if (isAbsent() || text.empty()) return false;
    PlainWords words(*tree_, text, caseSensitive, node().hasProximity);
    return detail::QueryEvaluation(*tree_, text, words.termCharacters(), words).matches(index_);
}

bool QueryTerms::containsString(std::u16string_view text, bool caseSensitive) const {
    if (isAbsent() || text.empty()) return false;
    PlainWords words(*tree_, text, caseSensitive, false);
    return findsPositiveWord(*tree_, index_, [&](std::size_t word) {
        return words.find(word, 0, text.size()).isFound();
    });
}

}  // namespace velmo
