// A sieve for many words at once: where, of all places of a text, one of them may begin.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// What the first three units of words may be, for up to eight groups of words. Of a unit only the
/// low bits are looked at. Whatever folds units, each one that may stand in a word is to be added
/// by itself.
struct TripleSieve {
    static constexpr unsigned Groups = 8, Places = 3, Units = 128;

    /// By place and unit, the groups that have it; and the same by the two halves of a byte, which
    /// lets more pass.
    alignas(64) std::uint8_t units[Places][Units] = {};
    alignas(16) std::uint8_t low[Places][16] = {}, high[Places][16] = {};

    void add(unsigned group, unsigned place, char16_t unit) noexcept {
        const auto bit = static_cast<std::uint8_t>(1u << group);
        units[place][unit % Units] |= bit;
        low[place][unit & 15] |= bit;
        high[place][unit >> 4 & 15] |= bit;
    }
    /// Words of the group may end before the place.
    void addAll(unsigned group, unsigned place) noexcept {
        for (char16_t unit = 0; unit < 256; ++unit) add(group, place, unit);
    }
};

/// 64 places of a text and which of them passed: bit i stands for base + i.
struct SievedBlock {
    std::size_t base;
    std::uint64_t places;
};

/// Puts down the first blocks in which a place passes, blocks being counted from the base on, and
/// gives how many these are; fewer than there is room for only at the end of the text. Behind the
/// text there are zeros.
VELMO_API std::size_t nextSieved(std::u16string_view text, std::size_t base,
                                 const TripleSieve& sieve, std::span<SievedBlock> found) noexcept;

/// The ways to do so: one place after the other, or many in one step by halves of bytes (AVX2) or
/// by units (AVX-512). Those that look units up as a whole give the same as one by one.
enum class SieveWay { OneByOne, HalvesOneByOne, Halves, Units };

/// The fastest way of this machine.
VELMO_API SieveWay sieveWay() noexcept;

/// That way must be one of this machine.
VELMO_API std::size_t nextSieved(std::u16string_view text, std::size_t base,
                                 const TripleSieve& sieve, std::span<SievedBlock> found,
                                 SieveWay way) noexcept;

}  // namespace velmo::detail
