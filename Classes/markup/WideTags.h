// Tags of bytes for handlers that read units: one tag at a time is decoded, with the text in front of
// it. So a page in UTF-8 is never decoded as a whole, and what no handler looks at is not at all.
#pragma once

#include <memory>
#include <string_view>

#include <velmocore/markup/TagScanner.h>

#include "markup/ByteTag.h"

namespace velmo::detail {

/// What a handler reads of a tag besides the tag itself.
struct TagParts {
    enum class Text { None, OfTitles, All };

    Text text = Text::All;  ///< in front of which tags
    bool bodies = false;  ///< of scripts and styles; without them their opening tags stand for them
};

/// Makes tags of units, one after the other.
class WideTags {
public:
    explicit WideTags(TagParts parts) : parts_(parts) {}

    /// The same tag, of a text that is no more than what is wanted of it: all locations are of that.
    /// Good until the next one.
    const Tag& of(const ByteTag& tag);

private:
    bool wantsText(const ByteTag& tag) const;
    char16_t* room(std::size_t bytes);

    const TagParts parts_;
    Tag tag_;
    std::unique_ptr<char16_t[]> units_;
    std::size_t capacity_ = 0;
};

/// A handler of tags of bytes that hands tags of units on.
inline auto widened(WideTags& wide, TagHandler handler) {
    return [&wide, handler](const ByteTag& tag) { return handler(wide.of(tag)); };
}

}  // namespace velmo::detail
