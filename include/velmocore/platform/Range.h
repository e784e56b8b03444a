#pragma once

#include <cstdint>

namespace velmo {

/// The location that means "nowhere": the largest signed 64-bit value.
inline constexpr std::uint64_t NotFound = 0x7FFFFFFFFFFFFFFF;

/// A stretch of a text in UTF-16 units, or of data in bytes. A location of NotFound
/// means that there is no range; its length is then 0.
///
///     Range word{6, 5};
///     word.end();                       // 11
///     Range::none().isFound();          // false
struct Range {
    std::uint64_t location = 0;
    std::uint64_t length = 0;

    static constexpr Range none() { return {NotFound, 0}; }
    constexpr bool isFound() const { return location != NotFound; }
    constexpr std::uint64_t end() const { return location + length; }
    friend constexpr bool operator==(const Range&, const Range&) = default;
};

}  // namespace velmo
