// Finds the words of a query in a text, as they are written or as wildcards, for those who
// evaluate it.
#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <velmocore/query/QueryEvaluation.h>

#include "query/ManyWords.h"
#include "query/QueryTree.h"
#include "query/WildcardTerm.h"
#include "query/WordOccurrences.h"
#include "text/SmallBuffer.h"

namespace velmo::detail {

/// Of which words the places are kept, as these are asked for over and over.
enum class PlacesKept { None, NearOthers, All };

/// Finds the words of a tree as they are written: many of them in one walk over the text.
class PlainWords {
public:
    PlainWords(const QueryTree& tree, std::u16string_view text, Case letterCase, PlacesKept keeps,
               WordsAsked asked = WordsAsked::All)
        : tree_(tree),
          text_(wordTextOf(text, queryTermCharacters(), tree.withinRuns, std::span(&tree.text, 1))),
          letterCase_(letterCase),
          keeps_(keeps),
          many_(tree.prepared.of(tree, text_, letterCase, asked)),
          ownFirsts_(many_ ? std::vector<std::size_t>()
                           : firstOfSameWords(tree, keeps != PlacesKept::None)),
          firsts_(many_ && keeps != PlacesKept::None ? many_->firsts()
                                                     : std::span<const std::size_t>(ownFirsts_)),
          isFound_(many_ ? tree.nodes.size() / 64 + 1 : 0, 0) {
        if (many_) scan_.emplace(*many_, text_);
    }
    PlainWords(const PlainWords&) = delete;
    PlainWords& operator=(const PlainWords&) = delete;

    Range find(std::size_t index, std::uint64_t start, std::uint64_t end) {
        const QueryNode& node = tree_.nodes[index];
        const std::u16string_view word = tree_.wordOf(node);
        if (word.empty()) return Range::none();
        if (word.front() == u'*') return {start, word.size()};
        const SoughtWord sought{text_.units,          word,          letterCase_, !node.substring,
                                text_.termCharacters, text_.unspaced};
        const std::uint64_t found = placeOf(index, sought, start, end);
        return found == NotFound ? Range::none() : Range{found, word.size()};
    }

    /// Whether a group holds in the text, apart from its negation, if its words in the walk tell: one
    /// of those joined by OR that occurs, or of those that must not. To ask for the latter first costs
    /// nothing, as the walk comes by the others as well; and where they occur, they mostly do so
    /// before its end, up to which it goes for a word that is missing.
    std::optional<bool> knownOf(std::size_t group) {
        if (!many_ || keepsPlacesOf(group)) return {};
        if (many_->hasAlternatives(group)) {
            if (occurs(group)) return true;
            return many_->hasAllOf(group) ? std::optional(false) : std::nullopt;
        }
        if (!many_->hasForbidden(group)) return {};
        for (std::size_t child : tree_.childrenOf(tree_.nodes[group]))
            if (many_->isForbidden(child) && occurs(child)) return false;
        return {};
    }

    /// Whether one of the words occurs in the text.
    bool findsAny(std::span<const std::size_t> words) {
        if (many_) {
            std::vector<bool> isWanted(tree_.nodes.size());
            for (std::size_t word : words) isWanted[word] = true;
            bool isFound = false;
            while (!isFound && goOn([&](std::size_t node) { isFound |= isWanted[node]; })) {
            }
            if (isFound) return true;
        }
        return std::ranges::any_of(
            words, [&](std::size_t word) { return find(word, 0, text_.units.size()).isFound(); });
    }

    bool isOneRun(std::size_t index) const {
        if (isShared(index)) return true;
        const WordText word = wordTextAt(index);
        return !cutsRuns(index) && word.isOneWord();
    }
    bool isApart(std::size_t index) const {
        return isOneRun(index) || (!cutsRuns(index) && wordTextAt(index).isApartFromItself());
    }

    bool isInOrder(std::size_t) const { return true; }

    bool cutsRuns(std::size_t index) const {
        if (isShared(index)) return false;
        const QueryNode& node = tree_.nodes[index];
        const std::u16string_view word = tree_.wordOf(node);
        return node.substring || word.empty() || word.front() == u'*';
    }

    /// Whether the word counts as found wherever it is looked for.
    bool isEverywhere(std::size_t index) const {
        return tree_.wordOf(tree_.nodes[index]).starts_with(u'*');
    }

    const WordText& text() const { return text_; }

private:
    WordText wordTextAt(std::size_t index) const {
        return {tree_.wordOf(tree_.nodes[index]), text_.termCharacters, text_.unspaced};
    }

