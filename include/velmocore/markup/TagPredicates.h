#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo {

// What kind of tag a text is. The text is the whole tag, angle brackets included.
// <br/> is both open and closed; <b> is open; <> is neither, and an empty text is nothing. Lengths
// count UTF-16 units. Any thread may call these.
//
//     isTagClosed(u"</p>");   // true

/// At least three units, and the second is not a /.
[[nodiscard]] VELMO_API bool isTagOpen(std::u16string_view tag) noexcept;
/// At least four units, and the second or the last but one is a /.
[[nodiscard]] VELMO_API bool isTagClosed(std::u16string_view tag) noexcept;
/// A declaration, as <![CDATA[ ]]>: at least seven units that begin with <![.
[[nodiscard]] VELMO_API bool isMetaTag(std::u16string_view tag) noexcept;
/// A comment: at least seven units that begin with <!-.
[[nodiscard]] VELMO_API bool isRemarkTag(std::u16string_view tag) noexcept;

/// Whether a text is an HTML page: it begins with < and ends with >, white space around
/// it aside, and holds a doctype, an html or a title tag.
[[nodiscard]] VELMO_API bool isHTML(std::u16string_view text);

}  // namespace velmo
