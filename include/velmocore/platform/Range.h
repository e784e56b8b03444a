#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

#include <velmocore/platform/Export.h>

namespace velmo {

/// The location that means "nowhere": the largest signed 64-bit value.
inline constexpr std::uint64_t NotFound = 0x7FFFFFFFFFFFFFFF;

/// A stretch of a text in UTF-16 units, or of data in bytes. A location of NotFound
/// means that there is no range; its length is then 0.
///
///     Range word{6, 5};
///     word.end();                       // 11
///     Range::none().isFound();          // false
///
/// A plain value, which any thread may use. The range {0, 0} is empty, but it is one.
struct Range {
    std::uint64_t location = 0;  ///< of its first unit, counted from 0
    std::uint64_t length = 0;    ///< in the same units

    /// No range.
    [[nodiscard]] static constexpr Range none() { return {NotFound, 0}; }
    /// Whether there is one.
    [[nodiscard]] constexpr bool isFound() const { return location != NotFound; }
    /// The place behind its last unit; nothing keeps the sum from running over.
    [[nodiscard]] constexpr std::uint64_t end() const { return location + length; }
    friend constexpr bool operator==(const Range&, const Range&) = default;
};

static_assert(sizeof(std::size_t) == sizeof(std::uint64_t), "velmocore needs a 64-bit platform");

/// A range for people, as "{6, 5}"; "{none}" if there is none.
[[nodiscard]] VELMO_API std::string printed(const Range& range);
VELMO_API std::ostream& operator<<(std::ostream& stream, const Range& range);

}  // namespace velmo
