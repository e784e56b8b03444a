#pragma once

#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo {

// Units trimmed off the ends of a string. Only the ends are looked at, however long the
// string is. The result is the string itself if nothing is removed (an absent one too), the
// constant empty string if everything is, else a new string. Ranges count UTF-16 units. Any thread
// may call these.
//
// "Spaces" are spaceCharacterSetRep(), or whiteCharacterSetRep() with andFeeds true.
//
//     stringByTrimmingSpacesAndFeeds(u"  one two\r\n", true);    // one two
//     stringByTrimmingQuotes(u"'\"x\"'");                        // x

[[nodiscard]] VELMO_API String stringByTrimmingSpacesAndFeeds(const String& string, bool andFeeds);
[[nodiscard]] VELMO_API String stringByTrimmingSpacesOfLeftSideAndFeeds(const String& string,
                                                                        bool andFeeds);
[[nodiscard]] VELMO_API String stringByTrimmingSpacesOfRightSideAndFeeds(const String& string,
                                                                         bool andFeeds);

/// Trims the platform's white space: Zs, Zl, Zp, U+0009 to U+000D and U+0085. It leaves NUL,
/// U+0003, U+FEFF and U+FFFC in place. Always a new string, unless the string is empty.
[[nodiscard]] VELMO_API String stringByTrimmingWhiteSpaces(const String& string);

[[nodiscard]] VELMO_API String stringByTrimmingCharacter(const String& string, char16_t unit);
/// At the left end only.
[[nodiscard]] VELMO_API String stringByTrimmingPrefixCharacter(const String& string, char16_t unit);
/// At the right end only.
[[nodiscard]] VELMO_API String stringByTrimmingSuffixCharacter(const String& string, char16_t unit);

/// Trims the units outside the set.
[[nodiscard]] VELMO_API String stringByTrimmingCharactersNotInRep(const String& string,
                                                                  const CharacterSetRep& set);
/// Trims ' and ", in any order.
[[nodiscard]] VELMO_API String stringByTrimmingQuotes(const String& string);
/// Trims digitCharacterSetRep().
[[nodiscard]] VELMO_API String stringByTrimmingDigits(const String& string);
/// Trims U+2026 and full stops, in any order, at the right end only. A single full stop
/// is trimmed too.
[[nodiscard]] VELMO_API String stringByTrimmingEllipsis(const String& string);
/// Trims feed units, at the right end only.
[[nodiscard]] VELMO_API String stringByTrimmingFeeds(const String& string);
/// Trims the unit in pairs, one at each end, as long as both ends hold it.
[[nodiscard]] VELMO_API String stringByTrimmingEnclosingCharacter(const String& string,
                                                                  char16_t unit);

// What is left of a range of the string, which is cut at the string's end. If that is
// nothing, the result is the range's end with length 0.

[[nodiscard]] VELMO_API Range trimSpacesInRange(std::u16string_view string, Range range,
                                                bool andFeeds);
/// Trims whiteCharacterSetRep().
[[nodiscard]] VELMO_API Range trimWhiteSpacesInRange(std::u16string_view string, Range range);
/// The units of trimSpacesInRange(): the constant empty string if there are none, absent for no
/// range.
[[nodiscard]] VELMO_API String stringByTrimmingSpacesInRange(const String& string, Range range,
                                                             bool andFeeds);

// In place.

/// Trims the platform's white space, as stringByTrimmingWhiteSpaces() does.
VELMO_API void trimWhiteSpaces(std::u16string& text);
VELMO_API void trimCharacter(std::u16string& text, char16_t unit);
VELMO_API void trimPrefixCharacter(std::u16string& text, char16_t unit);
VELMO_API void trimSuffixCharacter(std::u16string& text, char16_t unit);
/// At the right end only.
VELMO_API void trimFeeds(std::u16string& text);
/// Appends the string without the platform's white space at its ends.
VELMO_API void appendTrimmedString(std::u16string& text, std::u16string_view string);

}  // namespace velmo
