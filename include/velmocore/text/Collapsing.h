#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// The units that runs are made of.
enum class RunClass : std::uint8_t {
    Spaces,       ///< spaceCharacterSetRep()
    WhiteSpaces,  ///< whiteCharacterSetRep()
    Feeds,        ///< isFeedUnit()
};

// Every run of units of a class becomes one replacement unit, a run of length 1 too. Nothing
// is trimmed: a run at an end leaves one unit as well. The result is the string itself if
// nothing changes, as an empty or absent one does. Any thread may call these.
//
//     stringByRemovingMultipleWhiteSpaces(u"one \r\n two");    // one two
//     stringByRemovingMultipleFeeds(u"one\r\n\r\ntwo");        // one\ntwo

[[nodiscard]] VELMO_API String stringByRemovingMultipleWhiteSpaces(
    const String& string, RunClass runs = RunClass::WhiteSpaces, char16_t replacement = u' ');
/// Runs become U+0020: a lone tab does too.
[[nodiscard]] inline String stringByRemovingMultipleSpaces(const String& string) {
    return stringByRemovingMultipleWhiteSpaces(string, RunClass::Spaces);
}
/// Feeds become LF, so that no empty line is left. Two feeds with a space between stay two.
[[nodiscard]] inline String stringByRemovingMultipleFeeds(const String& string) {
    return stringByRemovingMultipleWhiteSpaces(string, RunClass::Feeds, u'\n');
}

// In place; the text never grows.

VELMO_API void removeMultipleWhiteSpaces(std::u16string& text,
                                         RunClass runs = RunClass::WhiteSpaces,
                                         char16_t replacement = u' ');
inline void removeMultipleSpaces(std::u16string& text) {
    removeMultipleWhiteSpaces(text, RunClass::Spaces);
}
inline void removeMultipleFeeds(std::u16string& text) {
    removeMultipleWhiteSpaces(text, RunClass::Feeds, u'\n');
}

}  // namespace velmo
