// The tags of feeds that mean something.
#pragma once

#include <cstdint>

#include <velmocore/markup/TagScanner.h>

namespace velmo::detail {

enum class FeedTag : std::uint8_t {
    Other,
    // Roots, of feeds and of pages.
    RSS,
    RDF,
    Feed,
    HTML,
    Head,
    Body,
    // Items and their parts.
    Item,
    Title,
    Link,
    GUID,
    Author,
    Name,
    Creator,
    Date,
    Summary,
    Description,
    Content,
    EncodedContent,
    Category,
    Enclosure,
};

/// What a tag means, by its name in any case. Within a feed "rss:" in front of it does not count;
/// the roots never have it.
FeedTag feedTagOf(const Tag& tag);

}  // namespace velmo::detail
