// A list that takes each link once, in the order of their coming.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// Keeps a table of hashes beside the list. A String is made only for a link that is new.
class UniqueLinks {
public:
    explicit UniqueLinks(std::vector<String>& links);

    /// Appends the link unless it is in the list, and gives its place there.
    std::size_t add(std::u16string_view link);
    /// The same of a link that is ASCII.
    std::size_t add(std::string_view link);

private:
    struct Slot {
        std::uint64_t hash = 0;
        std::size_t number = 0;  // in the list, from 1 on; 0 in a free slot
    };

    /// The slot that holds the link, or the free one where it belongs.
    template <class Link>
    Slot& slotFor(std::uint64_t hash, Link link);
    template <class Link>
    std::size_t addLink(Link link);
    void grow();

    std::vector<String>& links_;
    const std::uint64_t seed_;
    std::vector<Slot> slots_;  // a power of two of them, at least half of them free
};

}  // namespace velmo::detail
