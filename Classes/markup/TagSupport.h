// What every handler asks of a tag.
#pragma once

#include <string_view>

#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagScanner.h>

#include "text/Keyword.h"

namespace velmo::detail {

/// Whether the tag opens an element: at least three units, and no / behind the <.
inline bool isOpening(const Tag& tag) { return tag.tagLength >= 3 && !tag.isClosing(); }

/// The value of an attribute where it stands; null if there is none.
inline std::u16string_view attributeOf(std::u16string_view tag, std::string_view name) {
    const Range range = rangeOfAttributeOfTagCharacters(tag, name);
    return range.isFound() ? tag.substr(range.location, range.length) : std::u16string_view();
}

}  // namespace velmo::detail
