// A hash table of places in a list, which the list itself need not know of: what is in the list is
// found again without a node for each of its elements. A slot that is taken is followed by the next
// one; with half of them free, runs are short.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace velmo::detail {

class PlaceTable {
public:
    /// For that many places; it grows if there are more. Until there is one it holds no memory.
    explicit PlaceTable(std::size_t room = 32) : room_(std::max<std::size_t>(room, 1)) {}

    /// The place that was added under the hash and for which isSame(place) holds. If there is none,
    /// adds the given one.
    template <class IsSame>
    std::size_t findOrAdd(std::uint64_t hash, std::size_t place, const IsSame& isSame) {
        // Before the look-up, which needs a free slot to end at.
        if (taken_ * 2 >= slots_.size()) grow();
        Slot& slot = slotFor(hash, isSame);
        if (slot.number) return slot.number - 1;
        slot = {hash, place + 1};
        ++taken_;
        return place;
    }

private:
    struct Slot {
        std::uint64_t hash = 0;
        std::size_t number = 0;  // the place and 1; 0 in a free slot
    };

    template <class IsSame>
    Slot& slotFor(std::uint64_t hash, const IsSame& isSame) {
        const std::size_t mask = slots_.size() - 1;
        for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
            Slot& slot = slots_[i];
            if (!slot.number || (slot.hash == hash && isSame(slot.number - 1))) return slot;
        }
    }

    void grow() {
        std::vector<Slot> old(slots_.empty() ? std::bit_ceil(2 * room_) : slots_.size() * 2);
        old.swap(slots_);
        for (const Slot& slot : old)
            if (slot.number) slotFor(slot.hash, [](std::size_t) { return false; }) = slot;
    }

    std::vector<Slot> slots_;  // a power of two of them
    std::size_t taken_ = 0;
    std::size_t room_;
};

}  // namespace velmo::detail
