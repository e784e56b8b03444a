#pragma once

#include <optional>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

// The charset that a page names: in a meta tag in front of its body, by "charset" in its
// content or as an attribute of its own, or in the XML declaration. Only the head of a page
// is read. The rules of today, where they are on, count for tags and attributes; which charset
// browsers take is told by markup/WebCharsets.h. Nothing fails; any thread.
//
//     markupCharset(u"<meta charset='koi8-r'>");   // koi8-r

/// Empty if there is none.
[[nodiscard]] VELMO_API String markupCharset(std::u16string_view page, const WebRules& web = {});
/// The whole tag that names it.
[[nodiscard]] VELMO_API Range markupCharsetRange(std::u16string_view page,
                                                 const WebRules& web = {});

/// The encoding of markupCharset(), or of the charset in a Content-Type value;
/// UnknownStringEncoding if there is none or its name is not known, which is logged.
[[nodiscard]] VELMO_API StringEncoding markupEncoding(std::u16string_view page,
                                                      const WebRules& web = {});
[[nodiscard]] VELMO_API StringEncoding headerEncoding(std::u16string_view contentType);

/// The encoding for percent escapes in the page's URLs: Latin 1 for a page in it, else UTF-8.
[[nodiscard]] VELMO_API StringEncoding defaultURLEncoding(std::u16string_view page,
                                                          const WebRules& web = {});

/// A page as bytes.
struct MarkupData {
    /// Absent if the encoding does not have all characters of the page.
    std::optional<Data> bytes;
    StringEncoding usedEncoding;  ///< ASCIIStringEncoding for no bytes
};

/// The page's bytes in the encoding that it names. If it names none that is known, in ASCII,
/// with all other units as references. No bytes for an empty or absent page.
[[nodiscard]] VELMO_API MarkupData markupData(const String& page);

}  // namespace velmo
