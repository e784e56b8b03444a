// The halves of a pair that stands for a character outside the 16-bit plane.
#pragma once

namespace velmo::detail {

constexpr bool isHighSurrogate(char32_t unit) noexcept { return (unit & 0xFFFFFC00) == 0xD800; }
constexpr bool isLowSurrogate(char32_t unit) noexcept { return (unit & 0xFFFFFC00) == 0xDC00; }
constexpr bool isSurrogate(char32_t unit) noexcept { return (unit & 0xFFFFF800) == 0xD800; }

}  // namespace velmo::detail
