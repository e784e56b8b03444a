#include <velmocore/feeds/FeedItems.h>

#include <utility>

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/CharacterTests.h>
#include <velmocore/text/Comparison.h>

#include "feeds/FeedScan.h"

namespace velmo {
namespace {

Feed feedOf(detail::FeedFacts&& facts) { return {facts.recognized, std::move(facts.title), {}}; }

}  // namespace

Feed parseFeedWithHandler(std::u16string_view feed,
                          FunctionRef<bool(const FeedItemView& item)> handler,
                          const FeedOptions& options) {
    return feedOf(detail::scanFeed(feed, {.item = handler}, options.baseURL));
}

Feed readFeed(std::u16string_view feed, const FeedOptions& options) {
    std::vector<FeedItem> items;
    Feed read = parseFeedWithHandler(
        feed,
        [&](const FeedItemView& item) {
            items.push_back(detail::keptItem(item));
            return false;
        },
        options);
    read.items = std::move(items);
    return read;
}

std::vector<FeedItem> getItemsOfFeed(std::u16string_view feed, const URL& baseURL) {
    return readFeed(feed, {.baseURL = baseURL}).items;
}

String feedTitle(std::u16string_view feed) {
    const auto stop = [](const detail::FeedFacts&) { return true; };
    return detail::scanFeed(feed, {.channel = stop}, {}).title;
}

}  // namespace velmo
