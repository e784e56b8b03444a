// Where lines end: at a feed unit, where CR and a LF behind it are one end.
#pragma once

#include <string_view>

#include "text/UnitClasses.h"

namespace velmo::detail {

/// The first place behind the line end that begins at a feed unit.
inline const char16_t* behindLineEnd(const char16_t* feed, const char16_t* to) {
    const bool pair = *feed == u'\r' && feed + 1 < to && feed[1] == u'\n';
    return feed + (pair ? 2 : 1);
}

/// Calls the function with each line, its end included: begin and end of the line.
template <class Function>
void forEachLine(const char16_t* from, const char16_t* to, Function function) {
    while (from < to) {
        const char16_t* const feed = Feeds{}.find(from, to);
        const char16_t* const end = feed == to ? to : behindLineEnd(feed, to);
        function(from, end);
        from = end;
    }
}

/// The feed units at the end of a text.
inline std::u16string_view trailingFeeds(std::u16string_view text) {
    std::size_t start = text.size();
    while (start > 0 && isFeedUnit(text[start - 1])) --start;
    return text.substr(start);
}

}  // namespace velmo::detail
