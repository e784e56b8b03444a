// A tag of a page that is scanned in the bytes it came in. UTF-8 hides no mark of a tag in a longer
// sequence, and no sequence, be it broken, reaches over one: so a span of it that marks bound,
// decoded by itself, is the same span of the decoded page.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <velmocore/markup/TagScanner.h>

#include "text/ByteKeyword.h"

namespace velmo::detail {

/// What Tag is to units; all locations and lengths count bytes of UTF-8.
struct ByteTag {
    std::string_view characters;
    std::size_t nameLocation = NotFound;
    std::size_t nameLength = 0;
    std::size_t tagLocation = 0;
    std::size_t tagLength = 0;
    std::size_t textLocation = 0;
    TagKind kind = TagKind::End;
    bool isNamePlain = true;  ///< whether the name is ASCII
    WebRules web = {};

    std::string_view name() const {
        return nameLength ? characters.substr(nameLocation, nameLength) : std::string_view();
    }
    bool isNamed(std::string_view ascii) const {
        return (nameLength == ascii.size() || !isNamePlain) && hasNameUnits(ascii);
    }
    std::string_view whole() const {
        // Not substr(), which may throw: where that is told, each call costs more.
        const std::size_t start = std::min(tagLocation, characters.size());
        return {characters.data() + start, std::min(tagLength, characters.size() - start)};
    }
    bool hasText() const { return tagLocation > textLocation; }
    std::string_view text() const {
        if (!hasText()) return {};
        return {characters.data() + textLocation, tagLocation - textLocation};
    }
    bool isClosing() const {
        return tagLength > 1 && tagLocation + 1 < characters.size() &&
               characters[tagLocation + 1] == '/';
    }

private:
    /// A letter outside ASCII may count as one of the name.
    bool hasNameUnits(std::string_view ascii) const {
        std::string_view left = name();
        for (const char letter : ascii) {
            if (left.empty()) return false;
            FirstOfUtf8 first{static_cast<unsigned char>(left[0]), 1};
            if (first.unit > 127) first = firstOfUtf8(left);
            if (keyword::upper(first.unit) != keyword::upper(static_cast<unsigned char>(letter)))
                return false;
            left.remove_prefix(first.length);
        }
        return left.empty();
    }
};

using ByteTagHandler = FunctionRef<bool(const ByteTag&)>;

/// GetTagsOfString() of UTF-8 without a byte-order mark.
void getTagsOfBytes(std::string_view utf8, ByteTagHandler handler, const WebRules& web);

/// The tag of a text of these units.
template <class Unit>
struct TagOfUnits {
    using Type = Tag;
};
template <>
struct TagOfUnits<char> {
    using Type = ByteTag;
};
template <class Unit>
using TagOf = typename TagOfUnits<Unit>::Type;

/// The length of a tag's name in units, whatever it was scanned in.
inline std::size_t lengthOfName(const Tag& tag) { return tag.nameLength; }
inline std::size_t lengthOfName(const ByteTag& tag) {
    if (tag.isNamePlain) return tag.nameLength;
    std::size_t units = 0;
    for (std::string_view left = tag.name(); !left.empty(); ++units) {
        const FirstOfUtf8 first = firstOfUtf8(left);
        units += (first.unit & 0xF800) == 0xD800;  // the first half of a pair
        left.remove_prefix(first.length);
    }
    return units;
}

}  // namespace velmo::detail
