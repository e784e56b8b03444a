// What every handler asks of a tag.
#pragma once

#include <algorithm>
#include <string_view>

#include <velmocore/markup/TagAttributes.h>
#include <velmocore/markup/TagPredicates.h>
#include <velmocore/markup/TagScanner.h>

#include "markup/WebTags.h"
#include "text/Keyword.h"

namespace velmo::detail {

/// Whether the tag opens an element: at least three units, and no / behind the <.
template <class AnyTag>
bool isOpening(const AnyTag& tag) {
    return tag.tagLength >= 3 && !tag.isClosing();
}

/// Whether the tag ends in "/>", where that closes an element.
inline bool isSelfClosing(const Tag& tag) {
    if (tag.web.selfClosing && !webTags::isVoidElement(tag)) return false;
    const std::u16string_view whole = tag.whole();
    return whole.size() >= 4 && whole[whole.size() - 2] == u'/';
}

/// Whether the tag ends an element: as its closing tag, or as one that closes itself.
inline bool endsElement(const Tag& tag) {
    return tag.web.selfClosing ? tag.isClosing() : isTagClosed(tag.whole());
}

/// The opening tag of an element that is reported with its body; any other tag is all of it.
template <class AnyTag>
auto openingTagOf(const AnyTag& tag) {
    const auto element = tag.whole();
    if (tag.web.attributes) return webTags::openingTagOf(element);
    const auto isQuoteOrEnd = [](auto unit) { return unit == '>' || webTags::isQuote(unit); };
    for (std::size_t i = 1; i < element.size(); ++i) {
        if (element[i] == '>') return element.substr(0, i + 1);
        if (element[i] != '=') continue;
        while (i < element.size() && !isQuoteOrEnd(element[i])) ++i;
        i = std::min(i, element.size() - 1);
        if (element[i] == '>') return element.substr(0, i + 1);
        i = std::min(element.find(element[i], i + 1), element.size());
    }
    return element;
}

/// Whether the tag is a script or style element with its body.
inline bool hasOwnBody(const Tag& tag) {
    if (!(tag.isNamed("SCRIPT") || tag.isNamed("STYLE")) || tag.isClosing()) return false;
    return openingTagOf(tag).size() < tag.tagLength;
}

/// The value of an attribute where it stands; null if there is none.
inline std::u16string_view attributeOf(std::u16string_view tag, std::string_view name,
                                       const WebRules& web) {
    const Range range = rangeOfAttributeOfTagCharacters(tag, name, web);
    return range.isFound() ? tag.substr(range.location, range.length) : std::u16string_view();
}

/// The same of a tag that stands in its page, which is faster.
VELMO_API Range rangeOfAttribute(const Tag& tag, std::string_view name);
inline std::u16string_view attributeOf(const Tag& tag, std::string_view name) {
    const Range range = rangeOfAttribute(tag, name);
    return range.isFound() ? tag.whole().substr(range.location, range.length)
                           : std::u16string_view();
}

/// Where the value stands in a tag of bytes that is ASCII.
Range rangeOfAttributeOfAscii(const ByteTag& tag, std::string_view name);

}  // namespace velmo::detail
