#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo {

// Servers answer for what is missing with a status that says all is well, and a polite page.
// These tell such pages from real ones, by what they say; both look for known wordings and know
// no other. Title and text are plain, without tags and entities; each argument may be absent or
// empty. Any thread may call these, nothing is allocated, and the time is linear in the text.
//
//     isErrorPageTitle(u"404 Not Found", u"404 Not Found nginx", {});              // true
//     isErrorPageTitle(u"404 Not Found", u"What the number 404 means", {});        // false
//     isErrorPageTitle({}, u"Page not found", u"http://h.org/404.html");           // true
//     exceededPageLoadFrequencyTitle(
//         {}, u"Woah, slow down! You have exceeded the allowed page load frequency");   // true

/// Whether a page is an error page. A title alone never is enough, as pages may be about
/// errors: the text must say the same, or the URL must name an error page.
/// @param url  where the page comes from, as text
[[nodiscard]] VELMO_API bool isErrorPageTitle(std::u16string_view title, std::u16string_view text,
                                              std::u16string_view url);

/// Whether a page only says that too many were asked for in a short time; it is worth another
/// try. The title is not looked at.
[[nodiscard]] VELMO_API bool exceededPageLoadFrequencyTitle(std::u16string_view title,
                                                            std::u16string_view text);

}  // namespace velmo
