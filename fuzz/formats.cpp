// A format of foreign make with a few arguments: every conversion takes one of its own kind or
// stays, and nothing grows beyond the widths that a format may name.
#include <algorithm>

#include <velmocore/text/Replacing.h>

#include "Input.h"

using namespace velmo;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const String format = fuzz::unitsOf(data, std::min<std::size_t>(size, 200));
    std::u16string text = u"<$>";
    require(replaceStringWithFormat(text, u"$", format, {3, 2.5, u"three", String(), -1}) == 1);
    require(text.front() == u'<' && text.back() == u'>');
    // Five arguments at most, of five digits of width and of precision.
    require(text.size() <= format.length() + 2 + 5 * (2 * 99999 + 400));
    if (format.view().find(u'%') == std::u16string_view::npos)
        require(text == u"<" + std::u16string(format) + u">");
    return 0;
}
