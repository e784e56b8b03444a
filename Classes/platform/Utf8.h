// UTF-8 to UTF-16 and back, on plain arrays.
#pragma once

#include <cstddef>
#include <cstdint>
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

// The sequences of two and of three bytes, of which nearly all texts outside ASCII are, by one look
// at the four bytes there. What these do not tell, decodeUtf8() does.

/// The next four bytes, the first in the low byte.
template <class Byte>
inline std::uint32_t nextFour(const Byte* in) noexcept {
    const auto at = [in](int i) { return std::uint32_t(static_cast<unsigned char>(in[i])); };
    return at(0) | at(1) << 8 | at(2) << 16 | at(3) << 24;
}
/// The second condition keeps out the overlong forms C0 and C1.
inline bool isUtf8Pair(std::uint32_t four) noexcept {
    return (four & 0xC0E0) == 0x80C0 && (four & 0x1E) != 0;
}
/// Of which the unit is yet to be looked at: one below 800, or a surrogate, is broken.
inline bool isUtf8Triple(std::uint32_t four) noexcept { return (four & 0xC0C0F0) == 0x8080E0; }
inline char16_t unitOfUtf8Pair(std::uint32_t four) noexcept {
    return static_cast<char16_t>((four & 0x1F) << 6 | (four >> 8 & 0x3F));
}
inline char16_t unitOfUtf8Triple(std::uint32_t four) noexcept {
    return static_cast<char16_t>((four & 0x0F) << 12 | (four >> 2 & 0xFC0) | (four >> 16 & 0x3F));
}

/// Whether no sequence is broken.
VELMO_API bool isValidUtf8(std::string_view bytes) noexcept;

/// Encodes into out, which must have room for three bytes for each unit, and gives the
/// number of bytes written. A lone surrogate becomes U+FFFD.
VELMO_API std::size_t encodeUtf8(std::u16string_view units, char* out) noexcept;

}  // namespace velmo::detail
