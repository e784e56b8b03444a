// The walk through the tree of records: the one place that knows what a node looks like and when to
// stop. Searching for one record and listing all go through it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/platform/FunctionRef.h>
#include <velmocore/storage/DSStoreAllocator.h>

namespace velmo::detail {

class DSStoreWalk {
public:
    enum class Order {
        RecordFirst,  ///< each record before the child to its left
        ChildFirst,   ///< as the writer sorted them
    };
    enum class Next { Record, Node, Nothing };
    /// Reads the record at which the stream stands, and says what to go on with.
    using Reader = FunctionRef<Next(DSStoreStream& stream)>;
    /// Is told of nodes that cannot be and of those that are met again.
    using Complain = void (*)(std::string_view text);

    DSStoreWalk(const DSStoreAllocator& store, Order order, Complain complain = nullptr)
        : store_(store), order_(order), complain_(complain) {}

    /// Gives the number of nodes that could not be read, or ended before all their records.
    std::size_t run(std::uint32_t root, Reader read);

private:
    struct Frame {
        DSStoreBlock block;
        std::uint32_t node, next, left;  // left: how many records are still to come
        std::uint32_t child = 0;
        bool isChildRead = false;

        bool isLeaf() const { return next == 0; }
        bool isAtEnd() const { return left == 0 || block.isEOF(); }
    };

    void enter(std::uint32_t node);
    void refuse(std::string_view complaint = {});
    void leave();
    bool step(Reader read);

    const DSStoreAllocator& store_;
    Order order_;
    Complain complain_;
    std::vector<Frame> path_;  // from the root, or a right sibling of it, to the node that is read
    std::vector<bool> used_;
    std::uint64_t bytesLeft_ = 0;
    std::size_t refused_ = 0;
};

}  // namespace velmo::detail
