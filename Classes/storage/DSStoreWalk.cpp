// The nodes on the way to the one that is read stand on a stack of their own, since a damaged file
// may lead as deep as it has blocks. A node is read once. Blocks of a sound file do not overlap: no
// more bytes are read than the file has, so that thousands of nodes which all claim the same large
// block cost no more than one.
#include "storage/DSStoreWalk.h"

#include <fmt/core.h>

namespace velmo::detail {

void DSStoreWalk::refuse(std::string_view complaint) {
    ++refused_;
    if (complain_ && !complaint.empty()) complain_(complaint);
}

void DSStoreWalk::enter(std::uint32_t node) {
    // The texts have numbers with a sign.
    const auto shown = static_cast<std::int32_t>(node);
    if (node >= used_.size())
        return refuse(fmt::format("Invalid node {} (max {}).", shown, used_.size()));
    if (used_[node]) return refuse(fmt::format("Node {} already used.", shown));
    const std::uint32_t size = store_.sizeAtIndex(node);
    auto block = size <= bytesLeft_ ? store_.blockAtIndex(node) : std::nullopt;
    if (!block) return refuse();
    bytesLeft_ -= size;
    used_[node] = true;
    const std::uint32_t next = block->readUInt32(), count = block->readUInt32();
    path_.push_back({std::move(*block), node, next, count});
}

void DSStoreWalk::leave() {
    const std::uint32_t node = path_.back().node, next = path_.back().next;
    if (path_.back().left > 0) ++refused_;  // the block ended first
    path_.pop_back();
    if (next != 0 && next != node) enter(next);
}

/// Goes on by a child or a record; false ends the walk.
bool DSStoreWalk::step(Reader read) {
    Frame& frame = path_.back();
    if (!frame.isLeaf() && !frame.isChildRead) {
        frame.child = frame.block.readUInt32();
        frame.isChildRead = true;
        if (order_ == Order::ChildFirst && frame.child != frame.node)
            return enter(frame.child), true;
    }
    --frame.left;
    frame.isChildRead = false;
    const Next next = read(frame.block);
    if (next == Next::Node) frame.left = 0;
    if (next == Next::Nothing) return false;
    const bool isChildDue = order_ == Order::RecordFirst && !frame.isLeaf();
    if (isChildDue && frame.child != frame.node) enter(frame.child);
    return true;
}

std::size_t DSStoreWalk::run(std::uint32_t root, Reader read) {
    used_.assign(store_.numberOfBlocks(), false);
    bytesLeft_ = store_.file().length();
    refused_ = 0;
    path_.clear();
    for (enter(root); !path_.empty();)
        if (path_.back().isAtEnd())
            leave();
        else if (!step(read))
            break;
    return refused_;
}

}  // namespace velmo::detail
