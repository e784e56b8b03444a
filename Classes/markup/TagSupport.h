// What every handler asks of a tag.
#pragma once

#include <algorithm>
#include <string_view>

#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagScanner.h>

#include "text/Keyword.h"

namespace velmo::detail {

/// Whether the tag opens an element: at least three units, and no / behind the <.
inline bool isOpening(const Tag& tag) { return tag.tagLength >= 3 && !tag.isClosing(); }

/// Whether the tag ends in "/>".
inline bool isSelfClosing(const Tag& tag) {
    const std::u16string_view whole = tag.whole();
    return whole.size() >= 4 && whole[whole.size() - 2] == u'/';
}

/// The opening tag of an element that is reported with its body; any other tag is all of it.
inline std::u16string_view openingTagOf(std::u16string_view element) {
    for (std::size_t i = 1; i < element.size(); ++i) {
        if (element[i] == u'>') return element.substr(0, i + 1);
        if (element[i] != u'=') continue;
        i = std::min(element.find_first_of(u"\"'>", i), element.size() - 1);
        if (element[i] == u'>') return element.substr(0, i + 1);
        i = std::min(element.find(element[i], i + 1), element.size());
    }
    return element;
}

/// Whether the tag is a script or style element with its body.
inline bool hasOwnBody(const Tag& tag) {
    if (!(tag.isNamed("SCRIPT") || tag.isNamed("STYLE")) || tag.isClosing()) return false;
    return openingTagOf(tag.whole()).size() < tag.tagLength;
}

/// The value of an attribute where it stands; null if there is none.
inline std::u16string_view attributeOf(std::u16string_view tag, std::string_view name) {
    const Range range = rangeOfAttributeOfTagCharacters(tag, name);
    return range.isFound() ? tag.substr(range.location, range.length) : std::u16string_view();
}

}  // namespace velmo::detail
