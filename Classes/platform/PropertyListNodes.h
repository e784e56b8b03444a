// The trees of the library that reads and writes property lists.
#pragma once

#include <plist/plist.h>

#include <memory>

#include <velmocore/platform/Bytes.h>

namespace velmo::detail {

struct FreePropertyNode {
    void operator()(void* node) const noexcept { plist_free(node); }
};
/// Owns a tree.
using PropertyNode = std::unique_ptr<void, FreePropertyNode>;

/// The tree that the bytes hold; null if they are no list, or one that would do harm.
PropertyNode propertyNode(Bytes bytes);

/// What a function of the library writes of a tree; absent if it cannot.
std::optional<Data> writtenNode(void* node, void (*write)(plist_t, char**, std::uint32_t*));

}  // namespace velmo::detail
