// The words of a query that are not negated, in their order.
#pragma once

#include <vector>

#include "query/QueryTree.h"

namespace velmo::detail {

/// Calls word(index) for each positive word from a node on down, until it gives true, and
/// tells whether it did. Whether the top node counts as negated is the caller's affair.
template <class Word>
bool anyPositiveWord(const QueryTree& tree, std::size_t top, bool isTopNegated, Word word) {
    struct Pending {
        std::size_t node;
        bool negated;
    };
    std::vector<Pending> pending = {{top, isTopNegated}};
    while (!pending.empty()) {
        const Pending next = pending.back();
        pending.pop_back();
        const QueryNode& node = tree.nodes[next.node];
        if (node.isWord && !next.negated && word(next.node)) return true;
        const auto children = tree.childrenOf(node);
        for (std::size_t i = children.size(); i > 0; --i) {
            const std::size_t child = children[i - 1];
            pending.push_back({child, next.negated != tree.nodes[child].negated});
        }
    }
    return false;
}

}  // namespace velmo::detail
