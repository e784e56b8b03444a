#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

// Raw values of attributes made clean. An absent or empty value gives absent. Any thread may call
// these.
//
//     normalizedStringURL(u" a&amp;b\n%20");   // a&b
//     normalizedRelLink(u"a.ico");             // /a.ico

/// A reference without the line ends, tabs, spaces, quotes and trailing escapes that pages
/// leave around it: feeds and tabs are removed everywhere, white space and pairs of " at the ends.
/// Numeric and standard entities are decoded, \ becomes / unless there is a query, and
/// quotes escaped for a script are undone. Absent if nothing is left. The result is never
/// longer than the value.
/// @param decodePercentEscapes  whether the standard mode of convertPercentEscapesOfURL() runs too
[[nodiscard]] VELMO_API String normalizedStringURL(std::u16string_view value,
                                                   bool decodePercentEscapes = false);
/// The same by rules of today, in which references and escapes at the end differ.
[[nodiscard]] VELMO_API String normalizedStringURL(std::u16string_view value, const WebRules& web);

/// The same for the reference of a link tag, which counts from the root: a / is put in front
/// unless it begins with . or / or holds "://"; but not with WebRules::linkTags.
[[nodiscard]] VELMO_API String normalizedRelLink(std::u16string_view value,
                                                 const WebRules& web = {});

/// Entities decoded, and white space cut at both ends.
[[nodiscard]] VELMO_API String normalizedHtmlString(const String& string, const WebRules& web = {});

/// The seconds that a value like "7 days" stands for: its number times what "hour", "day" or
/// "week" says, else the number itself. 0 if it does not begin with a number above 0.
[[nodiscard]] VELMO_API double revisitAfter(std::u16string_view value);

}  // namespace velmo
