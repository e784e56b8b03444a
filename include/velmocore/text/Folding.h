#pragma once

#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/ConversionTables.h>

namespace velmo {

// Whole strings through the conversion tables. An absent or empty string comes back as it is. Any
// thread may call these.
//
//     nonUmlautedString(u"\u00C4rger");            // Arger
//     lowercaseAsciiString(u"\u00C4 \u0416");      // "a  "

// These suppose composed text: a combining mark that stands on its own stays. If nothing
// changes the result is the string itself.

/// Without diacritics.
[[nodiscard]] VELMO_API String nonUmlautedString(const String& string);
[[nodiscard]] VELMO_API String lowercaseNonUmlautedString(const String& string);
[[nodiscard]] VELMO_API String uppercaseNonUmlautedString(const String& string);

// These compose the text first (normalisation form C) and so remove the marks of decomposed
// text too. The result is always a new string; its length may differ.

[[nodiscard]] VELMO_API String nonUmlautedNormalizedString(const String& string);
[[nodiscard]] VELMO_API String lowercaseNonUmlautedNormalizedString(const String& string);
[[nodiscard]] VELMO_API String uppercaseNonUmlautedNormalizedString(const String& string);
/// Without diacritics; a space for every unit that is not ASCII then. See toAscii().
[[nodiscard]] VELMO_API String asciiString(const String& string);
[[nodiscard]] VELMO_API String lowercaseAsciiString(const String& string);
[[nodiscard]] VELMO_API String uppercaseAsciiString(const String& string);

/// Every unit through the table: always a new string. A null table gives the string itself.
[[nodiscard]] VELMO_API String stringByApplyingConversionTable(const String& string,
                                                               const ConversionTable* table);

/// The units of alphaNumCharacterSetRep(), each through the table unless it is null. Always
/// a new string.
[[nodiscard]] VELMO_API String stringByRemovingNonAlphaNumericCharactersAndApplyingConversionTable(
    const String& string, const ConversionTable* table);

/// No unit above 127; true for an empty string.
[[nodiscard]] VELMO_API bool isAsciiString(std::u16string_view string);
/// No byte above 127; true for no data.
[[nodiscard]] VELMO_API bool isAsciiString(Bytes data);
/// Some unit has diacritics; false for an empty string.
[[nodiscard]] VELMO_API bool isUmlautedString(std::u16string_view string);
/// No upper-case letter; true for an empty string and for text without letters.
[[nodiscard]] VELMO_API bool isLowerCaseString(std::u16string_view string);
/// No lower-case letter that has an upper-case form of one unit; true likewise.
[[nodiscard]] VELMO_API bool isUpperCaseString(std::u16string_view string);

/// The lowest and the highest unit of alphaCharacterSetRep().
[[nodiscard]] VELMO_API char16_t firstAlphaCharacter();
[[nodiscard]] VELMO_API char16_t lastAlphaCharacter();

}  // namespace velmo
