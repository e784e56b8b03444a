// Strings cut and put together.
#pragma once

#include <string_view>

#include <velmocore/platform/String.h>

namespace velmo::detail {

/// A piece of a string; the string itself if that is all of it.
inline String pieceOf(const String& string, std::u16string_view piece) {
    return piece.size() == string.length() ? string : String(piece);
}

inline String concatenated(std::u16string_view first, std::u16string_view second) {
    StringBuilder out(first.size() + second.size());
    out.append(first);
    out.append(second);
    return out.finish();
}

}  // namespace velmo::detail
