#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/markup/FeedRecognition.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>
#include <velmocore/url/URL.h>

namespace velmo {

// The items of RSS, RDF and Atom feeds. A feed is read by the scanner for pages and not as XML:
// what is damaged costs the item that it stands in and no other, and of a download that broke off
// all items come that were whole. What is no feed has no items; nothing fails. Time is linear in
// the feed. Any thread.
//
//     const Feed feed = readFeed(
//         u"<rss><channel><title>News</title><item><title>A&amp;B</title><link>/a</link></item>",
//         {.baseURL = URL::URLWithString(u"http://h.org/feed")});
//     feed.title;             // News
//     feed.items[0].title;    // A&B
//     feed.items[0].link;     // http://h.org/a
//     feed.isComplete;        // false

/// What stands beside an item, as the recording of a broadcast.
struct FeedEnclosure {
    String url;     ///< as the feed has it, without entities
    String length;  ///< as the feed has it, in bytes as a rule; absent if it does not tell
};

/// An item. What the feed does not give is empty, but for the icon.
struct FeedItem {
    String title = String::empty();              ///< without entities
    String description = String::empty();        ///< without entities, but with its markup
    String content = String::empty();            ///< the same
    String author = String::empty();             ///< as it stands, without entities
    String guid = String::empty();               ///< its id, unless that is said to be no link
    String date = String::empty();               ///< as it stands
    String link = String::empty();               ///< where it leads to, repaired
    std::vector<String> tags = {};               ///< its categories
    std::vector<FeedEnclosure> enclosures = {};  ///< in the order of the feed
    /// The reference of a picture, for who renders it. No feed gives it.
    String icon = {};
};

/// The same as views, which are good while the handler is called that they are handed to.
struct FeedItemView {
    // As those of FeedItem.
    std::u16string_view title, description, content, author, guid, date, link;
    /// As FeedEnclosure.
    struct Enclosure {
        std::u16string_view url, length;  ///< a length that is not there has a null data()
    };
    // As those of FeedItem.
    std::span<const std::u16string_view> tags;
    std::span<const Enclosure> enclosures;
};

/// How a feed is read.
struct FeedOptions {
    /// Links that begin with / are relative to it. Absent if it is not known.
    URL baseURL = {};
    /// A CDATA section counts for the next part of its item that is closed, also if it stands in an
    /// element that is no part of an item, or in a guid. Ours: with this it does not count outside
    /// of its element, and is the text of a guid, as XML has it.
    bool boundCData = false;
    WebRules web = {};  ///< how tags, attributes, references and bases are read
};

/// What one scan tells of a feed.
struct Feed : FeedCompleteness {
    /// Of its channel; absent if it has none, if it comes after the items, or if it is CDATA.
    String title = {};
    std::vector<FeedItem> items = {};  ///< in the order of the feed
};
/// All items of a feed.
[[nodiscard]] VELMO_API Feed readFeed(std::u16string_view feed, const FeedOptions& options = {});

/// Hands each item out when it ends, and keeps none: of a large feed nothing is copied but texts
/// with entities, one item at a time. The feed that comes back has no items. The handler
/// stops the scan by true; isComplete is then false, if the root was not closed before.
///
///     std::size_t enclosures = 0;
///     parseFeedWithHandler(u"<rss><item><enclosure url=a.mp3 /></item>",
///                          [&](const FeedItemView& item) {
///                              enclosures += item.enclosures.size();
///                              return false;
///                          });
///     enclosures;    // 1
VELMO_API Feed parseFeedWithHandler(std::u16string_view feed,
                                    FunctionRef<bool(const FeedItemView& item)> handler,
                                    const FeedOptions& options = {});

/// The items only.
[[nodiscard]] VELMO_API std::vector<FeedItem> getItemsOfFeed(std::u16string_view feed,
                                                             const URL& baseURL = {});
/// Feed::title; the scan ends with the first item.
[[nodiscard]] VELMO_API String feedTitle(std::u16string_view feed, const WebRules& web = {});

/// Whether there is nothing to show of an item but its title: it has no icon, and its content, or
/// else its description, is blank or says what the title says, iframes and what is no letter aside.
[[nodiscard]] VELMO_API bool isEmptyFeedItem(const FeedItem& item, const WebRules& web = {});

}  // namespace velmo
