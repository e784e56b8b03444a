#include <velmocore/gather/SourceSequence.h>

#include <utility>

namespace velmo {

PageSource::State SourceSequence::next(SourcePage& page) {
    for (;;) {
        if (!hasCurrent_) {
            std::unique_ptr<PageSource> source = open();
            if (!source) return State::End;
            parts_.push_back({.source = std::move(source)});
            hasCurrent_ = true;
        }
        const State state = parts_.back().source->next(page);
        if (state == State::Page) ++parts_.back().untold;
        if (state != State::End) return state;
        hasCurrent_ = false;
        dropTold();
    }
}

void SourceSequence::didRead(const PageRecord& record) {
    // Pages are told in the order in which they were given, and so source by source.
    for (Part& part : parts_) {
        if (part.untold == 0) continue;
        --part.untold;
        part.source->didRead(record);
        break;
    }
    dropTold();
}

void SourceSequence::dropTold() {
    while (parts_.size() > (hasCurrent_ ? 1 : 0) && parts_.front().untold == 0) parts_.pop_front();
}

const PageSource* SourceSequence::current() const {
    return hasCurrent_ ? parts_.back().source.get() : nullptr;
}

void SourceList::add(Opening opening) { openings_.push_back(std::move(opening)); }

std::unique_ptr<PageSource> SourceList::open() {
    return opened_ < openings_.size() ? openings_[opened_++]() : nullptr;
}

SourceProgress SourceList::progress() const {
    if (openings_.size() == 1 && current() != nullptr) return current()->progress();
    return {.done = opened_ > 0 ? opened_ - 1 : 0, .total = openings_.size()};
}

}  // namespace velmo
