// The resolution of the URL standard, beside the one of this library.
#pragma once

#include <string_view>

#include <velmocore/text/Encodings.h>
#include <velmocore/url/URL.h>

namespace velmo::detail {

/// The URL of a link as the URL standard reads it, against a base or, if that is absent, alone.
/// Absent if it is none. The encoding is that of queries.
URL webURL(std::u16string_view link, const URL& base, StringEncoding encoding);

/// The text without the controls and spaces at its ends.
std::u16string_view withoutControlsAround(std::u16string_view text) noexcept;

/// The URL of a text that was made of another one's: by the grammar, or as the standard reads it
/// where the other one was read so.
URL urlLike(const URL& other, const String& text);

}  // namespace velmo::detail
