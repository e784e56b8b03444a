// Collects the hits that made a query true. It goes down the tree from what is known to hold:
// a group hands its stretch of the text to the children that its value came from, and a word
// near another hands on the windows in which that one was found. What is to be looked at waits
// in a list, so that the depth of a query costs no recursion, and nothing is looked at twice.
#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "query/EvaluationCore.h"

namespace velmo::detail {

template <WordFinder Finder>
class HitCollection {
public:
    HitCollection(const QueryTree& tree, Finder& finder)
        : tree_(tree),
          textEnd_(finder.text().units.size()),
          finder_(finder),
          evaluation_(tree, finder.text(), finder, true) {}

    /// The hits in their order, none of them twice; none if the query does not hold.
    std::vector<Range> of(std::size_t top) {
        evaluation_.prepare();
        const Call whole{.node = top, .end = textEnd_};
        if (evaluation_.holds(whole)) add(whole);
        while (!pending_.empty()) {
            const Call call = pending_.back();
            pending_.pop_back();
            if (!tree_.nodes[call.node].isWord)
                addGroup(call);
            else if (call.left == Evaluation::NoNode)
                addOccurrences(call);
            else
                addNear(call);
        }
        std::ranges::sort(hits_, {},
                          [](Range hit) { return std::tuple(hit.location, hit.length); });
        hits_.erase(std::unique(hits_.begin(), hits_.end()), hits_.end());
        return std::move(hits_);
    }

private:
    using Evaluation = QueryEvaluation<Finder>;
    using Call = typename Evaluation::Call;
    using Stretch = typename Evaluation::Stretch;

    /// A call that holds. What is negated holds by what is not there; only a word near another
    /// then still has that other to show.
    void add(const Call& call) {
        const QueryNode& node = tree_.nodes[call.node];
        const bool showsLeft = node.isWord && call.left != Evaluation::NoNode;
        if (node.negated && !showsLeft) return;
        if (seen_.insert({call.node, call.left, call.start, call.end}).second)
            pending_.push_back(call);
    }

    /// Stretches that begin together have the same occurrences but for those at their ends, so
    /// each goes on where the one before it has come to: many windows may begin with the text.
    void addOccurrences(const Call& call) {
        if (finder_.isEverywhere(call.node)) return;
        if (!finder_.isInOrder(call.node)) walked_.erase({call.node, call.start});
        std::vector<std::uint64_t>& ends = walked_[{call.node, call.start}];
        const auto known = std::ranges::lower_bound(ends, call.end);
        // The last occurrence before the end is sought again: it may be another one there.
        std::uint64_t from = known - ends.begin() > 1 ? *(known - 2) : call.start;
        while (from < call.end) {
            const Range hit = finder_.find(call.node, from, call.end);
            if (!hit.isFound()) break;
            hits_.push_back(hit);
            from = hit.end();
            if (from < call.end && (ends.empty() || from > ends.back())) ends.push_back(from);
        }
    }

    void addGroup(const Call& group) {
        const std::vector<std::size_t> sources = sourcesOf(group);
        for (std::size_t i = 0; i < sources.size(); ++i) {
            const Call call = evaluation_.callOfChild(group, sources[i]);
            const bool goesOn = i + 1 < sources.size() && sources[i + 1] == sources[i] + 1;
            // What the next child is near to is shown where it is near.
            if (goesOn && call.left == group.left &&
                showsItsLeft(evaluation_.callOfChild(group, sources[i + 1]), group))
                continue;
            add(call);
        }
    }

    bool showsItsLeft(const Call& call, const Call& group) const {
        const QueryNode& node = tree_.nodes[call.node];
        return call.left != group.left && (node.isWord || !node.negated);
    }

    /// The children that the value of a group came from. Operators join from left to right.
    std::vector<std::size_t> sourcesOf(const Call& group) {
        const auto children = tree_.childrenOf(tree_.nodes[group.node]);
        std::vector<std::size_t> sources;
        bool value = false;
        for (std::size_t i = 0; i < children.size(); ++i) {
            const QueryOperator op = i ? tree_.nodes[children[i]].op : QueryOperator::Or;
            const bool joins = op != QueryOperator::Or && op != QueryOperator::Xor;
            if (op == QueryOperator::Opt || (joins && !value)) continue;
            const bool holds = evaluation_.holds(evaluation_.callOfChild(group, i));
            const bool before = std::exchange(value, joins                     ? holds
                                                     : op == QueryOperator::Or ? value || holds
                                                                               : value != holds);
            if (!value || (op == QueryOperator::Xor && !before)) sources.clear();
            if (value && holds) sources.push_back(i);
        }
        return sources;
    }

    /// The occurrences of a word that the left term is near to, and the left term there; of a
    /// negated word only the left term, where the word is not near.
    void addNear(const Call& call) {
        const bool negated = tree_.nodes[call.node].negated;
        const bool shows = !negated && !finder_.isEverywhere(call.node);
        std::uint64_t cursor = call.start, lastEnd = call.start;
        std::optional<Stretch> last;
        while (cursor < call.end) {
            const Range hit = finder_.find(call.node, cursor, call.end);
            if (!hit.isFound()) {
                if (negated) addLeft(call, {lastEnd, call.end}, last);
                break;
            }
            const Stretch window = evaluation_.windowAround(call, hit);
            const Stretch part = negated ? Stretch{lastEnd, window.start}
                                         : Stretch{window.start, std::min(window.end, call.end)};
            if (addLeft(call, part, last) && shows) hits_.push_back(hit);
            cursor = hit.end();
            lastEnd = window.end;
        }
        if (last) add(Evaluation::callOfLeft(call, *last));
    }

    /// Whether the left term holds in a part, which is then to be looked at. Parts that hold
    /// others wait in last for the greatest of them: what the others have to show is in it too.
    bool addLeft(const Call& call, Stretch part, std::optional<Stretch>& last) {
        if (part.start >= part.end) return false;
        if (!evaluation_.holds(Evaluation::callOfLeft(call, part))) return false;
        if (!evaluation_.shrinks(call.left)) {
            add(Evaluation::callOfLeft(call, part));
            return true;
        }
        if (last && last->end == part.end && part.start >= last->start) return true;
        if (last && last->start != part.start) {
            add(Evaluation::callOfLeft(call, *last));
            // The runs that overlap a window before have been shown there.
            if (evaluation_.isRun(call.left)) part.start = std::max(part.start, last->end);
            if (part.start >= part.end) return true;
        }
        last = part;
        return true;
    }

    struct Seen {
        std::size_t node, left;
        std::uint64_t start, end;
        friend auto operator<=>(const Seen&, const Seen&) = default;
    };

    const QueryTree& tree_;
    const std::uint64_t textEnd_;
    Finder& finder_;
    Evaluation evaluation_;
    std::set<Seen> seen_;
    /// By word and start of a stretch, the ends of the occurrences that lie well inside it.
    std::map<std::pair<std::size_t, std::uint64_t>, std::vector<std::uint64_t>> walked_;
    std::vector<Call> pending_;
    std::vector<Range> hits_;
};

}  // namespace velmo::detail
