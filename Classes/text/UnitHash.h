// Hashing of units, for tables of texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <string_view>

namespace velmo::detail {

/// Differs from run to run, so that no text can be made whose parts all share a slot.
inline std::uint64_t hashSeed() {
    static const std::uint64_t seed = [] {
        std::random_device device;
        return static_cast<std::uint64_t>(device()) << 32 | device();
    }();
    return seed;
}

/// Both halves of a product of 128 bits.
constexpr std::uint64_t mixedHash(std::uint64_t a, std::uint64_t b) noexcept {
    __extension__ using Wide = unsigned __int128;
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// Takes four units a step, each through the given function, which must not be different for
/// what counts as equal. All bits of the result are good.
template <class UnitOf = std::identity>
constexpr std::uint64_t hashOfUnits(std::u16string_view units, std::uint64_t seed = 0,
                                    const UnitOf& unitOf = {}) noexcept {
    constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15;
    const auto part = [&](std::size_t i, unsigned place) {
        return static_cast<std::uint64_t>(unitOf(units[i])) << place;
    };
    std::uint64_t hash = seed ^ units.size();
    std::size_t i = 0;
    for (; units.size() - i >= 4; i += 4)
        hash = mixedHash(hash ^ (part(i, 0) | part(i + 1, 16) | part(i + 2, 32) | part(i + 3, 48)),
                         Odd);
    std::uint64_t rest = 0;
    for (unsigned place = 0; i < units.size(); ++i, place += 16) rest |= part(i, place);
    return mixedHash(hash ^ rest, Odd ^ seed);
}

}  // namespace velmo::detail
