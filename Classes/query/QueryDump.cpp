// The tree as text, for people who want to know why a query means what it does. The nodes that are
// still to be written stand on a stack of their own: a query may be nested as deep as it is long.
#include <velmocore/query/QueryDump.h>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include "query/QueryTree.h"

namespace velmo {
namespace {

using detail::QueryNode;
using detail::QueryTree;

constexpr std::string_view OperatorNames[] = {"AND",   "OR",   "XOR", "NEAR", "BEFORE",
                                              "AFTER", "NEXT", "OPT", "NONE"};
// In levels. Beyond it lines are indented alike, as the output of a deep tree would otherwise grow
// with the square of its depth.
constexpr std::size_t DeepestIndent = 40;

std::string_view nameOf(QueryOperator op) { return OperatorNames[static_cast<std::size_t>(op)]; }

std::string distanceOf(const QueryNode& node) {
    if (!isProximityOperator(node.op)) return {};
    if (node.distance == UnboundedDistance) return "/any";
    return fmt::format("/{}", node.distance);
}

void appendLine(std::string& out, const QueryTree& tree, const QueryNode& node, std::size_t depth) {
    auto end = std::back_inserter(out);
    fmt::format_to(end, "{:{}}{}{} {}{}", "", 2 * std::min(depth, DeepestIndent), nameOf(node.op),
                   distanceOf(node), node.negated ? "-" : "", node.substring ? "~" : "");
    if (!node.isWord) {
        fmt::format_to(end, "group of {} ({})\n", node.count, nameOf(node.common));
    } else {
        const char* quote = node.phrase ? "\"" : "";
        fmt::format_to(end, "{0}{1}{0}\n", quote, utf8(tree.wordOf(node)));
    }
}

}  // namespace

std::string dumpOfQueryTerms(const QueryTerms& terms) {
    std::string out;
    if (terms.isAbsent()) return out;
    struct Pending {
        std::size_t node, depth;
    };
    const QueryTree& tree = QueryTree::of(terms);
    std::vector<Pending> pending = {{QueryTree::indexOf(terms), 0}};
    while (!pending.empty()) {
        const auto [index, depth] = pending.back();
        pending.pop_back();
        const QueryNode& node = tree.nodes[index];
        appendLine(out, tree, node, depth);
        const auto children = tree.childrenOf(node);
        // From the last on, so that the first is on top.
        for (std::size_t i = children.size(); i > 0; --i)
            pending.push_back({children[i - 1], depth + 1});
    }
    return out;
}

}  // namespace velmo
