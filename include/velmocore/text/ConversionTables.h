#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// Maps each UTF-16 unit to one unit. There are no expansions: a character whose
/// mapping is not exactly one unit maps to itself.
struct ConversionTable {
    char16_t entries[65536];  ///< what each unit becomes

    char16_t operator[](char16_t unit) const noexcept { return entries[unit]; }
};

// The five tables. Each is made at first use, on whatever thread, and stays for the life
// of the process. "Umlauts" stands for the diacritics of any script.
//
//     const ConversionTable& upper = upperCharsTable();
//     upper[u'\u00E4'] == upper[u'\u00C4'];               // true

/// Lower case of every upper-case letter.
[[nodiscard]] VELMO_API const ConversionTable& lowerCharsTable();
/// Upper case of every lower-case letter.
[[nodiscard]] VELMO_API const ConversionTable& upperCharsTable();
/// Every letter without its diacritics; case stays.
[[nodiscard]] VELMO_API const ConversionTable& umlautsCharsTable();
/// Without diacritics, then in lower case.
[[nodiscard]] VELMO_API const ConversionTable& lowerUmlautsCharsTable();
/// Without diacritics, then in upper case.
[[nodiscard]] VELMO_API const ConversionTable& upperUmlautsCharsTable();

// The same tables under the names that warm them up ahead of time.
inline const ConversionTable& initLowerCharsTable() { return lowerCharsTable(); }
inline const ConversionTable& initUpperCharsTable() { return upperCharsTable(); }
inline const ConversionTable& initUmlautsCharsTable() { return umlautsCharsTable(); }
inline const ConversionTable& initLowerUmlautsCharsTable() { return lowerUmlautsCharsTable(); }
inline const ConversionTable& initUpperUmlautsCharsTable() { return upperUmlautsCharsTable(); }

// One unit through a table.
[[nodiscard]] VELMO_API char16_t toLower(char16_t unit);
[[nodiscard]] VELMO_API char16_t toUpper(char16_t unit);
/// The unit without diacritics. Not limited to ASCII, despite the name.
[[nodiscard]] VELMO_API char16_t umlautsToAscii(char16_t unit);
[[nodiscard]] VELMO_API char16_t umlautsToUpperAscii(char16_t unit);
[[nodiscard]] VELMO_API char16_t umlautsToLowerAscii(char16_t unit);

// One unit to ASCII: without diacritics, and 32 if that is not below 128.
[[nodiscard]] VELMO_API char16_t toAscii(char16_t unit);
/// The same, then in upper or lower case by the ASCII rule.
[[nodiscard]] VELMO_API char16_t toUpperAscii(char16_t unit);
[[nodiscard]] VELMO_API char16_t toLowerAscii(char16_t unit);

}  // namespace velmo
