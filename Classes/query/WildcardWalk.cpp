// Many wildcards, hit by hit. The nearest hit ends the stretch in which the wildcards after it are
// sought; each of them keeps what it found beyond, so that no part of the text is scanned by one
// wildcard more than once. Backwards the same, with the difference that a stretch which begins
// behind a word leaves out a word at its very end.
#include "query/WildcardWalk.h"

#include <functional>

namespace velmo::detail {

WildcardWalk::WildcardWalk(const WildcardSearch& search) : start_(search.start), end_(search.end) {
    // No stretch ends further on, and the last one ends words as the end of a text does.
    WordText text = search.text;
    text.units = text.units.substr(0, end_);
    for (const String& wildcard : search.wildcards) {
        auto occurrences = std::make_unique<WildcardOccurrences>(
            text, wildcard.view(), search.comparison, search.minCharacters, false);
        wildcards_.push_back(std::move(occurrences));
    }
}

Range WildcardWalk::next() {
    Range best = Range::none();
    std::uint64_t end = end_;
    for (const auto& wildcard : wildcards_) {
        if (start_ >= end) break;
        wildcard->forgetBefore(start_);
        const Range hit = wildcard->find(start_, end);
        if (!hit.isFound()) continue;
        best = hit;
        end = hit.location;
    }
    start_ = best.isFound() ? best.end() : end_;
    return best;
}

constexpr SequenceChoice Backwards{.direction = Direction::Backward};

WildcardWalkBack::WildcardWalkBack(const WildcardSearch& search)
    : text_(search.text), start_(search.start), end_(search.end) {
    for (const String& wildcard : search.wildcards) {
        WildcardTerm term(wildcard, search.comparison, search.minCharacters,
                          text_.unspaced != nullptr);
        const bool isChain = term.words().isPhrase() && !term.words().findsWords(text_);
        tracks_.push_back({std::move(term), {isChain}, {false}});
    }
}

Range WildcardWalkBack::next() {
    Range best = Range::none();
    std::uint64_t start = start_;
    for (Track& track : tracks_) {
        if (start >= end_) break;
        const Range hit = hitOf(track, start);
        if (!hit.isFound()) continue;
        best = hit;
        start = hit.end();
    }
    end_ = best.isFound() ? best.location : start_;
    return best;
}

/// The hit of one wildcard in what the hits of those before it have left over.
Range WildcardWalkBack::hitOf(Track& track, std::uint64_t start) {
    // What is left over begins after a word. A word at its very end is then left out, which no
    // other stretch does; so nothing that is remembered tells of it.
    // Between words side by side, that holds of every stretch if the whole begins inside a word.
    const bool isLeft = start > start_ && text_.isAfterTerm(start);
    const bool isAllLeft = text_.unspaced && text_.isAfterTerm(start_);
    const bool leavesOut = (isLeft || isAllLeft) && text_.isTerm(end_ - 1);
    // Going back, a star that begins a phrase is found at the start of the stretch alone.
    const bool isAtStart = text_.unspaced && start > start_ && track.term.words().beginsWithStar();
    if (leavesOut || isAtStart) return track.term.find(text_, start, end_, Backwards);
    const auto inside = [&](Range hit) {
        return hit.isFound() && hit.location >= start ? hit : Range::none();
    };
    const Range hit = inside(remembered(track.term.words(), track.words));
    const auto& joined = track.term.joined();
    return hit.isFound() || !joined ? hit : inside(remembered(*joined, track.joined));
}

/// The last hit of all that is left.
Range WildcardWalkBack::remembered(const WildcardSequence& sequence, Memory& memory) {
    if (memory.isChain) return hitOfChain(sequence, memory);
    if (!memory.last || (memory.last->isFound() && memory.last->end() > end_))
        memory.last = sequence.find(text_, start_, end_, Backwards);
    return *memory.last;
}

Range WildcardWalkBack::hitOfChain(const WildcardSequence& sequence, Memory& memory) {
    Range hit = Range::none();
    std::vector<std::uint64_t> visited;
    for (std::uint64_t end = end_; !hit.isFound();) {
        if (const auto known = memory.chain.find(end); known != memory.chain.end()) {
            hit = known->second;
            break;
        }
        visited.push_back(end);
        const Range place = placeBefore(sequence, memory, end);
        if (!place.isFound()) break;
        const std::uint64_t restEnd = sequence.endOfRest(text_, place.end(), end);
        if (restEnd != NotFound) hit = {place.location, restEnd - place.location};
        end = place.location;
    }
    for (const std::uint64_t end : visited) memory.chain[end] = hit;
    return hit;
}

/// The last place of the first word before a position.
Range WildcardWalkBack::placeBefore(const WildcardSequence& sequence, Memory& memory,
                                    std::uint64_t end) {
    const auto known = std::ranges::lower_bound(memory.places, end, std::greater(), &Range::end);
    if (known != memory.places.end()) return *known;
    for (memory.scanned = std::min(memory.scanned, end_); memory.scanned > start_;) {
        const Range place = sequence.findFirst(text_, start_, memory.scanned, Direction::Backward);
        memory.scanned = place.isFound() ? text_.startOfWord(place.end(), start_) : start_;
        if (!place.isFound()) break;
        memory.places.push_back(place);
        if (place.end() <= end) return place;
    }
    return Range::none();
}

}  // namespace velmo::detail
