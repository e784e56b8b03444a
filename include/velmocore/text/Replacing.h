#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <variant>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Units and substrings replaced wherever they stand. Occurrences do not overlap and are taken
// from the left; the work is linear in the text. Without regard to case, an occurrence is one
// of containsSubstring().
//
//     stringByReplacingString(u"a-b-c", u"-", u", ");    // a, b, c
//     deleteString(text, u"\u00AD");                     // the number of soft hyphens

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

/// An argument of a format.
class FormatArgument {
public:
    template <std::integral Integer>
    FormatArgument(Integer value) : value_(static_cast<std::int64_t>(value)) {}
    FormatArgument(double value) : value_(value) {}
    FormatArgument(const String& value) : value_(value) {}
    FormatArgument(const char16_t* value) : value_(String(value)) {}
    FormatArgument(const char* utf8) : value_(utf8 ? String::fromUTF8(utf8) : String()) {}

    [[nodiscard]] const std::variant<std::int64_t, double, String>& value() const { return value_; }

private:
    std::variant<std::int64_t, double, String> value_;
};
/// Replaces by a format with its arguments: %@ and %s are strings, %d %i %u %x %X %o
/// integers, %C and %c one unit, %f %e %g numbers, %% a percent sign; flags, width and
/// precision are those of printf. A conversion without an argument of its kind stays as it
/// stands. An absent format replaces nothing.
///
///     replaceStringWithFormat(page, u"$PAGE", u"%d of %d", {3, 12});
[[nodiscard]] VELMO_API std::size_t replaceStringWithFormat(
    std::u16string& text, std::u16string_view sought, std::u16string_view format,
    std::initializer_list<FormatArgument> arguments);

}  // namespace velmo
