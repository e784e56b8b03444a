// The words that a query asks for, as lists.
#include <algorithm>

#include <velmocore/query/QueryTerms.h>
#include <velmocore/query/Wildcards.h>

#include "query/PositiveWords.h"

namespace velmo {
namespace {

using detail::QueryNode;
using detail::QueryTree;

/// Calls take(index, text) for each positive word of these kinds.
template <class Take>
void forEachPlusWord(const QueryTerms& terms, std::uint32_t kinds, Take take) {
    if (terms.isAbsent()) return;
    const QueryTree& tree = QueryTree::of(terms);
    detail::anyPositiveWord(tree, QueryTree::indexOf(terms), false, [&](std::size_t index) {
        const QueryNode& node = tree.nodes[index];
        if (kinds & (node.substring ? SubstringWords : WholeWords)) take(index, tree.wordOf(node));
        return false;
    });
}

}  // namespace

String QueryTerms::plusString(std::uint32_t kinds) const {
    if (isAbsent()) return {};
    StringBuilder out;
    forEachPlusWord(*this, kinds, [&](std::size_t, std::u16string_view word) {
        if (!out.isEmpty()) out.append(u' ');
        out.append(word);
    });
    return out.finish();
}

std::vector<String> QueryTerms::plusParts(std::uint32_t kinds) const {
    std::vector<String> parts;
    forEachPlusWord(*this, kinds,
                    [&](std::size_t, std::u16string_view word) { parts.emplace_back(word); });
    return parts;
}

std::vector<QueryTerms> QueryTerms::plusTerms(std::uint32_t kinds) const {
    std::vector<QueryTerms> terms;
    forEachPlusWord(*this, kinds, [&](std::size_t index, std::u16string_view) {
        terms.push_back(QueryTerms(tree_, index));
    });
    return terms;
}

std::vector<String> QueryTerms::plusWords(std::uint32_t kinds) const {
    std::vector<String> words;
    forEachPlusWord(*this, kinds, [&](std::size_t, std::u16string_view word) {
        std::ranges::move(wordsUsingWildcardSeparation(word), std::back_inserter(words));
    });
    return words;
}

std::size_t QueryTerms::minTermLen() const {
    if (isAbsent()) return 0;
    constexpr std::uint64_t None = 0x7FFFFFFFFFFFFFFF;
    std::uint64_t shortest = None;
    detail::anyPositiveWord(*tree_, index_, queryNot(), [&](std::size_t index) {
        shortest = std::min<std::uint64_t>(shortest, tree_->nodes[index].count);
        return false;
    });
    return shortest == None ? 0 : shortest;
}

}  // namespace velmo
