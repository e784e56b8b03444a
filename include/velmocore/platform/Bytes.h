#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace velmo {

/// Bytes that are read: a view, which owns nothing.
using Bytes = std::span<const std::uint8_t>;

/// Bytes that are owned.
using Data = std::vector<std::uint8_t>;

/// The bytes of an 8-bit text, without a copy. The text must outlive the view.
inline Bytes bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// The same bytes as an 8-bit text, without a copy.
inline std::string_view charsOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace velmo
