#pragma once

#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Units removed wherever they stand. "Spaces" are spaceCharacterSetRep(), "white spaces"
// whiteCharacterSetRep(), "feeds" the units of isFeedUnit(), "digits" digitCharacterSetRep().
// stringByRemovingWhiteSpaces() stands in CharacterTests.h.
//
//     stringByRemovingCharactersOfString(u"(0)30-12", u"()-");    // 03012
//     std::u16string text = u"a\tb";
//     removeTabs(text);
//     text;    // ab

// The result is the string itself if nothing is removed, the constant empty string if everything
// is, else a new string. An absent string stays absent. Any thread may call these.

[[nodiscard]] VELMO_API String stringByRemovingFeeds(const String& string);
[[nodiscard]] VELMO_API String stringByRemovingTabs(const String& string);
[[nodiscard]] VELMO_API String stringByRemovingSpaces(const String& string);
[[nodiscard]] VELMO_API String stringByRemovingDigits(const String& string);
/// Removes one unit, despite the plural.
[[nodiscard]] VELMO_API String stringByRemovingCharacters(const String& string, char16_t unit);
/// Removes every unit that occurs in the argument.
[[nodiscard]] VELMO_API String stringByRemovingCharactersOfString(const String& string,
                                                                  std::u16string_view characters);

// These always give a new string, unless theirs is empty.

/// Without digits, the rest in lower case.
[[nodiscard]] VELMO_API String lowercaseStringByRemovingDigits(const String& string);
/// Without digits, the rest in upper case.
[[nodiscard]] VELMO_API String uppercaseStringByRemovingDigits(const String& string);
/// Digits and full stops only.
[[nodiscard]] VELMO_API String stringByRemovingNonIPCharacters(const String& string);

// In place, in one pass.

VELMO_API void removeFeeds(std::u16string& text);
VELMO_API void removeTabs(std::u16string& text);
VELMO_API void removeSpaces(std::u16string& text);
VELMO_API void removeWhiteSpaces(std::u16string& text);
VELMO_API void removeDigits(std::u16string& text);
/// Removes one unit, despite the plural.
VELMO_API void removeCharacters(std::u16string& text, char16_t unit);
/// Removes every unit that occurs in the argument.
VELMO_API void removeCharactersOfString(std::u16string& text, std::u16string_view characters);

}  // namespace velmo