    std::uint64_t placeOf(std::size_t index, const SoughtWord& sought, std::uint64_t start,
                          std::uint64_t end) {
        if (isShared(index) && !keepsPlacesOf(index)) return occurs(index) ? start : NotFound;
        if (firsts_.empty()) return scanForWord(sought, start, end);
        WordOccurrences& occurrences = occurrencesOf(index);
        if (!isShared(index)) return occurrences.find(sought, start, end);
        return occurrences.find(sought, start, end, [&](std::uint64_t from) {
            while (!occurrences.reaches(from) && scan_->scanned() < end && goOn()) {
            }
        });
    }

    /// Most texts are judged before any place is needed.
    WordOccurrences& occurrencesOf(std::size_t node) {
        if (occurrences_.empty()) occurrences_.resize(firsts_.size());
        return occurrences_[firsts_[node]];
    }

    /// Whether the walk for many words has that one.
    bool isShared(std::size_t node) const { return many_ && many_->has(node); }
    /// Of others it is only asked whether they stand in the text as a whole.
    bool keepsPlacesOf(std::size_t node) const {
        return keeps_ == PlacesKept::All ||
               (keeps_ == PlacesKept::NearOthers && many_->isNear(node));
    }

    /// Whether the walk comes by a word, or one of a group.
    bool occurs(std::size_t node) {
        while (!isFound(node) && goOn()) {
        }
        return isFound(node);
    }
    bool isFound(std::size_t node) const { return isFound_[node / 64] >> node % 64 & 1; }
    void setFound(std::size_t node) { isFound_[node / 64] |= std::uint64_t{1} << node % 64; }

    /// Goes on in the walk for many words, and tells the nodes that are found.
    template <class Found>
    bool goOn(Found found) {
        return scan_->goOn([&](std::size_t node, std::uint64_t position) {
            if (!keepsPlacesOf(node)) {
                if (!isFound(node)) scan_->drop(node);
            } else if (firsts_[node] == node) {
                occurrencesOf(node).add(position);
            }
            setFound(node);
            if (const std::size_t group = many_->groupOf(node); group != ManyWords::NoNode)
                setFound(group);
            found(node);
        });
    }
    bool goOn() {
        return goOn([](std::size_t) {});
    }

    const QueryTree& tree_;
    WordText text_;
    Case letterCase_;
    PlacesKept keeps_;
    const ManyWords* many_;  // or null
    std::vector<std::size_t> ownFirsts_;
    std::span<const std::size_t> firsts_;
    std::vector<WordOccurrences> occurrences_;  // by node
    std::optional<ManyWordsScan> scan_;
    SmallBuffer<std::uint64_t, 4> isFound_;  // by node, of the walk
};

/// Finds the words of a tree as wildcards.
class WildcardWords {
public:
    WildcardWords(const QueryTree& tree, std::u16string_view text, WildcardComparison comparison,
                  bool keeps)
        : tree_(tree),
          text_(wordTextOf(text, queryTermCharacters(), tree.withinRuns, std::span(&tree.text, 1))),
          comparison_(comparison),
          firsts_(firstOfSameWords(tree, keeps)),
          occurrences_(firsts_.size()) {}

    Range find(std::size_t index, std::uint64_t start, std::uint64_t end) {
        if (!occurrences_.empty()) return occurrencesOf(index).find(start, end);
        if (start >= end) return Range::none();
        const WildcardTerm term(tree_.wordOf(tree_.nodes[index]), comparison_, 1,
                                text_.unspaced != nullptr);
        return term.find(text_, start, end, {.acceptStar = true});
    }

    bool isOneRun(std::size_t index) { return occurrencesOf(index).isOneRun(); }
    bool isApart(std::size_t index) { return occurrencesOf(index).isApart(); }
    bool isInOrder(std::size_t index) { return occurrencesOf(index).isInOrder(); }
    bool cutsRuns(std::size_t) const { return false; }
    bool isEverywhere(std::size_t index) { return occurrencesOf(index).hasLoneStar(); }

    const WordText& text() const { return text_; }

private:
    WildcardOccurrences& occurrencesOf(std::size_t index) {
        auto& occurrences = occurrences_[firsts_[index]];
        if (!occurrences)
            occurrences = std::make_unique<WildcardOccurrences>(
                text_, tree_.wordOf(tree_.nodes[index]), comparison_, 1, true);
        return *occurrences;
    }

    const QueryTree& tree_;
    WordText text_;
    WildcardComparison comparison_;
    std::vector<std::size_t> firsts_;
    std::vector<std::unique_ptr<WildcardOccurrences>> occurrences_;  // by node
};

}  // namespace velmo::detail
