// Evaluates a query tree against a text. How a word is found is the finder's affair, so
// that plain words and wildcards share all rules of the operators.
//
// Neither the depth of the tree nor the way the operators are nested can hurt: the walk has
// a stack of its own, and what a proximity operator asks over and over is remembered.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "query/ProximityMemory.h"
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
    /// The same of several runs side by side, as in scripts without spaces, if no two of its
    /// places overlap.
    { finder.isApart(node) } -> std::same_as<bool>;
    /// Whether what is found first in a stretch is so in a longer one that cuts it no more.
    { finder.isInOrder(node) } -> std::same_as<bool>;
    /// Whether an occurrence may begin or end inside a run of term units.
    { finder.cutsRuns(node) } -> std::same_as<bool>;
};

/// Remembers is false in a test only, which shows what the memory is good for.
template <WordFinder Finder, bool Remembers = true>
class QueryEvaluation {
public:
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

    /// For several questions about one text all answers may be kept.
    QueryEvaluation(const QueryTree& tree, const WordText& text, Finder& finder,
                    bool keepsAll = false)
        : tree_(tree),
          textEnd_(text.units.size()),
          steps_(text),
          finder_(finder),
          keepsAll_(keepsAll) {}

    /// Whether the query below a node holds for the text.
    bool matches(std::size_t top) { return holds({.node = top, .end = textEnd_}); }

    /// What is needed for proximity, which most texts are not asked for: other words are missing.
    void prepare() {
        if (!near_.empty() || !tree_.nodes.back().hasProximity) return;
        near_.resize(tree_.nodes.size());
        findWhatShrinks();
    }
    bool holds(const Call& call) {
        std::optional<bool> answer = enter(call);
        while (!stack_.empty())
            answer = tree_.nodes[stack_.back().call.node].isWord ? continueProximity(answer)
                                                                 : continueGroup(answer);
        return *answer;
    }

    /// The call of one of the children of a group, from the first on.
    Call callOfChild(const Call& group, std::size_t place) const {
        const auto children = tree_.childrenOf(tree_.nodes[group.node]);
        Call call = group;
        call.node = children[place];
        const QueryNode& child = tree_.nodes[call.node];
        if (place > 0 && isProximityOperator(child.op) && child.distance != 0) {
            call.left = children[place - 1];
            call.op = child.op;
            call.distance = child.distance;
        }
        return call;
    }
    static Call callOfLeft(const Call& call, Stretch stretch) {
        return {.node = call.left, .start = stretch.start, .end = stretch.end};
    }

    /// Where the left term is to hold, for one occurrence of a word.
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

    /// Whether a term that holds on a part of a stretch holds on all of it; see below.
    bool shrinks(std::size_t node) const { return shrinks_[node]; }
    bool isRun(std::size_t node) const { return isRun_[node]; }

private:
    /// A call that waits for the answer to another one.
    struct Frame {
        Call call;
        // Of a group:
        std::size_t child = 0;  // whose answer is waited for
        bool value = false;     // of the children before it
        // Of a word with a left term:
        bool asksWhole = false;  // waits for the left term's answer on the whole stretch
        ProximityState state = {};
        bool known = false;  // what the rest of the stretch is known to come to
        Stretch asked = {};  // the part that is waited for, and where a longer stretch that
        std::uint64_t decidesAfter = UINT64_MAX;  // has this part too must end
        std::size_t firstPassed = 0;              // of its own in passed_
    };

    /// Answers a call at once or leaves a frame on the stack.
    std::optional<bool> enter(const Call& call) {
        const QueryNode& node = tree_.nodes[call.node];
        if (node.isWord && call.left == NoNode)
            return finder_.find(call.node, call.start, call.end).isFound() != node.negated;
        if (!node.isWord && node.count == 0) return node.negated;
        if (const auto known = knownInText(call)) return *known != node.negated;
        if (isRemembered(call))
            if (const auto known = memory_.find(keyOf(call)); known != memory_.end())
                return known->second;
        if (stack_.empty()) stack_.reserve(UsualDepth);
        stack_.emplace_back().call = call;
        return std::nullopt;
    }

