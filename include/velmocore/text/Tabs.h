#pragma once

#include <cstddef>
#include <string>

#include <velmocore/platform/Export.h>

namespace velmo {

// Tabs and spaces of a text in columns: a tab goes on to the next multiple of the width. A
// feed unit starts again at column 0; every other unit takes one column. A width of 0 leaves
// the text as it is, as an empty one is. One thread at a time uses a text.
//
//     std::u16string text = u"a\tb";
//     decodeTabs(text, 4);
//     text;                             // "a   b"

/// Replaces every tab by U+0020.
VELMO_API void decodeTabs(std::u16string& text, std::size_t width);
/// Replaces every run of spaces (spaceCharacterSetRep()) that reaches a multiple of the width
/// by a tab there, a single space too. What follows it up to the next multiple is a new run.
VELMO_API void encodeTabs(std::u16string& text, std::size_t width);

}  // namespace velmo
