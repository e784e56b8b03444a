// Evaluates a query tree against a text. How a word is found is the finder's affair, so
// that plain words and wildcards share all rules of the operators.
//
// Neither the depth of the tree nor the way the operators are nested can hurt: the walk has
// a stack of its own, and what a proximity operator asks over and over is remembered.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "query/QueryTree.h"
#include "query/WordSteps.h"

namespace velmo::detail {

/// What the evaluation needs to know of the words of its tree.
template <class Finder>
concept WordFinder = requires(Finder finder, std::size_t node, std::uint64_t position) {
    /// The first occurrence of a word node in a stretch, with at least one unit, or none.
    { finder.find(node, position, position) } -> std::same_as<Range>;
    /// Whether the word occurs exactly where certain runs of term units stand, whatever
    /// stretch is looked at that does not cut a run. It saves time only.
    { finder.isOneRun(node) } -> std::same_as<bool>;
};

/// Remembers is false in a test only, which shows what the memory is good for.
template <WordFinder Finder, bool Remembers = true>
class QueryEvaluation {
public:
    QueryEvaluation(const QueryTree& tree, std::u16string_view text,
                    const CharacterSetRep& termCharacters, Finder& finder)
        : tree_(tree), textEnd_(text.size()), steps_(text, termCharacters), finder_(finder) {}

    /// Whether the query below a node holds for the text.
    bool matches(std::size_t top) {
        wordsAreRuns_ = tree_.nodes[top].hasProximity && allWordsAreRuns();
        std::optional<bool> answer = enter({.node = top, .end = textEnd_});
        while (!stack_.empty())
            answer = tree_.nodes[stack_.back().call.node].isWord ? continueProximity(answer)
                                                                 : continueGroup(answer);
        return *answer;
    }

private:
    static constexpr std::size_t NoNode = static_cast<std::size_t>(-1);

    /// A node to be evaluated on a stretch of the text. If there is a left term, each word
    /// of the node asks whether that one holds near it.
    struct Call {
        std::size_t node = NoNode;
        std::size_t left = NoNode;
        QueryOperator op = QueryOperator::None;
        std::uint64_t distance = 0;
        std::uint64_t start = 0;
        std::uint64_t end = 0;
    };

    struct Stretch {
        std::uint64_t start, end;
    };

    /// A call that waits for the answer to another one.
    struct Frame {
        Call call;
        // Of a group:
        std::size_t child = 0;  // whose answer is waited for
        bool value = false;     // of the children before it
        // Of a word with a left term:
        bool asksWhole = false;     // waits for the left term's answer on the whole stretch
        std::uint64_t cursor = 0;   // where the next occurrence is looked for
        std::uint64_t lastEnd = 0;  // of the windows so far
    };

    /// Answers a call at once or leaves a frame on the stack.
    std::optional<bool> enter(const Call& call) {
        const QueryNode& node = tree_.nodes[call.node];
        if (node.isWord && call.left == NoNode)
            return finder_.find(call.node, call.start, call.end).isFound() != node.negated;
        if (!node.isWord && node.count == 0) return node.negated;
        if (isRemembered(call))
            if (const auto known = memory_.find(keyOf(call)); known != memory_.end())
                return known->second;
        stack_.push_back({.call = call, .cursor = call.start, .lastEnd = call.start});
        return std::nullopt;
    }

    std::optional<bool> finish(bool value) {
        const Call& call = stack_.back().call;
        if (isRemembered(call)) memory_.emplace(keyOf(call), value);
        stack_.pop_back();
        return value;
    }

    // Groups: from left to right, without precedence.

    std::optional<bool> continueGroup(std::optional<bool> answer) {
        Frame& frame = stack_.back();
        const QueryNode& group = tree_.nodes[frame.call.node];
        if (answer) join(frame, *answer);
        while (frame.child < group.count) {
            const QueryOperator op = frame.child ? childOf(frame).op : QueryOperator::None;
            if (!canChange(op, frame.value)) {
                // Where all operators are the same, neither will the others change it.
                if (op == group.common) break;
                ++frame.child;
                continue;
            }
            answer = enter(callOfChild(frame));
            if (!answer) return std::nullopt;  // and the frame may have moved
            join(frame, *answer);
        }
        return finish(frame.value != group.negated);
    }

    std::size_t childIndex(const Frame& frame, std::size_t child) const {
        return tree_.childrenOf(tree_.nodes[frame.call.node])[child];
    }
    const QueryNode& childOf(const Frame& frame) const {
        return tree_.nodes[childIndex(frame, frame.child)];
    }

    /// Whether a child with that operator can change the value of those before it. None
    /// stands for the first child, whose own operator means nothing.
    static bool canChange(QueryOperator op, bool value) {
        switch (op) {
            case QueryOperator::Or:
                return !value;
            case QueryOperator::Opt:
                return false;
            case QueryOperator::Xor:
            case QueryOperator::None:
                return true;
            default:
                return value;
        }
    }

