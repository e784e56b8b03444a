// What is known of the links of a page while its thumbnails are looked for: what each link has, and
// the rules by which it gets something or keeps what it has.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include <velmocore/markup/LinkThumbnails.h>

#include "markup/UniqueLinks.h"

namespace velmo::detail {

/// An image that counts, and its tag, which may name it.
struct Thumbnail {
    String url;
    std::u16string_view tag;
};

class IconsContext {
public:
    /// The number by which a link is known here.
    using Link = std::size_t;

    explicit IconsContext(const LinkThumbnailOptions& options) : options_(options) {}

    Link linkFor(std::u16string_view link);
    bool hasThumbnail(Link link) const { return !entries_[link].thumbnail.isAbsent(); }

    /// The second link to which a thumbnail may belong.
    std::optional<Link> held;

    /// Whether addThumbnail() would change anything.
    bool wantsThumbnail(std::optional<Link> link) const;
    /// Gives an image to the link, if there is one, and to the one held, by the rules of both.
    void addThumbnail(const Thumbnail& thumbnail, std::optional<Link> link);

    /// The titles that a tag has for the link. Without replace they count only if it has none.
    void addTitles(std::u16string_view tag, Link link, bool replace);
    /// The text of a link, as plain text.
    void addText(const String& text, Link link);

    /// All that was found. The context is empty then.
    LinkThumbnails finish();

private:
    /// A title or text, and how many words it has: to count them anew for each that would take its
    /// place would cost the square of their number.
    struct Wording {
        String string;
        std::size_t words = 0;
    };
    struct Entry {
        String thumbnail;
        Wording title, text;
        bool leadsToJpeg = false, showsJpeg = false;
    };

    bool heldIsReplacedFor(std::optional<Link> link) const;
    void setThumbnail(const Thumbnail& thumbnail, Link link);
    void addTitle(const String& title, Link link, bool replace);
    static void addString(Wording& present, const String& value, std::u16string_view key,
                          bool replace, bool collapseAll);

    const LinkThumbnailOptions& options_;
    std::vector<String> links_;
    UniqueLinks unique_{links_};
    std::vector<Entry> entries_;  ///< of the links, in their order
};

}  // namespace velmo::detail
