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

/// What one sequence at the start of bytes stands for.
struct FirstOfUtf8 {
    char16_t unit = 0;       ///< the first of two, if it is a pair
    std::size_t length = 0;  ///< in bytes
};

/// Decodes the first sequence, or the first maximal part of a broken one, of bytes that are there.
VELMO_API FirstOfUtf8 firstOfUtf8(std::string_view bytes) noexcept;

/// Whether no sequence is broken.
VELMO_API bool isValidUtf8(std::string_view bytes) noexcept;

/// Encodes into out, which must have room for three bytes for each unit, and gives the
/// number of bytes written. A lone surrogate becomes U+FFFD.
VELMO_API std::size_t encodeUtf8(std::u16string_view units, char* out) noexcept;

}  // namespace velmo::detail
