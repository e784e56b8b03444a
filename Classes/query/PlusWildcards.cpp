// The words that a query asks for, as patterns to look for in a text.
#include <algorithm>
#include <array>

#include <velmocore/query/QueryTerms.h>
#include <velmocore/query/Wildcards.h>

#include "query/JoinedWords.h"
#include "query/QueryTree.h"

namespace velmo {
namespace {

using detail::QueryNode;
using detail::QueryTree;

using detail::joinedWords;

class PlusWildcards {
public:
    PlusWildcards(const QueryTree& tree, bool extended) : tree_(tree), extended_(extended) {}

    std::vector<String> of(std::size_t top) {
        valueOf(top, tree_.nodes[top].negated);
        // No group has a value, so it does not matter when it is looked at.
        while (!groups_.empty()) {
            const Group group = groups_.back();
            groups_.pop_back();
            addGroup(group);
        }
        // Short ones first, and equal ones beside each other to be made one.
        std::ranges::sort(found_, [](const String& a, const String& b) {
            return a.length() != b.length() ? a.length() < b.length() : a < b;
        });
        found_.erase(std::unique(found_.begin(), found_.end()), found_.end());
        return std::move(found_);
    }

private:
    struct Group {
        std::size_t node;
        bool negated;
    };

    /// The form of a word that stands for it in pairs; absent for a group and for a word
    /// that is negated or has nothing to look for.
    String valueOf(std::size_t index, bool negated) {
        const QueryNode& node = tree_.nodes[index];
        if (node.isWord) return negated ? String() : addWord(node);
        groups_.push_back({index, negated});
        return {};
    }

    String addWord(const QueryNode& node) {
        const String text(tree_.wordOf(node));
        const auto [words, hyphenated] = separatedWildcardWords(text);
        if (words.empty()) return {};
        if (!extended_) found_.push_back(text);
        String value = words.size() == 1 ? words.front() : joinedWords(words, u" ");
        found_.push_back(value);
        if (hyphenated && !node.phrase) found_.push_back(value = joinedWords(words, u""));
        return value;
    }

    void addGroup(const Group& group) {
        const auto children = tree_.childrenOf(tree_.nodes[group.node]);
        String left;
        for (std::size_t i = 0; i < children.size(); ++i) {
            const QueryNode& child = tree_.nodes[children[i]];
            String value = valueOf(children[i], group.negated != child.negated);
            if (child.op == QueryOperator::And || isProximityOperator(child.op))
                addPair(left, value);
            if (i + 1 < children.size() && isProximityOperator(tree_.nodes[children[i + 1]].op)) {
                // What stands near a negated term is as positive as if that were not, and
                // its own negation plays no role then.
                const QueryNode& near = tree_.nodes[children[++i]];
                left = value;
                value = valueOf(children[i],
                                child.negated ? !group.negated : group.negated != near.negated);
                addPair(left, value);
            }
            left = value;
        }
    }

    void addPair(const String& left, const String& right) {
        if (extended_ && !left.isAbsent() && !right.isAbsent())
            found_.push_back(joinedWords(std::array{left, right}, u" "));
    }

    const QueryTree& tree_;
    const bool extended_;
    std::vector<String> found_;
    std::vector<Group> groups_;
};

std::optional<std::vector<String>> wildcardsOf(const QueryTerms& terms, bool extended) {
    if (!terms.isValid()) return std::nullopt;
    return PlusWildcards(QueryTree::of(terms), extended).of(QueryTree::indexOf(terms));
}

}  // namespace

std::optional<std::vector<String>> QueryTerms::plusWildcards() const {
    return wildcardsOf(*this, false);
}

std::optional<std::vector<String>> QueryTerms::extendedPlusWildcards() const {
    return wildcardsOf(*this, true);
}

}  // namespace velmo
