// The one removal routine: units are kept or not, and those kept may be mapped.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <velmocore/platform/String.h>

#include "text/UnitClasses.h"
#include "text/UnitFold.h"

namespace velmo::detail {

/// Writes the mapped units of [from, to) that are kept to out, and gives the end of what was
/// written. out may be from itself. There is no branch on what the text holds.
template <class Keep, class Map>
char16_t* copyKept(const char16_t* from, const char16_t* to, char16_t* out, const Keep& keep,
                   const Map& map) {
    for (; from < to; ++from) {
        const char16_t unit = *from;
        // Written whether it is kept or not; what is not kept is overwritten by the next.
        *out = map(unit);
        out += keep(unit) ? 1 : 0;
    }
    return out;
}

/// Writes the units of [from, to) that are in no class of removed units, likewise.
template <class Removed>
char16_t* copyWithout(const char16_t* from, const char16_t* to, char16_t* out,
                      const Removed& removed) {
    if constexpr (!Removed::isSparse)
        return copyKept(from, to, out, std::not_fn(removed), NoFold{});
    while (from < to) {
        const char16_t* const hit = removed.find(from, to);
        out = std::copy(from, hit, out);
        for (from = hit; from < to && removed(*from);) ++from;
    }
    return out;
}

/// The units that are kept, mapped: always a new string.
template <class Keep, class Map = NoFold>
String keptUnits(std::u16string_view units, const Keep& keep, const Map& map = {}) {
    StringBuilder out;
    char16_t* const start = out.prepare(units.size());
    const char16_t* const end =
        copyKept(units.data(), units.data() + units.size(), start, keep, map);
    out.commit(static_cast<std::size_t>(end - start));
    return out.finish();
}

/// The units outside the class; the string itself if there are none in it.
template <class Removed>
String withoutUnits(const String& string, const Removed& removed) {
    const char16_t* const first = removed.find(string.begin(), string.end());
    if (first == string.end()) return string;
    const auto clean = static_cast<std::size_t>(first - string.begin());
    StringBuilder out(string.length());
    out.append(string.view().substr(0, clean));
    char16_t* const start = out.data() + clean;
    const char16_t* const end = copyWithout(first, string.end(), start, removed);
    out.commit(static_cast<std::size_t>(end - start));
    return out.finish();
}

/// The same in place.
template <class Removed>
void removeUnits(std::u16string& text, const Removed& removed) {
    const char16_t* const end = text.data() + text.size();
    char16_t* const first = text.data() + (removed.find(text.data(), end) - text.data());
    const char16_t* const last = copyWithout(first, end, first, removed);
    text.resize(static_cast<std::size_t>(last - text.data()));
}

}  // namespace velmo::detail
