// Comparing UTF-8 with ASCII keywords, as text/Keyword.h compares units: a sequence is folded
// through the upper-case table as the unit that it stands for.
#pragma once

#include <string_view>

#include "platform/Utf8.h"
#include "text/Keyword.h"

namespace velmo::detail::keyword {

/// The length of what stands for the keyword at the start of the bytes; 0 if nothing does. It is
/// that of the keyword, unless letters outside ASCII count as its own.
inline std::size_t lengthAtStart(std::string_view bytes, std::string_view capitals) {
    std::size_t at = 0;
    for (char capital : capitals) {
        if (at == bytes.size()) return 0;
        FirstOfUtf8 first{static_cast<unsigned char>(bytes[at]), 1};
        if (first.unit > 127) first = firstOfUtf8(bytes.substr(at));
        if (upper(first.unit) != static_cast<unsigned char>(capital)) return 0;
        at += first.length;
    }
    return at;
}
inline std::size_t lengthAtStart(std::u16string_view units, std::string_view capitals) {
    return beginsWith(units, capitals) ? capitals.size() : 0;
}

/// Whether a text of units or bytes is the keyword.
template <class Text>
bool isKeyword(Text text, std::string_view capitals) {
    if (text.empty() || capitals.empty()) return text.empty() == capitals.empty();
    return lengthAtStart(text, capitals) == text.size();
}

}  // namespace velmo::detail::keyword
