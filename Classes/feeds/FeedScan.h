// The scan of a feed, which items, titles and rendering have in common.
#pragma once

#include <string_view>

#include <velmocore/feeds/FeedItems.h>

namespace velmo::detail {

/// What a scan has found besides items.
struct FeedFacts {
    FeedCompleteness recognized = {};
    /// The root as the items know it, which a head tag in front of it does not hide.
    bool rootSeen = false;
    /// Whether anything of an item was closed.
    bool headWritten = false;
    String title = {};  ///< of the channel; absent if it has none
};

struct FeedHandlers {
    /// Of each item; true stops the scan.
    FunctionRef<bool(const FeedItemView&)> item = nullptr;
    /// When the channel is left and the first item begins; true stops the scan. The title is then
    /// known.
    FunctionRef<bool(const FeedFacts&)> channel = nullptr;
};

FeedFacts scanFeed(std::u16string_view feed, const FeedHandlers& handlers,
                   const FeedOptions& options = {});

/// The item as strings of its own.
FeedItem keptItem(const FeedItemView& item);

}  // namespace velmo::detail
