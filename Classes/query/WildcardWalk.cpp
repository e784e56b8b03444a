#include "query/WildcardWalk.h"

namespace velmo::detail {

WildcardWalk::WildcardWalk(const WordText& text, std::uint64_t start, std::uint64_t end,
                           std::span<const String> wildcards, WildcardComparison comparison,
                           std::uint64_t minCharacters, Direction direction)
    : text_(text), start_(start), end_(end), choice_{.direction = direction} {
    tracks_.reserve(wildcards.size());
    for (const String& wildcard : wildcards) {
        WildcardTerm term(wildcard, comparison, minCharacters);
        const bool canRemember = term.findsWords(text.termCharacters);
        tracks_.push_back({std::move(term), canRemember});
    }
}

Range WildcardWalk::next() {
    Range best = Range::none();
    std::uint64_t start = start_, end = end_;
    for (Track& track : tracks_) {
        if (start >= end) break;
        const Range hit = hitOf(track, start, end);
        if (!hit.isFound()) continue;
        best = hit;
        (choice_.direction == Direction::Backward ? start : end) =
            choice_.direction == Direction::Backward ? hit.end() : hit.location;
    }
    if (best.isFound())
        (choice_.direction == Direction::Backward ? end_ : start_) =
            choice_.direction == Direction::Backward ? best.location : best.end();
    else
        start_ = end_;
    return best;
}

/// The hit of one wildcard in what the hits of those before it have left over.
Range WildcardWalk::hitOf(Track& track, std::uint64_t start, std::uint64_t end) {
    // What is left over begins behind a word. Backwards, a word at its very end is then left
    // out, which no other stretch does; so nothing that is remembered tells of it.
    const bool leavesOut = choice_.direction == Direction::Backward && start > start_ &&
                           text_.isBehindTerm(start) && text_.isBehindTerm(end);
    if (!track.canRemember || leavesOut) return track.term.find(text_, start, end, choice_);
    const Range hit = remembered(track, track.words, &WildcardTerm::findWords, start, end);
    return hit.isFound() ? hit
                         : remembered(track, track.joined, &WildcardTerm::findJoined, start, end);
}

Range WildcardWalk::remembered(const Track& track, Known& known, Search search, std::uint64_t start,
                               std::uint64_t end) {
    const auto isPassed = [&](Range hit) {
        return choice_.direction == Direction::Backward ? hit.end() > end_ : hit.location < start_;
    };
    if (!known.isKnown || (known.hit.isFound() && isPassed(known.hit)))
        known = {true, (track.term.*search)(text_, start_, end_, choice_)};
    const bool isInside =
        known.hit.isFound() && known.hit.location >= start && known.hit.end() <= end;
    return isInside ? known.hit : Range::none();
}

}  // namespace velmo::detail
