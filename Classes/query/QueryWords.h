// Finds the words of a query in a text, as they are written or as wildcards, for those who
// evaluate it.
#pragma once

#include <algorithm>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

#include <velmocore/query/QueryEvaluation.h>

#include "query/QueryTree.h"
#include "query/WildcardTerm.h"
#include "query/WordOccurrences.h"

namespace velmo::detail {

/// For each word node the first one with the same word and mark: what is known of the one
/// holds for the other. Empty if nothing is to be known.
inline std::vector<std::size_t> firstOfSameWords(const QueryTree& tree, bool keeps) {
    std::vector<std::size_t> firsts;
    if (!keeps) return firsts;
    std::unordered_map<std::u16string_view, std::size_t> seen[2];  // without and with the mark
    firsts.reserve(tree.nodes.size());
    for (const QueryNode& node : tree.nodes)
        firsts.push_back(
            seen[node.substring].try_emplace(tree.wordOf(node), firsts.size()).first->second);
    return firsts;
}

/// Finds the words of a tree as they are written.
class PlainWords {
public:
    /// If the words are asked for over and over, as proximity does, their places are kept.
    PlainWords(const QueryTree& tree, std::u16string_view text, Case letterCase, bool keeps)
        : tree_(tree),
          text_(wordTextOf(text, queryTermCharacters(), tree.withinRuns, std::span(&tree.text, 1))),
          letterCase_(letterCase),
          firsts_(firstOfSameWords(tree, keeps)),
          occurrences_(firsts_.size()) {}

    Range find(std::size_t index, std::uint64_t start, std::uint64_t end) {
        const QueryNode& node = tree_.nodes[index];
        const std::u16string_view word = tree_.wordOf(node);
        if (word.empty()) return Range::none();
        if (word.front() == u'*') return {start, word.size()};
        const SoughtWord sought{text_.units,          word,          letterCase_, !node.substring,
                                text_.termCharacters, text_.unspaced};
        const std::uint64_t found = occurrences_.empty()
                                        ? scanForWord(sought, start, end)
                                        : occurrences_[firsts_[index]].find(sought, start, end);
        return found == NotFound ? Range::none() : Range{found, word.size()};
    }

    bool isOneRun(std::size_t index) const {
        const WordText word = wordTextAt(index);
        return !cutsRuns(index) && word.isOneWord();
    }
    bool isApart(std::size_t index) const {
        return isOneRun(index) || (!cutsRuns(index) && wordTextAt(index).isApartFromItself());
    }

    bool isInOrder(std::size_t) const { return true; }

    bool cutsRuns(std::size_t index) const {
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

    const QueryTree& tree_;
    WordText text_;
    Case letterCase_;
    std::vector<std::size_t> firsts_;
    std::vector<WordOccurrences> occurrences_;  // by node
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
