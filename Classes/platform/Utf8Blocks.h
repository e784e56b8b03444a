// UTF-8 to UTF-16, 64 bytes a step, for machines that have AVX-512 with its gathering of bytes (VBMI2).
#pragma once

#include <cstddef>
#include <cstdint>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// Whether decodeUtf8Blocks() may be called.
VELMO_API bool canDecodeUtf8Blocks() noexcept;

inline constexpr std::ptrdiff_t Utf8Block = 64;

/// Decodes from the read position on, which is where a sequence starts, and moves both positions. Stops
/// at the end, or before a block that holds a broken sequence. There must be room for as many units as
/// there are bytes.
VELMO_API void decodeUtf8Blocks(const std::uint8_t*& in, const std::uint8_t* end,
                                char16_t*& out) noexcept;

}  // namespace velmo::detail
