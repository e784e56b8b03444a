#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>

namespace velmo {

// Small edits of a text in place. Ranges and indexes count UTF-16 units; what lies outside is cut
// to the text: what is to be inserted after the end is appended, what is to be removed there is
// not. Of an empty or absent string nothing is appended. One thread at a time uses a text.
//
//     std::u16string text = u"zero";
//     appendSubstring(text, u"one two", {3, 90});
//     removeCharacterAtIndex(text, 0);
//     text;    // ero two

VELMO_API void appendSubstring(std::u16string& text, std::u16string_view string, Range range);
inline void appendUnichar(std::u16string& text, char16_t unit) { text += unit; }
inline void appendUnichars(std::u16string& text, std::u16string_view units) { text += units; }
VELMO_API void insertCharacter(std::u16string& text, char16_t unit, std::size_t index);
VELMO_API void removeCharacterAtIndex(std::u16string& text, std::size_t index);

}  // namespace velmo