    std::optional<bool> finish(bool value) {
        const Call& call = stack_.back().call;
        // What has been asked first is not asked again.
        const bool isLast = stack_.size() == 1 && !keepsAll_;
        if (!isLast && isRemembered(call)) memory_.emplace(keyOf(call), value);
        stack_.pop_back();
        return value;
    }

    static constexpr std::size_t UsualDepth = 4;

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
            answer = enter(callOfChild(frame.call, frame.child));
            if (!answer) return std::nullopt;  // and the frame may have moved
            join(frame, *answer);
        }
        return finish(frame.value != group.negated);
    }

    /// What a group comes to in the text as a whole, if the finder can tell at once.
    std::optional<bool> knownInText(const Call& call) {
        if constexpr (requires { finder_.knownOf(call.node); })
            if (!tree_.nodes[call.node].isWord && call.left == NoNode && call.start == 0 &&
                call.end == textEnd_)
                return finder_.knownOf(call.node);
        return {};
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

    // Proximity: a word, and the left term in the windows around its occurrences. If the
    // word is negated, the left term must hold in a gap between the windows.

    std::optional<bool> continueProximity(std::optional<bool> answer) {
        prepare();
        Frame& frame = stack_.back();
        const Call& call = frame.call;
        if (answer) {
            // In a part, yes decides; on the whole stretch, no does.
            if (*answer != frame.asksWhole) return finishProximity(*answer);
        } else {
            ProximityMemory& memory = nearOf(call.node);
            memory.begin(call.start, call.end, finder_.isInOrder(call.node));
            if (Remembers && memory.isKnownToHold()) return finish(true);
            frame.state = Remembers ? memory.firstState() : ProximityState{call.start, call.start};
            frame.firstPassed = passed_.size();
            if (shrinks_[call.left]) {
                frame.asksWhole = true;
                answer = enter(callOfLeft(call, {call.start, call.end}));
                if (!answer) return std::nullopt;  // and the frame may have moved
                if (!*answer) return finishProximity(false);
            }
        }
        frame.asksWhole = false;
        while (const auto part = nextPart(frame)) {
            answer = enter(callOfLeft(call, *part));
            if (!answer) return std::nullopt;
            if (*answer) return finishProximity(true);
        }
        return finishProximity(frame.known);
    }

    /// The next stretch in which the left term, if it holds there, decides. All before it have
    /// been asked in vain.
    std::optional<Stretch> nextPart(Frame& frame) {
        const Call& call = frame.call;
        ProximityMemory& memory = nearOf(call.node);
        const bool negated = tree_.nodes[call.node].negated;
        ProximityState& state = frame.state;
        while (state.cursor < call.end) {
            if (Remembers) state = memory.pass(state, isRun_[call.node]);
            if (const auto known = knownFrom(frame)) {
                frame.known = *known;
                frame.decidesAfter = UINT64_MAX;
                break;
            }
            const Range hit = finder_.find(call.node, state.cursor, call.end);
            if (!hit.isFound()) {
                state.cursor = call.end;
                frame.decidesAfter = UINT64_MAX;
                if (negated && state.lastEnd < call.end) return Stretch{state.lastEnd, call.end};
                break;
            }
            const Stretch window = windowAround(call, hit);
            const Stretch part = negated ? Stretch{state.lastEnd, window.start}
                                         : Stretch{window.start, std::min(window.end, call.end)};
            const Stretch before = std::exchange(frame.asked, part);
            state = {hit.end(), window.end,
                     negated || window.start > call.start || call.op == QueryOperator::After};
            frame.decidesAfter = negated ? hit.end() : std::max(hit.end(), window.end);
            if (negated ? part.start < part.end : !isAnswered(frame, before)) return part;
        }
        return std::nullopt;
    }

    /// Whether a part that holds no more than the one before it need not be asked.
    bool isAnswered(Frame& frame, Stretch before) {
        const Call& call = frame.call;
        if (before.end != call.end || before.start == before.end) return false;
        // All parts to come end with the stretch as well.
        const bool shrinks = shrinks_[call.left], isSame = before.start == frame.asked.start;
        if (shrinks || (isSame && call.distance >= textEnd_)) frame.state.cursor = call.end;
        return shrinks || isSame;
    }

    /// What has been found out from the present state on.
    std::optional<bool> knownFrom(const Frame& frame) {
        if (!Remembers || !frame.state.isFree) return std::nullopt;
        const ProximityMemory& memory = nearOf(frame.call.node);
        const auto known = memory.verdict(frame.state);
        if (!known && memory.sharesEnd()) passed_.push_back(frame.state);
        return known;
    }

    ProximityMemory& nearOf(std::size_t node) {
        if (!near_[node]) near_[node] = std::make_unique<ProximityMemory>();
        return *near_[node];
    }

    std::optional<bool> finishProximity(bool value) {
        const Frame& frame = stack_.back();
        ProximityMemory& memory = nearOf(frame.call.node);
        if (value && frame.decidesAfter < frame.call.end) memory.hold(frame.decidesAfter);
        for (std::size_t i = frame.firstPassed; i < passed_.size(); ++i)
            memory.remember(passed_[i], value);
        passed_.resize(frame.firstPassed);
        return finish(value);
    }

    // What keeps the time polynomial. A left term is asked on one window for each occurrence
    // of a word, and its own left terms on windows inside each of these: from level to level
    // the number of questions would multiply. But how many different windows there are does
    // not grow with the depth, as their edges stand where a word of the query stands or some
    // words off it, and the answer depends on nothing but node and window.

    struct Key {
        std::size_t node, left;
        std::uint64_t start, end;
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const {
            constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15;
            std::uint64_t h = key.node ^ key.left << 32;
            for (std::uint64_t part : {key.start, key.end}) h = (h ^ (h >> 29) ^ part) * Odd;
            return h ^ (h >> 32);
        }
    };

    static Key keyOf(const Call& call) { return {call.node, call.left, call.start, call.end}; }
    bool isRemembered(const Call& call) const {
        const bool isWorthIt = call.left == NoNode && tree_.nodes[call.node].hasProximity;
        return Remembers && (keepsAll_ || isWorthIt);
    }

    // A left term without negations that does not hold on a stretch holds on no part of it.
    // This needs words of term units only, and windows that cut none: of others, a
    // part may hold more, since its edges cut words off. Then one question spares those on all
    // windows.

    void findWhatShrinks() {
        const auto cuts = [&](std::size_t i) {
            return tree_.nodes[i].isWord && finder_.cutsRuns(i);
        };
        bool cutsAny = false;
        for (std::size_t i = 0; i < tree_.nodes.size() && !cutsAny; ++i) cutsAny = cuts(i);
        for (std::size_t i = 0; i < tree_.nodes.size(); ++i) {
            const QueryNode& node = tree_.nodes[i];
            isRun_.push_back(node.isWord && finder_.isOneRun(i));
            bool shrinks =
                !cutsAny && !node.negated && (node.isWord ? finder_.isApart(i) : node.isPositive);
            for (std::size_t child : tree_.childrenOf(node)) shrinks = shrinks && shrinks_[child];
            shrinks_.push_back(shrinks);
        }
    }

    const QueryTree& tree_;
    const std::uint64_t textEnd_;
    WordSteps steps_;
    Finder& finder_;
    const bool keepsAll_;
    std::vector<bool> isRun_;    // by node: see the finder
    std::vector<bool> shrinks_;  // by node: may hold on less when it gets shorter only
    std::vector<std::unique_ptr<ProximityMemory>> near_;  // by node, once it is asked
    std::vector<ProximityState> passed_;                  // whose outcome is to be remembered
    std::vector<Frame> stack_;
    std::unordered_map<Key, bool, KeyHash> memory_;
};

}  // namespace velmo::detail
