// A sieve for many words at once: where, of all places of a text, one of them may begin.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// What the first four pairs of units of words may be, for up to eight groups of words. Of a pair
/// only a number of seven bits is looked at, which is the same for ASCII letters of either case.
/// Whatever folds units, each one that may stand in a word is to be added by itself.
struct TripleSieve {
    static constexpr unsigned Groups = 8, Places = 4, Pairs = 128, Halves = 16, Ahead = Places,
                              AllGroups = (1u << Groups) - 1;

    /// By place and pair, the groups that have it; and the same by two halves of what a pair is,
    /// which lets more pass.
    alignas(64) std::uint8_t pairs[Places][Pairs] = {};
    alignas(16) std::uint8_t low[Places][Halves] = {}, high[Places][Halves] = {};

    /// Of a unit what tells it from others, and the same turned by three bits.
    static constexpr unsigned bitsOf(char16_t unit) noexcept { return unit & 0x5F; }
    static constexpr unsigned turned(unsigned bits) noexcept {
        return (bits << 3 & 0x78) | bits >> 4;
    }

    /// Of the bits of two units the number of their pair, and its halves.
    static constexpr unsigned pairOf(unsigned first, unsigned second) noexcept {
        return first ^ turned(second);
    }
    static constexpr unsigned lowOf(unsigned first, unsigned second) noexcept {
        return (first ^ second << 1) % Halves;
    }
    static constexpr unsigned highOf(unsigned first, unsigned second) noexcept {
        return (second ^ first << 3) % Halves;
    }

    /// A pair by the bits of its units.
    void add(unsigned group, unsigned place, unsigned first, unsigned second) noexcept {
        const auto bit = static_cast<std::uint8_t>(1u << group);
        pairs[place][pairOf(first, second)] |= bit;
        low[place][lowOf(first, second)] |= bit;
        high[place][highOf(first, second)] |= bit;
    }
    /// Words of the group may end before the second unit of the pair.
    void addAll(unsigned group, unsigned place) noexcept {
        const auto bit = static_cast<std::uint8_t>(1u << group);
        for (std::uint8_t& groups : pairs[place]) groups |= bit;
        for (auto* halves : {low[place], high[place]})
            for (unsigned half = 0; half < Halves; ++half) halves[half] |= bit;
    }
};

/// 64 places of a text and which of them passed: bit i stands for base + i.
struct SievedBlock {
    std::size_t base;
    std::uint64_t places;
};

/// Puts down the first blocks in which a place passes, blocks being counted from the base on, and
/// gives how many these are; fewer than there is room for only at the end of the text. Behind the
/// text there are zeros. Only words of the groups told, by bits, are looked for.
VELMO_API std::size_t nextSieved(std::u16string_view text, std::size_t base,
                                 const TripleSieve& sieve, std::span<SievedBlock> found,
                                 unsigned groups) noexcept;

/// The ways to do so: one place after the other, or many in one step by halves of pairs (AVX2) or
/// by pairs (AVX-512). Those that look pairs up as a whole give the same as one by one.
enum class SieveWay { OneByOne, HalvesOneByOne, Halves, Pairs };

/// The fastest way of this machine.
VELMO_API SieveWay sieveWay() noexcept;

/// That way must be one of this machine.
VELMO_API std::size_t nextSieved(std::u16string_view text, std::size_t base,
                                 const TripleSieve& sieve, std::span<SievedBlock> found,
                                 unsigned groups, SieveWay way) noexcept;

}  // namespace velmo::detail
