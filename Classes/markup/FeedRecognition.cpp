#include <velmocore/markup/FeedRecognition.h>

#include "markup/FeedRoots.h"
#include "markup/TagWalk.h"

namespace velmo {

using namespace detail;

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

bool isFeed(std::u16string_view page, const WebRules& web) { return isFeedOf(scanOf(page, web)); }

FeedCompleteness isFeedComplete(std::u16string_view page, const WebRules& web) {
    return feedCompletenessOf(scanOf(page, web));
}

}  // namespace velmo
