#include <velmocore/feeds/FeedItems.h>

#include <algorithm>
#include <utility>

#include <velmocore/markup/TagStripping.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/CharacterTests.h>
#include <velmocore/text/Comparison.h>

#include "feeds/FeedScan.h"

namespace velmo {
namespace {

using Units = std::u16string_view;

/// Whether the body of an item says no more than its title.
bool repeatsTitle(const String& body, Units title, const WebRules& web) {
    return isEqualToStringNoCase(body, title) ||
           equalStringsNoCaseUsingCharacterSetRep(body, title, alphaCharacterSetRep()) ||
           isEqualToStringNoCase(stripTag(body, "IFRAME", web), title);
}

bool isBlank(Units text) {
    const CharacterSetRep& white = whiteCharacterSetRep();
    return std::ranges::all_of(text, [&](char16_t unit) { return white.contains(unit); });
}

Feed feedOf(detail::FeedFacts&& facts) { return {facts.recognized, std::move(facts.title), {}}; }

}  // namespace

Feed parseFeedWithHandler(std::u16string_view feed,
                          FunctionRef<bool(const FeedItemView& item)> handler,
                          const FeedOptions& options) {
    return feedOf(detail::scanFeed(feed, {.item = handler}, options));
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

String feedTitle(std::u16string_view feed, const WebRules& web) {
    const auto stop = [](const detail::FeedFacts&) { return true; };
    return detail::scanFeed(feed, {.channel = stop}, {.web = web}).title;
}

bool isEmptyFeedItem(const FeedItem& item, const WebRules& web) {
    const String& body = item.content.isEmpty() ? item.description : item.content;
    return item.icon.isAbsent() && (isBlank(body) || repeatsTitle(body, item.title, web));
}

}  // namespace velmo
