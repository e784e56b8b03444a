#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

// Attributes of one tag. The tag is its whole text, angle brackets included. Names are
// given in upper case and compared without regard to case. Entities are not decoded. An
// attribute that is missing, empty or broken is absent. WebRules::attributes reads them by the HTML
// standard. Ranges count UTF-16 units. Any thread may call these.
//
//     attributeOfTagCharacters(u"<a href='x' id=y>", "HREF");   // x

/// The value of an attribute.
[[nodiscard]] VELMO_API String attributeOfTagCharacters(std::u16string_view tag,
                                                        std::string_view name,
                                                        const WebRules& web = {});
/// The value of "CONTENT"; markup inside a quoted value is tolerated, as meta tags need.
[[nodiscard]] VELMO_API String contentAttributeOfTagCharacters(std::u16string_view tag,
                                                               const WebRules& web = {});
/// Where the value stands, counted from the start of the view; makes no string.
[[nodiscard]] VELMO_API Range rangeOfAttributeOfTagCharacters(std::u16string_view tag,
                                                              std::string_view name,
                                                              const WebRules& web = {});
/// The same for "CONTENT", with the tolerance told above.
[[nodiscard]] VELMO_API Range rangeOfContentAttributeOfTagCharacters(std::u16string_view tag,
                                                                     const WebRules& web = {});

// The same task with the rules for strings: a preceding underscore does not reject a
// name, repeated = units are not skipped.

[[nodiscard]] VELMO_API String attributeOfTagWithName(std::u16string_view tag,
                                                      std::u16string_view name);
/// Reads a style declaration list, as "width: 3px; height: 4px".
[[nodiscard]] VELMO_API String attributeOfStyleWithName(std::u16string_view style,
                                                        std::u16string_view name);

// NAME=value in a header line. The name is given in upper case and matches at the end of a
// longer word too.

/// What stands around a value.
struct HeaderFieldOptions {
    char16_t quotation = u'\'';  ///< around it, if it begins with one
    char16_t separator = u';';   ///< 0 lets a value run to the end
};
/// Absent for an empty name.
[[nodiscard]] VELMO_API String headerFieldNamed(std::u16string_view header,
                                                std::u16string_view name,
                                                HeaderFieldOptions options = {});
/// With quotation " and separator ,.
[[nodiscard]] VELMO_API String HTTPHeaderFieldNamed(std::u16string_view header,
                                                    std::u16string_view name);
/// The charset of a Content-Type value.
[[nodiscard]] VELMO_API String headerCharset(std::u16string_view contentType);
/// The URL of a refresh value.
[[nodiscard]] VELMO_API String headerRefresh(std::u16string_view refresh);
/// The leading integer of a refresh value, in seconds.
[[nodiscard]] VELMO_API std::int64_t refreshInterval(std::u16string_view refresh);

/// Width and height of a tag, in pixels as a rule.
struct TagSize {
    std::int64_t width = 0;   ///< 0 if it is not told
    std::int64_t height = 0;  ///< likewise
    /// Whether a width above 0 was found.
    explicit operator bool() const { return width > 0; }
};
/// From "WIDTH" and "HEIGHT", else from the tag's style.
[[nodiscard]] VELMO_API TagSize getTagWidth(std::u16string_view tag, const WebRules& web = {});

/// The URL of a background image that does not repeat, named in the tag's style.
[[nodiscard]] VELMO_API String backgroundStyleURLOfTagCharacters(std::u16string_view tag,
                                                                 const WebRules& web = {});

}  // namespace velmo
