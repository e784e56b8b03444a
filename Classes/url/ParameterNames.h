// Names of parameters in a table. Most names are not there, which their length, their first and their
// last unit tell; of all others one multiplication for eight units and as a rule one look.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Ascii.h"
#include "platform/UnitHash.h"

namespace velmo::detail {

/// Names in lower case, some of which stand for all that begin with them. They are looked for in
/// any case of ASCII.
class ParameterNames {
public:
    using Units = std::u16string_view;

    /// The longest name that there can be.
    static constexpr std::size_t Longest = 64;

    /// The number of a name, which is not empty: a new one, the next from 0 on, if it was not there.
    std::size_t add(Units name, bool isBeginning);

    /// Calls test with the number of the name itself, then with those of its beginnings, until it
    /// gives true. False if it never does.
    template <class Test>
    bool any(Units name, Test test) const {
        if (name.empty()) return false;
        if (name.size() <= Longest && mayHave(name, false) && testOne(name, false, test))
            return true;
        for (std::uint64_t lengths = lengths_[slotOfFirst(name)]; lengths; lengths &= lengths - 1) {
            const auto length = static_cast<std::size_t>(std::countr_zero(lengths)) + 1;
            if (length > name.size()) return false;
            const Units beginning = name.substr(0, length);
            if (mayHave(beginning, true) && testOne(beginning, true, test)) return true;
        }
        return false;
    }

private:
    static constexpr std::size_t NotThere = SIZE_MAX, Slots = 256;

    struct Name {
        std::u16string text;
        bool isBeginning;
        std::uint64_t hash;
    };
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t name = 0;  ///< one more than its number; 0 for none
    };

    std::uint64_t hashOf(Units name) const noexcept;
    /// The bit of a length, which is one from 1 to Longest.
    static constexpr std::uint64_t bitOf(std::size_t length) noexcept {
        return std::uint64_t{1} << (length - 1);
    }
    /// Of a name, all that share its ends.
    static std::size_t slotOfEnds(Units name, bool isBeginning) noexcept {
        const unsigned first = name.front() | 0x20u, last = name.back() | 0x20u;
        return (first * 8 + last * 2 + isBeginning) % Slots;
    }
    /// Whether there may be such a name; none is longer than Longest.
    bool mayHave(Units name, bool isBeginning) const noexcept {
        return lengthsOfEnds_[slotOfEnds(name, isBeginning)] & bitOf(name.size());
    }
    template <class Test>
    bool testOne(Units name, bool isBeginning, const Test& test) const {
        const std::size_t number = find(name, isBeginning);
        return number != NotThere && test(number);
    }
    static std::size_t slotOfFirst(Units name) noexcept {
        return name[0] < 128 ? static_cast<std::size_t>(ascii::toLower(name[0])) : 0;
    }
    std::size_t find(Units name, bool isBeginning) const noexcept;
    void place(std::size_t number);
    void growTo(std::size_t slots);

    std::uint64_t seed_ = hashSeed();
    std::vector<Name> names_;
    std::vector<Slot> slots_ =
        std::vector<Slot>(64);  ///< a power of two, no more than a quarter full
    /// The lengths of the beginnings, a bit for each from 1 on, by their first unit; those of
    /// a first unit outside ASCII in the first place.
    std::array<std::uint64_t, 128> lengths_{};
    std::array<std::uint64_t, Slots> lengthsOfEnds_{};  ///< of both kinds, likewise by their ends
};

}  // namespace velmo::detail
