// Text in normalisation form C, without a copy where it is in that form already.
#pragma once

#include <string_view>

#include "platform/Unicode.h"
#include "text/UnitScan.h"

namespace velmo::detail {

/// Whether the text is surely in form C. Below U+0300 nothing combines.
inline bool isComposed(std::u16string_view text) noexcept {
    const char16_t* from = text.data();
    const char16_t* const to = from + text.size();
#if defined(__SSE2__)
    from = scan::findWhere(
        from, to, [](__m128i block) { return scan::inRange(block, 0x300, 0xFFFF); },
        [](char16_t unit) { return unit >= 0x300; });
#endif
    if (from == to) return true;
    if (from > text.data()) --from;  // a mark combines with the unit in front of it
    return unicode::isNormalizedC({from, to});
}

/// Hands the text on in form C.
template <class Function>
auto withComposed(std::u16string_view text, Function function) {
    if (isComposed(text)) return function(text);
    const String composed = unicode::normalized(text, unicode::Form::C);
    return function(composed.view());
}

}  // namespace velmo::detail
