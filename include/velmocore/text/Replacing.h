#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Format.h>

namespace velmo {

// Units and substrings replaced wherever they stand. Occurrences do not overlap and are taken
// from the left; the work is linear in the text. Without regard to case, an occurrence is one
// of containsSubstring(). What is sought and is empty or absent occurs nowhere. Any thread may call
// these.
//
//     stringByReplacingString(u"a-b-c", u"-", u", ");    // a, b, c
//     std::u16string text = u"Tea\u00AD";
//     deleteString(text, u"\u00AD");                     // 1
//     text;                                              // Tea

// The result is the string itself if nothing is replaced. An absent string stays absent.

/// Always case sensitive for a unit that has two cases, whatever the flag says;
/// replaceCharacter() honours it.
[[nodiscard]] VELMO_API String stringByReplacingCharacter(const String& string, char16_t from,
                                                          char16_t to,
                                                          Case letterCase = Case::Sensitive);
/// An absent replacement gives the string itself; an empty one deletes.
[[nodiscard]] VELMO_API String stringByReplacingString(const String& string,
                                                       std::u16string_view sought,
                                                       const String& replacement,
                                                       Case letterCase = Case::Sensitive);

/// Moves the letters a to z and A to Z on by so many places of the alphabet, round its end;
/// other units stay. A multiple of 26 gives the string itself, else it is a new one.
[[nodiscard]] VELMO_API String stringByRotating(const String& string, std::int64_t places);
[[nodiscard]] inline String sByR(const String& string, std::int64_t places) {
    return stringByRotating(string, places);
}
[[nodiscard]] inline String stringByRotating13(const String& string) {
    return stringByRotating(string, 13);
}

// In place; the result is the number of replacements.

/// An absent replacement is an empty one.
VELMO_API std::size_t replaceString(std::u16string& text, std::u16string_view sought,
                                    std::u16string_view replacement,
                                    Case letterCase = Case::Sensitive);
VELMO_API std::size_t replaceCharacter(std::u16string& text, char16_t from, char16_t to,
                                       Case letterCase = Case::Sensitive);
inline std::size_t deleteString(std::u16string& text, std::u16string_view sought) {
    return replaceString(text, sought, u"");
}

/// Replaces by a format (Format.h) with its arguments. An absent format replaces nothing.
///
///     std::u16string text = u"Page $PAGE";
///     replaceStringWithFormat(text, u"$PAGE", u"%d of %d", {3, 12});    // 1
///     text;                                                             // Page 3 of 12
VELMO_API std::size_t replaceStringWithFormat(std::u16string& text, std::u16string_view sought,
                                              std::u16string_view format,
                                              std::initializer_list<FormatArgument> arguments);

}  // namespace velmo
