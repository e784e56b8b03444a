#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include <velmocore/feeds/FeedItems.h>
#include <velmocore/gather/SourceOpening.h>
#include <velmocore/platform/Export.h>

namespace velmo {

/// The items of a feed, each a page of its own: its link is the address, and its title, author and
/// date count where its content, which is the page, does not tell. An item without a link has no
/// place to be known by and is left out. What is no feed is an error. One thread at a time.
///
///     const std::string_view feed =
///         "<rss><item><title>Tea</title><link>http://h.org/</link></item></rss>";
///     FeedSource items(InputStream::ofBytes(Data(feed.begin(), feed.end())));
///     SourcePage page;
///     items.next(page) == PageSource::State::Page;     // true
///     page.title;                                      // Tea
class VELMO_API FeedSource final : public PageSource {
public:
    /// Reads the feed to its end.
    explicit FeedSource(InputStream&& stream, const SourceOptions& options = {});
    /// The next item.
    State next(SourcePage& page) override;
    /// In items.
    [[nodiscard]] SourceProgress progress() const override;

private:
    void read(InputStream& stream);

    SourceOptions options_;
    std::vector<FeedItem> items_;
    std::size_t next_ = 0;
    std::optional<Error> error_;
};

}  // namespace velmo
