// What the search for one word near another remembers between the stretches of a text on which
// it is asked. A query in a query asks for the same pair on one stretch after the other, and
// nearly always these begin or end together: on all that goes before each hit of a third word,
// or all that follows it. To go through all windows anew each time would cost the square of
// the text.
//
// Stretches that begin together share their windows, but those that reach the end: what has
// been passed by in vain need not be looked at again in a longer one. Stretches that end
// together go the same way from the first window on that their beginnings do not cut. And
// stretches that overlap, as wide windows do, share what neither end of them cuts.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace velmo::detail {

/// How far a search has come.
struct ProximityState {
    std::uint64_t cursor = 0;   // where the next occurrence is looked for
    std::uint64_t lastEnd = 0;  // of the windows so far
    bool isFree = false;        // nothing to come depends on where the stretch begins
};

/// The memory of one word that is asked for near another.
class ProximityMemory {
public:
    /// To be called first for each stretch. A stretch is not worth remembering before a second
    /// one begins or ends with it. Those that begin together share nothing if what is found
    /// first in a stretch may be another place in a longer one.
    void begin(std::uint64_t start, std::uint64_t end, bool isInOrder) {
        const bool sharesStart = isInOrder && isUsed_ && start == start_;
        sharesEnd_ = isUsed_ && end == end_;
        if (!sharesStart) reached_ = {.state = {start, start}};
        if (!sharesEnd_) verdicts_.clear();
        isUsed_ = true;
        if (way_) row_ = *way_;
        way_.reset();
        start_ = start;
        end_ = end;
    }

    /// Whether a stretch that begins where the last one did holds what was found there.
    bool isKnownToHold() const { return reached_.holdsAfter < end_; }
    /// Where the search may begin.
    ProximityState firstState() {
        if (!isInside(reached_.state)) reached_.state = {start_, start_};
        return reached_.state;
    }

    /// All windows so far have been passed by in vain. Gives the state from which to go on,
    /// if more of them are known to be in vain; the occurrences of the word must be the same
    /// ones from wherever they are counted.
    ProximityState pass(const ProximityState& state, bool canSkip) {
        if (!isInside(state)) return state;
        if (state.cursor > reached_.state.cursor) reached_.state = state;
        if (!state.isFree || !canSkip) return state;
        if (!way_) way_ = {state.cursor, state};
        if (state.cursor > way_->last.cursor) way_->last = state;
        if (row_.has(state)) {
            way_->start = std::min(way_->start, row_.start);
            if (row_.last.cursor > way_->last.cursor) way_->last = row_.last;
        }
        return isInside(way_->last) ? way_->last : state;
    }
    /// A window has decided for all stretches that end after a position.
    void hold(std::uint64_t end) { reached_.holdsAfter = std::min(reached_.holdsAfter, end); }

    /// What a search that ends where this one does has come to from that state on, or nothing.
    std::optional<bool> verdict(const ProximityState& state) const {
        const auto known = verdicts_.find(state.cursor);
        if (known == verdicts_.end() || known->second.lastEnd != state.lastEnd) return {};
        return known->second.holds;
    }
    bool sharesEnd() const { return sharesEnd_; }
    void remember(const ProximityState& state, bool holds) {
        verdicts_[state.cursor] = {state.lastEnd, holds};
    }

private:
    struct Reached {
        ProximityState state;
        std::uint64_t holdsAfter = UINT64_MAX;  // on each stretch that ends after it
    };
    struct Verdict {
        std::uint64_t lastEnd;
        bool holds;
    };

    /// Windows in a row that no stretch cuts and that are all in vain: those of the occurrences
    /// that end after the start and up to the last.
    struct Row {
        std::uint64_t start = 0;
        ProximityState last;

        bool has(const ProximityState& state) const {
            return start <= state.cursor && state.cursor <= last.cursor;
        }
    };

    /// Whether the end of the stretch cuts none of the windows so far.
    bool isInside(const ProximityState& state) const {
        return std::max(state.cursor, state.lastEnd) < end_;
    }

    bool isUsed_ = false, sharesEnd_ = false;
    std::uint64_t start_ = 0, end_ = 0;
    Reached reached_;
    Row row_;                                              // of the stretches before
    std::optional<Row> way_;                               // of this one
    std::unordered_map<std::uint64_t, Verdict> verdicts_;  // by cursor
};

}  // namespace velmo::detail
