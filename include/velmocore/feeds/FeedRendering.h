#pragma once

#include <span>
#include <string>

#include <velmocore/feeds/FeedItems.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/readers/DateOptions.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Feeds and items as HTML pages. Display HTML is for people: with dates, authors, enclosures and a
// style sheet. Searchable HTML is for an index, and holds only what is worth finding. Texts of a
// feed are HTML and stay so: show a page that was made of a foreign feed where it may run no
// scripts. Time is linear in the feed. Any thread.
//
//     const FeedItem item = {.title = u"News", .link = u"http://h.org/"};
//     const String page = stringByConvertingItemToSearchableHTML(item);
//     htmlLinks(page).links[0];    // http://h.org/

/// The path of the style sheet for display HTML: the user default "linkableFeedStyleSheet", else
/// velmo.feeds.stylesheet.css among the library's resources. Absent if there is none. The
/// name of a sheet ends in ".feeds.stylesheet.css", by which saved pages are known.
[[nodiscard]] VELMO_API String linkableFeedStyleSheet();

/// How feeds are shown.
struct FeedDisplayOptions {
    /// Whether the sheet is linked or a part of the page. A list of items always links it.
    bool linkedStyleSheet = true;
    /// Ours: another sheet than linkableFeedStyleSheet(). One that cannot be read is empty.
    Path styleSheet = {};
    /// Ours: how dates are read. Their zone is also the one in which they are shown.
    DateOptions dates = {};
    /// Ours: of the dates that are shown, as "en_GB"; the user's if empty.
    std::string locale = {};
    FeedOptions feed = {};  ///< how a feed, and the markup of its items, is read
};

/// The display HTML of a feed, made in the scan of its items. A text that is no feed comes back as
/// it is.
[[nodiscard]] VELMO_API String stringByConvertingFeed(const String& feed,
                                                      const FeedDisplayOptions& options = {});
/// The same with one of the options.
[[nodiscard]] inline String stringByConvertingFeedToDisplayHTMLUsingLinkedStyleSheet(
    const String& feed, bool linked) {
    return stringByConvertingFeed(feed, {.linkedStyleSheet = linked});
}

/// One item, with its author and tags in the head. An item may have an icon here.
[[nodiscard]] VELMO_API String stringByConvertingItemToSearchableHTML(const FeedItem& item,
                                                                      const WebRules& web = {});
[[nodiscard]] VELMO_API String
stringByConvertingItemToDisplayHTML(const FeedItem& item, const FeedDisplayOptions& options = {});
[[nodiscard]] inline String stringByConvertingItemToDisplayHTMLUsingLinkedStyleSheet(
    const FeedItem& item, bool linked) {
    return stringByConvertingItemToDisplayHTML(item, {.linkedStyleSheet = linked});
}

/// A list of items; none makes a page with an empty body.
[[nodiscard]] VELMO_API String
stringByConvertingItemsToSearchableHTML(std::span<const FeedItem> items, const WebRules& web = {});
[[nodiscard]] VELMO_API String stringByConvertingItemsToDisplayHTML(
    std::span<const FeedItem> items, const FeedDisplayOptions& options = {});

/// Saved display HTML with the sheet that it links made a part of it: linkableFeedStyleSheet() as
/// it is now, or none if that cannot be read. The page itself if it links none.
[[nodiscard]] VELMO_API String stringByReplacingLinkedStyleSheet(const String& page);

}  // namespace velmo
