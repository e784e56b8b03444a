// Which units of a stretch are in a set, 64 of them in one step.
#pragma once

#include <cstddef>
#include <cstdint>

#include <velmocore/platform/Export.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo::detail {

/// Which of up to 64 units are in the set: bit i stands for units[i].
VELMO_API std::uint64_t membersOf(const char16_t* units, std::size_t count,
                                  const CharacterSetRep& set) noexcept;

/// The same unit by unit: the reference for the other, and what it leaves over.
inline std::uint64_t membersOneByOne(const char16_t* units, std::size_t count,
                                     const CharacterSetRep& set) noexcept {
    // Eight at a time keep the shifts constant.
    const auto bit = [&](std::size_t i, unsigned place) {
        return static_cast<std::uint64_t>(set.contains(units[i])) << place;
    };
    std::uint64_t bits = 0;
    const std::size_t whole = count & ~std::size_t{7};
    for (std::size_t i = 0; i < whole; i += 8)
        bits |= (bit(i, 0) | bit(i + 1, 1) | bit(i + 2, 2) | bit(i + 3, 3) | bit(i + 4, 4) |
                 bit(i + 5, 5) | bit(i + 6, 6) | bit(i + 7, 7))
                << i;
    for (std::size_t i = whole; i < count; ++i) bits |= bit(i, 0) << i;
    return bits;
}

}  // namespace velmo::detail
