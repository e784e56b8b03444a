// The text of a URL with the places of its parts, in one piece of memory: behind the units of the
// string stand the parts, which no reader of the string sees. So a URL is one pointer and made by
// one allocation, and its string is shared like any other.
#pragma once

#include <cstdint>
#include <new>

#include <velmocore/platform/String.h>

#include "url/Grammar.h"

namespace velmo::detail::grammar {

struct Tail {
    Parts parts;
    bool isOfWeb = false;  ///< whether the text is as the URL standard reads and writes it
};

/// The room that a builder of such a text needs behind it.
inline constexpr std::size_t TailUnits = (sizeof(Tail) + alignof(Tail)) / sizeof(char16_t);

/// Where the tail of a text stands that ends there. Units stand at even places.
inline char16_t* placeOfTail(char16_t* end) noexcept {
    static_assert(alignof(Tail) == 2 * sizeof(char16_t));
    return end + (reinterpret_cast<std::uintptr_t>(end) / sizeof(char16_t) & 1);
}

/// Puts a tail behind what has been written.
inline Tail& tailBehind(const Tail& tail, StringBuilder& out) {
    out.prepare(TailUnits);
    return *new (placeOfTail(out.end())) Tail(tail);
}

/// What has been written, with its parts.
inline String finishedWith(const Tail& tail, StringBuilder& out) {
    tailBehind(tail, out);
    return out.finishWithTail(TailUnits);
}

/// The tail of a text that was made so.
inline const Tail& tailOf(const String& text) noexcept {
    return *std::launder(
        reinterpret_cast<const Tail*>(placeOfTail(const_cast<char16_t*>(text.end()))));
}

}  // namespace velmo::detail::grammar
