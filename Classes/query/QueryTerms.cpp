// A QueryTerms is a tree that is shared and never changes, and the index of a node in it. So a
// child costs no copy, keeps the whole tree alive, and may be used on any thread.
#include <velmocore/query/QueryTerms.h>

#include "query/QueryTree.h"

namespace velmo {

using detail::QueryNode;
using detail::QueryTree;

namespace {

// What an absent query answers with: one node for all, so that no member needs a branch.
const QueryNode AbsentNode;

QueryTermFields defaultFields(const QueryOptions& options) {
    return {options.defaultOperator, options.defaultDistance, false, false};
}

}  // namespace

QueryTerms::QueryTerms(std::u16string_view query, const QueryOptions& options)
    : QueryTerms(query, options, defaultFields(options)) {}

QueryTerms::QueryTerms(std::u16string_view query, const QueryOptions& options,
                       const QueryTermFields& fields)
    : tree_(std::make_shared<const QueryTree>(detail::parseQuery(query, options, fields))),
      // Nodes are made when they are closed, so the top one is the last.
      index_(tree_->nodes.size() - 1) {}

QueryTerms QueryTerms::queryTermsWithString(const String& query) {
    return query.isAbsent() ? QueryTerms() : QueryTerms(query);
}

QueryTerms QueryTerms::queryTermsWithWildcard(const String& query) {
    return query.isAbsent() ? QueryTerms() : QueryTerms(query, {.wildcard = true});
}

QueryTerms QueryTerms::queryTermsWithWord(std::u16string_view word, const QueryTermFields& fields,
                                          bool phrase) {
    QueryTree tree;
    QueryNode& node = tree.nodes.emplace_back();
    node.count = word.size();
    node.op = fields.queryOperator;
    node.distance = fields.proximityDistance;
    node.negated = fields.queryNot;
    node.substring = fields.querySubstring;
    node.phrase = phrase;
    node.isWord = true;
    tree.text = word;
    return {std::make_shared<const QueryTree>(std::move(tree)), 0};
}

const QueryNode& QueryTerms::node() const noexcept {
    return tree_ ? tree_->nodes[index_] : AbsentNode;
}

bool QueryTerms::isValid() const noexcept { return node().isWord || node().count > 0; }
bool QueryTerms::isWord() const noexcept { return node().isWord; }
bool QueryTerms::hasWildcards() const noexcept { return tree_ && tree_->wildcard; }
QueryOperator QueryTerms::queryOperator() const noexcept { return node().op; }
QueryOperator QueryTerms::commonOperator() const noexcept { return node().common; }
std::size_t QueryTerms::proximityDistance() const noexcept { return node().distance; }
bool QueryTerms::queryNot() const noexcept { return node().negated; }
bool QueryTerms::querySubstring() const noexcept { return node().substring; }
bool QueryTerms::queryPhrase() const noexcept { return node().phrase; }

std::u16string_view QueryTerms::word() const noexcept {
    return tree_ ? tree_->wordOf(node()) : std::u16string_view();
}

std::size_t QueryTerms::numberOfChildren() const noexcept { return isWord() ? 0 : node().count; }

QueryTerms QueryTerms::child(std::size_t index) const {
    if (index >= numberOfChildren()) return {};
    return {tree_, tree_->childrenOf(node())[index]};
}

}  // namespace velmo
