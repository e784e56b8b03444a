#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/text/ConversionTables.h>

namespace velmo {

// Order of two arrays of units or bytes. The result is 0 exactly if they are equal. Else it
// is the difference of the first two units that differ, first minus second and after
// folding, or, if one array is the beginning of the other, the difference of the lengths.
// Callers may rely on its sign only.
//
// Bytes stand for ASCII: a byte above 127 is widened with its sign, to U+FF80 and up, and
// equals no Latin-1 unit. "CaseInsensitive" compares upper-case forms. Any thread may call
// these; nothing is allocated.
//
//     fastCompareUnichars(u"abc", u"ab") > 0;                               // true
//     fastCaseInsensitiveCompareUnicharsWithChars(u"Href", "HREF") == 0;    // true

[[nodiscard]] VELMO_API std::int64_t fastCompareUnichars(std::u16string_view a,
                                                         std::u16string_view b);
[[nodiscard]] VELMO_API std::int64_t fastCompareUnicharsWithChars(std::u16string_view a,
                                                                  std::string_view b);
/// Bytes as signed values.
[[nodiscard]] VELMO_API std::int64_t fastCompareChars(std::string_view a, std::string_view b);

/// Both through the table; null means as they are.
[[nodiscard]] VELMO_API std::int64_t fastCompareUnicharsUsingConversionTable(
    std::u16string_view a, std::u16string_view b, const ConversionTable* table);

[[nodiscard]] VELMO_API std::int64_t fastCaseInsensitiveCompareUnichars(std::u16string_view a,
                                                                        std::u16string_view b);
[[nodiscard]] VELMO_API std::int64_t fastCaseInsensitiveCompareUnicharsWithChars(
    std::u16string_view a, std::string_view b);
[[nodiscard]] VELMO_API std::int64_t fastCaseInsensitiveCompareChars(std::string_view a,
                                                                     std::string_view b);

// The same under the names for strings.

[[nodiscard]] inline std::int64_t compareCharacters(std::u16string_view a, std::u16string_view b) {
    return fastCompareUnichars(a, b);
}
[[nodiscard]] inline std::int64_t compareCharacters(std::u16string_view a, std::string_view b) {
    return fastCompareUnicharsWithChars(a, b);
}
[[nodiscard]] inline std::int64_t caseInsensitiveCompareCharacters(std::u16string_view a,
                                                                   std::u16string_view b) {
    return fastCaseInsensitiveCompareUnichars(a, b);
}
[[nodiscard]] inline std::int64_t caseInsensitiveCompareCharacters(std::u16string_view a,
                                                                   std::string_view b) {
    return fastCaseInsensitiveCompareUnicharsWithChars(a, b);
}

}  // namespace velmo
