// Which elements a page hides by their attributes. Most tags have none that could, and are told by
// pairs of letters that seldom stand in others: a tag is read only if it may name a style, or
// "hidden".
#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/text/WebRules.h>

#include "text/TextMarks.h"

namespace velmo::detail {

/// Whether the attributes of a tag take its element out of sight.
VELMO_API bool isHiddenElement(std::u16string_view tag, const WebRules& web);

/// Whether a style asks for letters of one to four points.
bool isTinyFont(std::u16string_view style);

/// Whether a tag may be one of a hidden element, one pair of units after the other.
template <class Unit>
bool mayHideByUnit(std::basic_string_view<Unit> tag) {
    for (std::size_t i = 0; i < tag.size(); ++i) {
        const Unit first = tag[i], second = i + 1 < tag.size() ? tag[i + 1] : Unit();
        // Some units outside ASCII have an upper-case form in it.
        if (first == 0 || (first & ~0x7F)) return true;
        if ((first | 0x20) == 't' && (second | 0x20) == 'y') return true;  // "style"
        if ((first | 0x20) == 'd' && (second | 0x20) == 'd') return true;  // "hidden"
    }
    return false;
}

/// The same, and true for some others.
template <class Unit>
bool mayHide(std::basic_string_view<Unit> tag) {
    constexpr std::size_t Shortest = 11;  ///< a name of one unit, STYLE= and a value
    if (tag.size() < Shortest) return false;
#if defined(__SSE2__)
    constexpr std::size_t Step = 16;
    if (tag.size() <= Step) return true;
    const __m128i lower = _mm_set1_epi8(0x20);
    const auto holds = [&](std::size_t at) {
        const __m128i block = loadAsBytes(tag.data() + at);
        const __m128i first = _mm_or_si128(block, lower);
        const __m128i second = _mm_or_si128(loadAsBytes(tag.data() + at + 1), lower);
        const auto pair = [&](char a, char b) {
            return _mm_and_si128(_mm_cmpeq_epi8(first, _mm_set1_epi8(a)),
                                 _mm_cmpeq_epi8(second, _mm_set1_epi8(b)));
        };
        // NUL and, as numbers with a sign, the bytes outside ASCII.
        const __m128i special = _mm_cmplt_epi8(block, _mm_set1_epi8(1));
        return _mm_movemask_epi8(
                   _mm_or_si128(special, _mm_or_si128(pair('t', 'y'), pair('d', 'd')))) != 0;
    };
    // The last pairs are looked at with some that were looked at before; behind them stands a >.
    const std::size_t last = tag.size() - Step - 1;
    for (std::size_t at = 0; at < last; at += Step)
        if (holds(at)) return true;
    return holds(last);
#else
    return mayHideByUnit(tag);
#endif
}

}  // namespace velmo::detail
