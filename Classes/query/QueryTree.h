// A parsed query: all nodes in one array, children before their parents. Nothing in it
// points, so that making, walking and dropping a tree of any depth are plain loops.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/query/QueryTerms.h>

#include "query/ManyWords.h"

namespace velmo::detail {

struct QueryNode {
    std::size_t first = 0;  // a word's first unit in text; a group's first entry in children
    std::size_t count = 0;  // of its units or children
    std::uint64_t distance = 0;
    QueryOperator op = QueryOperator::And;
    QueryOperator common = QueryOperator::None;
    bool negated = false;
    bool substring = false;
    bool phrase = false;
    bool isWord = false;

    // What holds for all that is below the node.
    bool hasProximity = false;  // a proximity operator with a distance is at work
    bool isPositive = true;     // no node is negated, and none is joined by XOR
};

struct QueryTree {
    std::vector<QueryNode> nodes;       // the top node is the last
    std::vector<std::size_t> children;  // indexes of nodes, group by group
    bool wildcard = false;              // the words are patterns
    bool withinRuns = false;            // see QueryOptions
    std::u16string text;                // of all words, one after the other
    PreparedWords prepared;             // for searches, once the tree is complete

    std::u16string_view wordOf(const QueryNode& node) const {
        return node.isWord ? std::u16string_view(text).substr(node.first, node.count)
                           : std::u16string_view();
    }
    std::span<const std::size_t> childrenOf(const QueryNode& node) const {
        if (node.isWord) return {};
        return std::span(children).subspan(node.first, node.count);
    }

    /// The tree and the index of a node in it, for those who evaluate it.
    static const QueryTree& of(const QueryTerms& terms) { return *terms.tree_; }
    static std::size_t indexOf(const QueryTerms& terms) { return terms.index_; }
};

/// Parses a query. The fields are those of the top node.
QueryTree parseQuery(std::u16string_view query, const QueryOptions& options,
                     const QueryTermFields& fields);

}  // namespace velmo::detail
