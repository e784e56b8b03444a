#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/ConversionTables.h>

namespace velmo {

// Substrings of any length. Without regard to case, two units are equal if the upper-case or
// the lower-case table makes them so; an occurrence always has the length of what is sought.
// An absent string is an empty one; nothing occurs in it, and it occurs nowhere. The time is
// linear in the lengths of both, whatever they hold.
//
//     containsSubstring(u"a Title", u"title", false);    // true
//     countSubstring(u"aaaa", u"aa");                    // 2

VELMO_API bool containsSubstring(std::u16string_view string, std::u16string_view substring,
                                 bool caseSensitive = true);
/// The number of occurrences that do not overlap, taken from the left.
VELMO_API std::size_t countSubstring(std::u16string_view string, std::u16string_view substring,
                                     bool caseSensitive = true);
/// Whether any of them occurs.
VELMO_API bool containsSubstrings(std::u16string_view string, std::span<const String> substrings,
                                  bool caseSensitive = true);
/// Whether any of the ASCII keywords occurs. Without regard to case they must be in lower
/// case already; see fastContainsSubCStrings().
VELMO_API bool containsSubCStrings(std::u16string_view string,
                                   std::span<const std::string_view> keywords,
                                   bool caseSensitive = true);

struct FindOptions {
    bool caseSensitive = true;
    bool forward = true;
    bool wrap = false;  ///< go on at the other end of the string
};
/// The next occurrence after the selection, or the last one before it. The selection itself
/// is not searched, and what overlaps it does not count. No range if there is none.
///
///     Range next = findString(text, u"name", selection, {.wrap = true});
VELMO_API Range findString(std::u16string_view string, std::u16string_view sought, Range selection,
                           FindOptions options = {});

/// The index of the first string of the array that equals the sought one, or NotFound. An
/// empty or absent string is in no array.
VELMO_API std::uint64_t indexOfStringInArray(std::span<const String> array,
                                             std::u16string_view string, bool caseSensitive = true);
inline std::uint64_t indexOfStringEqualTo(std::span<const String> array,
                                          std::u16string_view string) {
    return indexOfStringInArray(array, string);
}
inline std::uint64_t indexOfStringEqualToNoCase(std::span<const String> array,
                                                std::u16string_view string) {
    return indexOfStringInArray(array, string, false);
}
inline bool containsString(std::span<const String> array, std::u16string_view string) {
    return indexOfStringInArray(array, string) != NotFound;
}
inline bool containsStringNoCase(std::span<const String> array, std::u16string_view string) {
    return indexOfStringInArray(array, string, false) != NotFound;
}

/// Whether two strings of the same length are equal through the table, or as they are if it
/// is null. Empty and absent strings are equal.
VELMO_API bool equalStringsUsingConversionTable(std::u16string_view a, std::u16string_view b,
                                                const ConversionTable* table);

}  // namespace velmo
