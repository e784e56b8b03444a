// Names of parameters in a table: one multiplication for eight units of a name and as a rule one look
// tell that it is not there, which most names are not.
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
        const std::size_t whole = name.size() <= Longest ? find(name, false) : NotThere;
        if (whole != NotThere && test(whole)) return true;
        for (std::uint64_t lengths = lengths_[slotOfFirst(name)]; lengths; lengths &= lengths - 1) {
            const auto length = static_cast<std::size_t>(std::countr_zero(lengths)) + 1;
            if (length > name.size()) return false;
            const std::size_t beginning = find(name.substr(0, length), true);
            if (beginning != NotThere && test(beginning)) return true;
        }
        return false;
    }

private:
    static constexpr std::size_t NotThere = SIZE_MAX;

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
};

}  // namespace velmo::detail
