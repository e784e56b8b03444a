#include <velmocore/markup/FeedRecognition.h>

#include "markup/FeedRoots.h"
#include "markup/TagScan.h"
#include "markup/TagWalk.h"

namespace velmo {

using namespace detail;

namespace {

/// The walk that is a scan of what may be a feed.
auto feedScanOf(std::u16string_view text, const WebRules& web) {
    return [text, &web](TagHandler handler) { scanTags(text, handler, web, Markup::Feed); };
}

}  // namespace

bool detail::isFeedOf(TagWalk walk) {
    bool isFeed = false;
    walk([&](const Tag& tag) {
        isFeed = dialectOfRoot(tag) != FeedDialect::None;
        return isFeed || isPageRoot(tag);
    });
    return isFeed;
}

FeedCompleteness detail::feedCompletenessOf(TagWalk walk) {
    FeedRecognition recognition;
    walk([&](const Tag& tag) { return recognition.note(tag); });
    return recognition.found();
}

bool detail::isFeedOfBytes(std::string_view utf8, const WebRules& web) {
    const auto scan = [&](ByteTagHandler handler) { scanTags(utf8, handler, web, Markup::Feed); };
    return isFeedOf(widened(scan, {.text = TagParts::Text::None}));
}

bool isFeed(std::u16string_view page, const WebRules& web) {
    return isFeedOf(feedScanOf(page, web));
}

FeedCompleteness isFeedComplete(std::u16string_view page, const WebRules& web) {
    return feedCompletenessOf(feedScanOf(page, web));
}

}  // namespace velmo
