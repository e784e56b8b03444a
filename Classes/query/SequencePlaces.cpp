// Asked for many stretches of one text, a sequence answers from what it found before. Most answers
// are the hit in the text as a whole; only where a stretch ends within a word may another one be
// right, and is searched for. Phrases that try one place after the other also remember what came
// of each place, as many searches run into the same chain of places.
#include "query/SequencePlaces.h"

#include <algorithm>

namespace velmo::detail {

Range SequencePlaces::find(std::uint64_t start, std::uint64_t end) {
    if (start >= end) return Range::none();
    if (sequence_->isLoneStar()) return acceptStar_ ? Range{start, end - start} : Range::none();
    const Range hit = hitFrom(start);
    if (hit.isFound() && hit.end() <= end) return hit;
    if (!sequence_->mayTouch(text_, end)) return Range::none();
    if (isChain_) return hitOfChain(start, end, inStretch_);
    return sequence_->isPhrase() ? sequence_->find(text_, start, end)
                                 : sequence_->findAtEnd(text_, start, end);
}

/// The first hit from a position on in the whole text.
Range SequencePlaces::hitFrom(std::uint64_t start) {
    if (isChain_) return hitOfChain(start, textEnd(), inText_);
    const std::size_t place = placeFrom(start);
    return place < places_.size() ? places_[place] : Range::none();
}

/// The index of the first place from a position on; the number of places if there is none.
std::size_t SequencePlaces::placeFrom(std::uint64_t position) {
    const auto known = std::ranges::lower_bound(places_, position, {}, &Range::location);
    if (known != places_.end()) return static_cast<std::size_t>(known - places_.begin());
    // Nothing before the position will be asked for if what is known has been forgotten.
    if (places_.empty()) scanned_ = std::max(scanned_, forgotten_);
    while (scanned_ < textEnd()) {
        const Range place = isChain_ ? sequence_->findFirst(text_, scanned_, textEnd())
                                     : sequence_->find(text_, scanned_, textEnd());
        scanned_ = place.isFound() ? place.location + 1 : textEnd();
        if (!place.isFound()) break;
        places_.push_back(place);
        if (place.location >= position) return places_.size() - 1;
    }
    return places_.size();
}

/// What a search in a stretch finds that tries one place of the first word after the other.
/// Searches that come by the same place go the same way from there on.
Range SequencePlaces::hitOfChain(std::uint64_t start, std::uint64_t end,
                                 std::vector<Verdict>& verdicts) {
    Range hit = Range::none();
    visited_.clear();
    for (std::uint64_t from = start; !hit.isFound();) {
        const std::size_t place = placeFrom(from);
        if (place == places_.size() || places_[place].end() >= end) break;
        if (verdicts.size() <= place) verdicts.resize(place + 1);
        if (verdicts[place].end == end) {
            hit = verdicts[place].hit;
            break;
        }
        visited_.push_back(place);
        from = places_[place].end();
        const std::uint64_t last = sequence_->endOfRest(text_, from, end);
        if (last != NotFound) hit = {places_[place].location, last - places_[place].location};
    }
    for (const std::size_t place : visited_) verdicts[place] = {end, hit};
    return hit;
}

void SequencePlaces::forgetBefore(std::uint64_t position) {
    forgotten_ = position;
    if (places_.empty() || places_.back().location >= position) return;
    // Only all at once, when none of them is needed any more: to move the rest each time would
    // cost the number of places times the number of calls.
    places_.clear();
    inText_.clear();
    inStretch_.clear();
}

}  // namespace velmo::detail
