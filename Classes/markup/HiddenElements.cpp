#include "markup/HiddenElements.h"

#include <cstdint>

#include <velmocore/markup/TagAttributes.h>

#include "markup/TagSupport.h"
#include "platform/Ascii.h"
#include "text/Keyword.h"
#include "text/LeadingInteger.h"

namespace velmo::detail {
namespace {

using Units = std::u16string_view;

bool containsBehind(Units text, Units first, Units second) {
    const std::size_t at = text.find(first);
    return at != Units::npos && text.find(second, at) != Units::npos;
}

std::int64_t styleNumber(Units style, Units name) {
    return leadingInteger(attributeOfStyleWithName(style, name));
}

bool isOneToThree(std::int64_t size) { return size >= 1 && size <= 3; }

/// Whether a tag's style takes its element out of sight.
bool isHiddenStyle(Units tag, const WebRules& web) {
    const Units style = attributeOf(tag, "STYLE", web);
    if (style.empty()) return false;
    if (containsBehind(style, u"visibility", u"hidden")) return true;
    if (containsBehind(style, u"display:", u"none")) return true;
    if (keyword::contains(style, "POSITION:ABSOLUTE") &&
        (styleNumber(style, u"TOP") < -1000 || styleNumber(style, u"LEFT") < -1000))
        return true;
    const TagSize size = getTagWidth(tag, web);
    return size && (isOneToThree(size.width) || size.height < 0 || isOneToThree(size.height));
}

/// The same as browsers have it.
bool isHiddenByWebStyle(Units tag, const WebRules& web) {
    const Units style = attributeOf(tag, "STYLE", web);
    const String display = attributeOfStyleWithName(style, u"DISPLAY"),
                 visibility = attributeOfStyleWithName(style, u"VISIBILITY");
    return keyword::beginsWith(display, "NONE") || keyword::beginsWith(visibility, "HIDDEN") ||
           keyword::beginsWith(visibility, "COLLAPSE");
}

}  // namespace

bool isHiddenElement(Units tag, const WebRules& web) {
    if (web.hiddenElements) return isHiddenByWebStyle(tag, web);
    return keyword::equals(attributeOf(tag, "CLASS", web), "HIDDEN") || isHiddenStyle(tag, web);
}

bool isTinyFont(Units style) {
    if (!keyword::contains(style, "FONT-SIZE")) return false;
    const std::size_t points = keyword::find(style, "PT");
    if (points == Units::npos || points < 2) return false;
    const char16_t tens = style[points - 2], ones = style[points - 1];
    // With a digit in front it would be ten points and more.
    return !ascii::isDigit(tens) && ones >= u'1' && ones <= u'4';
}

}  // namespace velmo::detail
