// Hashing of units, for tables of texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
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

/// Takes up to sixteen units a step. All bits of the result are good.
inline std::uint64_t hashOfUnits(std::u16string_view units, std::uint64_t seed = 0) noexcept {
    // Both sides of a product start from numbers of their own, so that no seed makes them alike.
    constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15, Other = 0xD6E8FEB86659FD93,
                            Start = 0xA0761D6478BD642F, OtherStart = 0xE7037ED1A0B428DB;
    const auto four = [](const char16_t* from) {
        std::uint64_t word;
        std::memcpy(&word, from, sizeof word);
        return word;
    };
    const auto withEight = [&](std::uint64_t hash, const char16_t* from, std::uint64_t factor) {
        return mixedHash(hash ^ four(from), four(from + 4) ^ factor ^ seed);
    };
    const std::size_t size = units.size();
    const char16_t *from = units.data(), *const end = from + size;
    std::uint64_t hash = seed ^ (size + 1) * Start, beside = seed ^ OtherStart;
    // Two products at a time, as none waits for the other.
    for (; end - from > 16; from += 16) {
        hash = withEight(hash, from, Odd);
        beside = withEight(beside, from + 8, Other);
    }
    if (end - from > 8) beside = withEight(beside, from, Other);
    hash ^= beside;
    // The last ones, some of which may have been looked at already.
    if (size >= 8) return mixedHash(withEight(hash, end - 8, Odd), Other ^ seed);
    if (size >= 4) return mixedHash(hash ^ four(from), four(end - 4) ^ Odd ^ seed);
    std::uint64_t rest = 0;
    for (; from < end; ++from) rest = rest << 16 | *from;
    return mixedHash(hash ^ rest, Odd ^ seed);
}

/// The same of units that each go through a function, which must not be different for what counts
/// as equal. It is another hash than that of the units it gives.
template <class UnitOf>
std::uint64_t hashOfUnits(std::u16string_view units, std::uint64_t seed,
                          const UnitOf& unitOf) noexcept {
    constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15;
    const auto part = [&](std::size_t i, unsigned place) {
        return static_cast<std::uint64_t>(unitOf(units[i])) << place;
    };
    std::uint64_t hash = seed ^ units.size() * Odd;
    std::size_t i = 0;
    for (; units.size() - i >= 4; i += 4)
        hash = mixedHash(hash ^ (part(i, 0) | part(i + 1, 16) | part(i + 2, 32) | part(i + 3, 48)),
                         Odd);
    std::uint64_t rest = 0;
    for (unsigned place = 0; i < units.size(); ++i, place += 16) rest |= part(i, place);
    return mixedHash(hash ^ rest, Odd ^ seed);
}

}  // namespace velmo::detail
