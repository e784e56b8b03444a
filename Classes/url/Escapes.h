// The units of a text as percent escapes of their bytes in an encoding.
#pragma once

#include <string_view>

#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>

#include "url/Grammar.h"

namespace velmo::escapes {

/// Appends the bytes of units as escapes, with capital digits. False if the encoding
/// cannot hold them.
bool appendBytes(StringBuilder& out, std::u16string_view units, StringEncoding encoding);

/// Appends a text: the units that keep(index) wants as they are, each run of the others as
/// escapes. False if the encoding cannot hold them.
template <class Keep>
bool append(StringBuilder& out, std::u16string_view text, StringEncoding encoding, Keep keep) {
    std::size_t i = 0;
    while (i < text.size()) {
        const std::size_t kept = i;
        while (i < text.size() && keep(i)) ++i;
        out.append(text.substr(kept, i - kept));
        const std::size_t escaped = i;
        while (i < text.size() && !keep(i)) ++i;
        if (i > escaped && !appendBytes(out, text.substr(escaped, i - escaped), encoding))
            return false;
    }
    return true;
}

/// The value of the escape that stands at a position; -1 if none does.
inline int escapeAt(std::u16string_view text, std::size_t i) noexcept {
    if (text[i] != u'%' || text.size() - i < 3) return -1;
    const int high = grammar::hexDigitValue(text[i + 1]);
    const int low = grammar::hexDigitValue(text[i + 2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

/// The text with every escape decoded. Absent if the bytes of the escapes are nothing in
/// the encoding; the text itself if it has no escapes.
String decoded(const String& text, StringEncoding encoding);

}  // namespace velmo::escapes
