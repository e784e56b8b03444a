// Comparing text with ASCII keywords without regard to case. The keyword is written in
// capitals; the text is folded through the upper-case table, so that the long s counts
// as an S and the dotless i as an I.
#pragma once

#include <string_view>

#include <velmocore/text/ConversionTables.h>

#include "platform/Ascii.h"

namespace velmo::detail::keyword {

/// The unit through the upper-case table; ASCII does not touch memory.
inline char16_t upper(char16_t unit) {
    return unit < 128 ? detail::ascii::toUpper(unit) : upperCharsTable()[unit];
}

/// Whether the units begin with the keyword.
inline bool beginsWith(std::u16string_view units, std::string_view capitals) {
    if (units.size() < capitals.size()) return false;
    for (std::size_t i = 0; i < capitals.size(); ++i)
        if (upper(units[i]) != static_cast<unsigned char>(capitals[i])) return false;
    return true;
}

inline bool equals(std::u16string_view units, std::string_view capitals) {
    return units.size() == capitals.size() && beginsWith(units, capitals);
}

/// The same for two texts, neither of which need be in capitals.
inline bool equalNoCase(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (upper(a[i]) != upper(b[i])) return false;
    return true;
}

/// Where the keyword first stands in the units, from a position on; npos if nowhere. A plain loop:
/// keywords are short constants, and what they are sought in is a tag, a type or a link.
inline std::size_t find(std::u16string_view units, std::string_view capitals,
                        std::size_t from = 0) {
    for (std::size_t i = from; i + capitals.size() <= units.size(); ++i)
        if (beginsWith(units.substr(i), capitals)) return i;
    return std::u16string_view::npos;
}

inline bool contains(std::u16string_view units, std::string_view capitals) {
    return find(units, capitals) != std::u16string_view::npos;
}

}  // namespace velmo::detail::keyword
