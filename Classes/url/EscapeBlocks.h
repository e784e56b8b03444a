// Percent escapes to bytes, some sixty units a step, for machines that have AVX-512 with its
// operations on bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velmo::detail::escapes {

/// Whether bytesOfAsciiByBlocks() may be called.
bool canDecodeEscapeBlocks() noexcept;

/// Room that bytesOfAsciiByBlocks() needs beyond the length of the text.
inline constexpr std::size_t BlockSlack = 64;

/// Writes an ASCII text as bytes, each escape as the byte that it stands for. Gives the end of what
/// was written; null if the text is not ASCII.
std::uint8_t* bytesOfAsciiByBlocks(std::u16string_view text, std::uint8_t* write) noexcept;

}  // namespace velmo::detail::escapes
