#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// The backslash escapes of JSON and JavaScript strings, without their quotation marks. The
// string itself comes back, absent or not, if there is nothing to do. Any thread.
//
//     stringByConvertingJSONToCharacters(u"a\\nb");   // a\nb

/// Decodes \b \f \n \r \t and \uXXXX; any other escaped unit stands for itself. In \u a unit
/// that is no hexadecimal digit counts as 0, and digits that the end cuts off as well. A
/// backslash at the very end stays.
/// @param isJavaScript  also decodes \v, \xXX and \O (the letter), which is U+0000
[[nodiscard]] VELMO_API String stringByConvertingJSONToCharacters(const String& string,
                                                                  bool isJavaScript = false);
[[nodiscard]] VELMO_API String stringByConvertingJavaScriptToCharacters(const String& string);

/// Escapes U+0008, tab, LF, U+000C, CR, the quotation mark, the slash and the backslash; no
/// other unit changes.
[[nodiscard]] VELMO_API String stringByConvertingCharactersToJSON(const String& string);

}  // namespace velmo
