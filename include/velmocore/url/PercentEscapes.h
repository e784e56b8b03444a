#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>

namespace velmo {

// Percent escapes, decoded and made. An absent string gives absent; a string with nothing
// to change comes back as it is. Any thread may call these.
//
//     stringByReplacingStandardPercentEscapesOfURL(u"a%2Fb%41");   // a/b%41
//     stringByAddingPercentEscapesToURL(u"/\u00E4 b%20c");         // /%C3%A4%20b%20c

// Two partial ways to decode, which leave a URL's text one:
// - standard: only escapes of tab, LF, CR, space and $%&'+/:;=@~ are decoded, and one of ? if
//   the text has no ? of its own. Letters, digits and what is above 126 stay.
// - ASCII: every escape of a value below 128 is decoded.
// What an escape of % gives is not looked at again.

/// Converts an array in its place and gives its new length, in UTF-16 units. The array never grows.
VELMO_API std::size_t convertPercentEscapesOfURL(char16_t* characters, std::size_t length,
                                                 bool standard) noexcept;
[[nodiscard]] VELMO_API String stringByReplacingStandardPercentEscapesOfURL(const String& string);
[[nodiscard]] VELMO_API String stringByReplacingASCIIPercentEscapesOfURL(const String& string);

/// Decodes every escape; a % without two hexadecimal digits stays. Absent if the bytes do
/// not decode in the encoding.
[[nodiscard]] VELMO_API String stringByReplacingPercentEscapesOfURL(
    const String& string, StringEncoding encoding = UTF8StringEncoding);

// Two plain ways to escape, one unit at a time, with lower-case digits. Units above 127 stay.

/// Escapes space, #, $, %, &, +, /, :, ;, =, ? and @.
[[nodiscard]] VELMO_API String stringByAddingStandardPercentEscapesToURL(const String& string);
/// Escapes every unit below 128 but ASCII letters and digits.
[[nodiscard]] VELMO_API String stringByAddingASCIIPercentEscapesToURL(const String& string);

/// What is escaped, and as which bytes.
struct PercentEscapeOptions {
    StringEncoding encoding = UTF8StringEncoding;  ///< of the bytes
    /// Units that stay although a URL may not hold them.
    std::u16string_view leaveUnescaped = {};
    /// Units that are escaped although a URL may hold them. An absent list stands for
    /// :?&;@ and the default is an empty one.
    std::u16string_view toBeEscaped = u"";
};

/// Escapes what a URL may not hold, as the bytes of the units in an encoding, with upper-case
/// digits: a text that is a URL but for such units becomes one. So an escape that is there
/// stays, the first # and the brackets of an IPv6 host too, while a lone %, a further # and
/// brackets elsewhere are escaped. Absent if the encoding cannot hold a unit.
[[nodiscard]] VELMO_API String
stringByAddingPercentEscapesToURL(const String& string, const PercentEscapeOptions& options = {});

/// A search term made ready to stand in a query: runs of white space become one space, and
/// everything that is not itself in a query is escaped, % and # included. With
/// defaultPercentEscapes a space becomes + and a + %2B, as in forms. Absent if the encoding
/// cannot hold a unit.
[[nodiscard]] VELMO_API String stringByFormattingQueryTerm(const String& term,
                                                           StringEncoding encoding,
                                                           bool defaultPercentEscapes = true);

}  // namespace velmo
