// The number that a text begins with, as in "100%" and "-3px".
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include <velmocore/text/CharacterSets.h>

#include "platform/Ascii.h"

namespace velmo::detail {

/// White space, a sign and decimal digits are read, up to the first other unit; nothing
/// to read gives 0, and a number beyond 64 bits the nearest one.
inline std::int64_t leadingInteger(std::u16string_view text) {
    constexpr auto Max = std::numeric_limits<std::int64_t>::max();
    std::size_t i = 0;
    while (i < text.size() && whiteCharacterSetRep().contains(text[i])) ++i;
    const bool negative = i < text.size() && text[i] == u'-';
    if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) ++i;
    std::int64_t value = 0;
    for (; i < text.size() && ascii::isDigit(text[i]); ++i) {
        const int digit = text[i] - u'0';
        // Before it overflows: the product of the next line would pass 64 bits.
        if (value > (Max - digit) / 10) return negative ? -Max - 1 : Max;
        value = value * 10 + digit;
    }
    return negative ? -value : value;
}

}  // namespace velmo::detail
