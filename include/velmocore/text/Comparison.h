#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Whole strings, and ranges of them, compared for equality. Strings of different lengths are
// never equal, whatever their folding says: a sharp s is not two S.
//
// Three ways to look past a difference:
//   NoCase             case. Two units are equal if the upper-case or the lower-case table
//                      makes them so (they are compared in upper and then in lower case).
//   AsciiNoCase        case and diacritics, in ASCII. Units without an ASCII form are all
//                      equal to each other and to a space, by design.
//   NonUmlautedNoCase  case and diacritics, in every script.
//
// A view without data, which an absent String gives, is absent and equals nothing, not even
// another absent one. Any thread may call these; nothing is allocated.
//
//     isEqualToStringNoCase(u"Title", u"TITLE");                    // true
//     isAsciiEqualToStringNoCase(u"\u00C4rger", u"arger");          // true
//     hasPrefixNoCase(u"Title", u"TI");                             // true
//     hasPrefixNoCase(u"Title", u"");                               // false

[[nodiscard]] VELMO_API bool isEqualToStringNoCase(std::u16string_view string,
                                                   std::u16string_view other);
[[nodiscard]] VELMO_API bool isAsciiEqualToStringNoCase(std::u16string_view string,
                                                        std::u16string_view other);
[[nodiscard]] VELMO_API bool isNonUmlautedEqualToStringNoCase(std::u16string_view string,
                                                              std::u16string_view other);

// The same tests of a range against a whole string. A range that does not lie in the string
// equals nothing. In the first two an empty range equals an absent string too.

/// Unit by unit.
[[nodiscard]] VELMO_API bool rangeIsEqualTo(std::u16string_view string, Range range,
                                            std::u16string_view other);
[[nodiscard]] VELMO_API bool rangeIsEqualToNoCase(std::u16string_view string, Range range,
                                                  std::u16string_view other);
[[nodiscard]] VELMO_API bool rangeIsAsciiEqualToNoCase(std::u16string_view string, Range range,
                                                       std::u16string_view other);
[[nodiscard]] VELMO_API bool rangeIsNonUmlautedEqualToNoCase(std::u16string_view string,
                                                             Range range,
                                                             std::u16string_view other);

/// Whether the string begins with the prefix, without regard to case. No string has an
/// empty or absent prefix.
[[nodiscard]] VELMO_API bool hasPrefixNoCase(std::u16string_view string,
                                             std::u16string_view prefix);
/// The same for its end.
[[nodiscard]] VELMO_API bool hasSuffixNoCase(std::u16string_view string,
                                             std::u16string_view suffix);

}  // namespace velmo
