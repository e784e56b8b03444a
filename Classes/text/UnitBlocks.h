// Blocks of 64 units of a text, made ready to be looked at as bytes and as bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo::detail {

inline constexpr std::size_t UnitsInBlock = 64;

/// What stands for all units that are none of ASCII.
inline constexpr std::uint8_t OtherByte = 0xFF;

/// The two units outside ASCII that are the same as letters of it when in upper case.
inline constexpr char16_t DotlessI = u'\u0131', LongS = u'\u017F';

/// A unit as a byte: as it is or, without regard to case, in upper case.
constexpr std::uint8_t byteOfUnit(char16_t unit, Case letterCase) noexcept {
    // Written so that compilers make vectors of a loop over it.
    const bool folds = letterCase == Case::Insensitive;
    const auto byte = static_cast<std::uint8_t>(unit | (unit > 127 ? OtherByte : 0));
    const std::uint8_t change = folds ? 'a' - 'A' : 0;
    const std::uint8_t ofLower = static_cast<std::uint8_t>(byte - 'a') < 26 ? 'a' - 'A' : 0;
    const auto folded = static_cast<std::uint8_t>(byte - (ofLower & change));
    const std::uint8_t i = folds ? 'I' : OtherByte, s = folds ? 'S' : OtherByte;
    return unit == DotlessI ? i : unit == LongS ? s : folded;
}

/// What is put down of blocks, one after the other.
struct UnitBlocks {
    std::uint64_t* members;  // which units are in a set, by bits; none behind the text
    std::uint8_t* bytes;     // of the members; zeros for all else
};

/// Puts down the blocks of a text that begin at the bases.
VELMO_API void putUnitBlocks(std::u16string_view text, std::span<const std::size_t> bases,
                             const CharacterSetRep& set, Case letterCase,
                             UnitBlocks blocks) noexcept;

/// The same unit by unit: the reference for the other.
VELMO_API void putUnitBlocksOneByOne(std::u16string_view text, std::span<const std::size_t> bases,
                                     const CharacterSetRep& set, Case letterCase,
                                     UnitBlocks blocks) noexcept;

}  // namespace velmo::detail
