#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Hard line wrapping taken apart, so that a paragraph is one line again. Always a new string;
// an absent or empty one comes back as it is. Any thread may call these.

/// Unwraps a mail. Lines are joined by a space. A break stays
/// - if two or more follow each other: one empty line is left of them;
/// - before a space, -, /, > or };
/// - after a line that ends in : or >.
/// A break at the end is removed, and every run of spaces becomes one U+0020.
///
///     reformattedMailing(u"one\ntwo\n> three");    // one two\n> three
[[nodiscard]] VELMO_API String reformattedMailing(const String& string);
/// The same in place. This operation is ours.
VELMO_API void reformatMailing(std::u16string& string);

/// Unwraps a text line by line: each line is freed of the given characters and trimmed, and
/// the lines of a paragraph are joined by spaces. Paragraphs end at empty lines, of which one
/// is left. Runs of spaces become one.
[[nodiscard]] VELMO_API String
reformattedStringByRemovingCharactersOfString(const String& string, std::u16string_view characters);

}  // namespace velmo
