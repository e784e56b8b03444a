// The frame of every operation that changes a string here and there.
#pragma once

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// Copies the runs between the places that find gives, each in one piece, and lets replace
/// write what stands at such a place; it gives the position behind what it took. The string
/// itself, absent or not, if there is no such place.
///
///     find(from, to)         -> the next place, or to
///     replace(at, to, out)   -> where to go on
template <class Find, class Replace>
String rewriteRuns(const String& string, Find find, Replace replace) {
    const char16_t* from = string.begin();
    const char16_t* const end = string.end();
    const char16_t* hit = find(from, end);
    if (hit == end) return string;
    StringBuilder out(string.length() + string.length() / 8 + 16);
    while (hit != end) {
        out.append({from, hit});
        from = replace(hit, end, out);
        hit = find(from, end);
    }
    out.append({from, end});
    return out.finish();
}

}  // namespace velmo::detail
