#pragma once

#include <cstddef>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Shortening for display. A text that was cut ends with "...". The text itself comes back
// where nothing is cut, as an empty or absent one does. Lengths count UTF-16 units, without the
// "...". Any thread may call these.
//
//     stringByEllipsizingAfterNWords(u"one two three", 2);          // "one two..."
//     stringByEllipsizingAfterNCharacters(u"one two three", 9);     // "one two..."

/// Cut after the n-th word, by the default word separators; not at all for n of 0.
[[nodiscard]] VELMO_API String stringByEllipsizingAfterNWords(const String& text, std::size_t n);

/// Cut after the sixth word.
[[nodiscard]] inline String stringByEllipsizingForMenu(const String& text) {
    return stringByEllipsizingAfterNWords(text, 6);
}

/// A text of more than n units cut to less than n, after a word. Nothing is cut if the first word is
/// longer, and for n of 0.
[[nodiscard]] VELMO_API String stringByEllipsizingAfterNCharacters(const String& text,
                                                                   std::size_t n);

/// The first lines that are not empty, each cut to less than n units after a word, joined
/// by line feeds. A last line without a line end counts if it has two units or more. The
/// text itself for 0 lines.
[[nodiscard]] VELMO_API String stringByEllipsizingNLines(const String& text, std::size_t lines,
                                                         std::size_t n);

}  // namespace velmo
