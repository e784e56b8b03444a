#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

// Whether a text is a feed. The first tag that decides does so: the root of a feed, be it opening
// or closing, says yes; html, head and body say no. All tags in front of it are passed over, as is
// text, so that a comment or a warning of the server does not hide a feed. Absent or empty text is
// none. Tags are told apart by the rules of today where they are on. Time is linear. Any thread.
//
//     isFeed(u"<?xml version='1.0'?><rss version='2.0'>");    // true
//     isFeed(u"<html><body><rss>");                           // false
//     const FeedCompleteness found = isFeedComplete(u"<feed><entry></entry>");
//     found.isFeed;        // true
//     found.isComplete;    // false

/// What kind of feed it is, by the name of its root: rss, rdf:rdf or feed.
enum class FeedDialect : std::uint8_t { None, RSS, RDF, Atom };

/// Stops at the tag that decides.
[[nodiscard]] VELMO_API bool isFeed(std::u16string_view page, const WebRules& web = {});

/// Whether a text is a feed, and all of one.
struct FeedCompleteness {
    bool isFeed = false;  ///< as isFeed() tells it
    /// Whether a root was closed, of whatever dialect; a download that broke off has none. An html,
    /// head or body tag ends the search, as one in an item may do whose markup is not escaped.
    bool isComplete = false;
    /// Of the first root; ours.
    FeedDialect dialect = FeedDialect::None;
};
/// Reads on to the tag that closes the root.
[[nodiscard]] VELMO_API FeedCompleteness isFeedComplete(std::u16string_view page,
                                                        const WebRules& web = {});

}  // namespace velmo