    void join(Frame& frame, bool answer) const {
        const bool flips = frame.child > 0 && childOf(frame).op == QueryOperator::Xor;
        frame.value = answer != (flips && frame.value);
        ++frame.child;
    }

    Call callOfChild(const Frame& frame) const {
        Call call = frame.call;
        call.node = childIndex(frame, frame.child);
        const QueryNode& child = tree_.nodes[call.node];
        if (frame.child > 0 && isProximityOperator(child.op) && child.distance != 0) {
            call.left = childIndex(frame, frame.child - 1);
            call.op = child.op;
            call.distance = child.distance;
        }
        return call;
    }

    // Proximity: a word, and the left term in the windows around its occurrences. If the
    // word is negated, the left term must hold in a gap between the windows.

    std::optional<bool> continueProximity(std::optional<bool> answer) {
        Frame& frame = stack_.back();
        if (answer) {
            // In a part, yes decides; on the whole stretch, no does.
            if (*answer != frame.asksWhole) return finish(*answer);
            frame.asksWhole = false;
        } else if (canOnlyShrink(frame.call.left)) {
            frame.asksWhole = true;
            answer = enter(callOfLeft(frame.call, {frame.call.start, frame.call.end}));
            if (!answer) return std::nullopt;
            if (!*answer) return finish(false);
            frame.asksWhole = false;
        }
        while (const auto part = nextPart(frame)) {
            answer = enter(callOfLeft(frame.call, *part));
            if (!answer) return std::nullopt;
            if (*answer) return finish(true);
        }
        return finish(false);
    }

    static Call callOfLeft(const Call& call, Stretch stretch) {
        return {.node = call.left, .start = stretch.start, .end = stretch.end};
    }

    /// The next stretch in which the left term, if it holds there, decides.
    std::optional<Stretch> nextPart(Frame& frame) {
        const Call& call = frame.call;
        const bool negated = tree_.nodes[call.node].negated;
        while (frame.cursor < call.end) {
            const Range hit = finder_.find(call.node, frame.cursor, call.end);
            if (!hit.isFound()) {
                frame.cursor = call.end;
                if (negated && frame.lastEnd < call.end) return Stretch{frame.lastEnd, call.end};
                break;
            }
            frame.cursor = hit.end();
            const Stretch window = windowAround(call, hit);
            if (!negated) return Stretch{window.start, std::min(window.end, call.end)};
            const std::uint64_t gap = std::exchange(frame.lastEnd, window.end);
            if (gap < window.start) return Stretch{gap, window.start};
        }
        return std::nullopt;
    }

    Stretch windowAround(const Call& call, Range hit) {
        const auto back = [&] { return steps_.back(hit.location, call.start, call.distance); };
        const auto forward = [&] { return steps_.forward(hit.end(), call.end, call.distance); };
        switch (call.op) {
            case QueryOperator::Near:
                return {back(), forward()};
            case QueryOperator::After:
                return {hit.location, forward()};
            default:
                return {back(), hit.end()};
        }
    }

    // What keeps the time polynomial. A left term is asked on one window for each occurrence
    // of a word, and its own left terms on windows inside each of these: from level to level
    // the number of questions would multiply. But how many different windows there are does
    // not grow with the depth, as their edges stand where a word of the query stands or some
    // words off it, and the answer depends on nothing but node and window.

    struct Key {
        std::size_t node;
        std::uint64_t start, end;
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const {
            constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15;
            std::uint64_t h = key.node;
            for (std::uint64_t part : {key.start, key.end}) h = (h ^ (h >> 29) ^ part) * Odd;
            return h ^ (h >> 32);
        }
    };

    static Key keyOf(const Call& call) { return {call.node, call.start, call.end}; }
    bool isRemembered(const Call& call) const {
        return Remembers && call.left == NoNode && tree_.nodes[call.node].hasProximity;
    }

    // A left term without negations that does not hold on a stretch holds on no part of it.
    // This needs words that are runs of term units: of others, a part may hold more, since
    // its edges cut words off. Then one question spares those on all windows.

    bool allWordsAreRuns() const {
        for (std::size_t i = 0; i < tree_.nodes.size(); ++i)
            if (tree_.nodes[i].isWord && !finder_.isOneRun(i)) return false;
        return true;
    }
    bool canOnlyShrink(std::size_t node) const {
        return wordsAreRuns_ && tree_.nodes[node].isPositive && !tree_.nodes[node].negated;
    }

    const QueryTree& tree_;
    const std::uint64_t textEnd_;
    WordSteps steps_;
    Finder& finder_;
    bool wordsAreRuns_ = false;
    std::vector<Frame> stack_;
    std::unordered_map<Key, bool, KeyHash> memory_;
};

}  // namespace velmo::detail
