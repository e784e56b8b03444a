#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

/// A page as a note that people edit: without active content (as stripObjectsAndReplaceImages()
/// takes it out, images stay), without form fields and their contents, and without empty lines and
/// white space around lines. A meta tag right after the opening head tag says that it is a note,
/// and in front of it one names UTF-8 if the page names no charset. A page without a head gets
/// neither, and a note none again.
///
///     formattedNote(u"<head>\n\n<title>a</title></head>");
///     // (<head><meta http-equiv="content-type" ...> and so on)
///     isFormattedNote(formattedNote(u"<head><title>a</title></head>"));    // true
///
/// An absent page stays absent. Time is linear in the page; nothing fails. Any thread. The rules of
/// today, where they are on, count for tags and attributes.
[[nodiscard]] VELMO_API String formattedNote(const String& page, const WebRules& web = {});

/// Whether that meta tag stands in front of the body and is not empty; what it says does not
/// matter.
[[nodiscard]] VELMO_API bool isFormattedNote(std::u16string_view page, const WebRules& web = {});

}  // namespace velmo
