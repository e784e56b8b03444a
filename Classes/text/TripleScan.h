// A sieve for many words at once: where, of all places of a text, one of them may begin.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// What the first three units of words may be, for up to eight groups of words. A unit is looked
/// at as its low byte, and of that as two halves: whatever table folds units, each unit that may
/// stand in a word is to be added by itself.
struct TripleSieve {
    static constexpr unsigned Groups = 8, Places = 3;

    /// By place and half of the byte, the groups that have it.
    alignas(16) std::uint8_t low[Places][16] = {};
    alignas(16) std::uint8_t high[Places][16] = {};

    void add(unsigned group, unsigned place, char16_t unit) noexcept {
        low[place][unit & 15] |= static_cast<std::uint8_t>(1u << group);
        high[place][unit >> 4 & 15] |= static_cast<std::uint8_t>(1u << group);
    }
    /// Words of the group may end before the place.
    void addAll(unsigned group, unsigned place) noexcept {
        for (unsigned half = 0; half < 16; ++half) {
            low[place][half] |= static_cast<std::uint8_t>(1u << group);
            high[place][half] |= static_cast<std::uint8_t>(1u << group);
        }
    }
    /// The groups whose words may have the unit at the place.
    unsigned groupsOf(unsigned place, char16_t unit) const noexcept {
        return low[place][unit & 15] & high[place][unit >> 4 & 15];
    }
};

/// 64 units of a text, and the places among them that passed: bit i stands for base + i.
struct SievedBlock {
    std::size_t base;
    std::uint64_t places;
};

/// The first block from the base on in which a place passes, the blocks being whole and followed
/// by two units more; otherwise the base of the first block that is not, and no place.
VELMO_API SievedBlock nextSieved(std::u16string_view text, std::size_t base,
                                 const TripleSieve& sieve) noexcept;

/// The same place by place: the reference for the other, and its form for other machines.
VELMO_API SievedBlock nextSievedOneByOne(std::u16string_view text, std::size_t base,
                                         const TripleSieve& sieve) noexcept;

/// Which places pass of those that are left over, fewer than 66. What would stand behind the text
/// is taken to pass.
VELMO_API std::uint64_t sievedRest(std::u16string_view rest, const TripleSieve& sieve) noexcept;

/// Whether this machine looks at many places in one step.
VELMO_API bool sievesManyAtOnce() noexcept;

}  // namespace velmo::detail
