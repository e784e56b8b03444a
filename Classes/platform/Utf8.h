// UTF-8 to UTF-16 and back, on plain arrays.
#pragma once

#include <cstddef>
#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// Decodes into out, which must have room for as many units as there are bytes plus
/// Utf8Slack, and gives the number of units written. Broken sequences become U+FFFD, one
/// for each maximal part.
VELMO_API std::size_t decodeUtf8(std::string_view bytes, char16_t* out) noexcept;

/// The vector stores of decodeUtf8 may touch this many units behind its result.
inline constexpr std::size_t Utf8Slack = 16;

/// Encodes into out, which must have room for three bytes for each unit, and gives the
/// number of bytes written. A lone surrogate becomes U+FFFD.
VELMO_API std::size_t encodeUtf8(std::u16string_view units, char* out) noexcept;

}  // namespace velmo::detail
