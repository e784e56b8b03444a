#pragma once

#include <initializer_list>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/Replacing.h>
#include <velmocore/url/URL.h>

namespace velmo {

// URLs of strings that have no base. A missing scheme is supplied where that is safe. An
// absent or empty string gives the absent URL. Any thread may call these.
//
//     URLWithStringOrPath(u"www.example.com");           // http://www.example.com
//     URLWithStringOrPath(u"/tmp/a b");                  // file:///tmp/a%20b
//     URLWithNormalizedStringURL(u"http://h.org/a b");   // http://h.org/a%20b

/// A text that begins with / or ~ is a path; a tilde is not expanded. A URL with a scheme is
/// taken as it is. Of texts without one, mail addresses get mailto:, and those with two full
/// stops that begin with "www" or "ftp" get http:// or ftp://. All others are absent, and
/// so is what begins with a full stop.
[[nodiscard]] VELMO_API URL URLWithStringOrPath(const String& string);

/// The same, and if it fails, once more with percent escapes in the given encoding for what
/// a URL may not hold.
[[nodiscard]] VELMO_API URL
URLWithNormalizedStringURL(const String& string, StringEncoding encoding = UTF8StringEncoding);

/// The URL of a format with its arguments, which are those of replaceStringWithFormat(): %@
/// for strings, %d for integers and so on. An absent argument is empty; a conversion without
/// one stays as it stands, which is no URL.
///
///     URLWithFormat(u"%@://%@:%d/", {u"http", u"h.org", 8080});   // http://h.org:8080/
[[nodiscard]] VELMO_API URL URLWithFormat(std::u16string_view format,
                                          std::initializer_list<FormatArgument> arguments);

/// What a person typed: the same as URLWithNormalizedStringURL().
[[nodiscard]] VELMO_API URL URLWithUserTypedString(const String& string);

}  // namespace velmo
