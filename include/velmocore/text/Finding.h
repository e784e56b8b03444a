#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/ConversionTables.h>

namespace velmo {

// Substrings of any length. Without regard to case, two units are equal if the upper-case or
// the lower-case table makes them so; an occurrence always has the length of what is sought.
// An absent string is an empty one; nothing occurs in it, and it occurs nowhere. The time is
// linear in the lengths of both, whatever they hold. Ranges count UTF-16 units. Any thread may call
// these.
//
//     containsSubstring(u"a Title", u"title", Case::Insensitive);    // true
//     countSubstring(u"aaaa", u"aa");                    // 2

[[nodiscard]] VELMO_API bool containsSubstring(std::u16string_view string,
                                               std::u16string_view substring,
                                               Case letterCase = Case::Sensitive);
/// The number of occurrences that do not overlap, taken from the left.
[[nodiscard]] VELMO_API std::size_t countSubstring(std::u16string_view string,
                                                   std::u16string_view substring,
                                                   Case letterCase = Case::Sensitive);
/// Whether any of them occurs.
[[nodiscard]] VELMO_API bool containsSubstrings(std::u16string_view string,
                                                std::span<const String> substrings,
                                                Case letterCase = Case::Sensitive);
/// Whether any of the ASCII keywords occurs. Without regard to case they must be in lower
/// case already; see fastContainsSubCStrings().
[[nodiscard]] VELMO_API bool containsSubCStrings(std::u16string_view string,
                                                 std::span<const std::string_view> keywords,
                                                 Case letterCase = Case::Sensitive);

/// How findString() looks.
struct FindOptions {
    Case letterCase = Case::Sensitive;         ///< as told above
    Direction direction = Direction::Forward;  ///< after the selection, or before it
    bool wrap = false;                         ///< go on at the other end of the string
};
/// The next occurrence after the selection, or the last one before it. The selection itself
/// is not searched, and what overlaps it does not count. No range if there is none.
///
///     Range next = findString(text, u"name", selection, {.wrap = true});
[[nodiscard]] VELMO_API Range findString(std::u16string_view string, std::u16string_view sought,
                                         Range selection, FindOptions options = {});

/// The index of the first string of the array that equals the sought one, or NotFound. An
/// empty or absent string is in no array.
[[nodiscard]] VELMO_API std::size_t indexOfStringInArray(std::span<const String> array,
                                                         std::u16string_view string,
                                                         Case letterCase = Case::Sensitive);
[[nodiscard]] inline std::size_t indexOfStringEqualTo(std::span<const String> array,
                                                      std::u16string_view string) {
    return indexOfStringInArray(array, string);
}
[[nodiscard]] inline std::size_t indexOfStringEqualToNoCase(std::span<const String> array,
                                                            std::u16string_view string) {
    return indexOfStringInArray(array, string, Case::Insensitive);
}
[[nodiscard]] inline bool containsString(std::span<const String> array,
                                         std::u16string_view string) {
    return indexOfStringInArray(array, string) != NotFound;
}
[[nodiscard]] inline bool containsStringNoCase(std::span<const String> array,
                                               std::u16string_view string) {
    return indexOfStringInArray(array, string, Case::Insensitive) != NotFound;
}

/// Whether two strings of the same length are equal through the table, or as they are if it
/// is null. Empty and absent strings are equal.
[[nodiscard]] VELMO_API bool equalStringsUsingConversionTable(std::u16string_view a,
                                                              std::u16string_view b,
                                                              const ConversionTable* table);

}  // namespace velmo
