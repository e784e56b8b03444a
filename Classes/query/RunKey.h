// A run of term units as two numbers, by which nearly all runs are told from the words of a query.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "text/UnitBlocks.h"

namespace velmo::detail {

/// The first and the last eight units as bytes; those of a shorter run twice, as its own ones come
/// before zeros. So two runs of up to sixteen ASCII units are the same if their keys and lengths are.
struct RunKey {
    static constexpr std::size_t Units = 8;

    std::uint64_t first = 0, last = 0;

    /// Of bytes, eight of which must be readable behind the start of the run and before its end.
    static RunKey of(const std::uint8_t* run, std::size_t length) noexcept {
        const std::size_t inPart = std::min(length, Units);
        return {firstOf(run, inPart), packOf(run + length - Units) >> 8 * (Units - inPart)};
    }
    /// The first bytes, of which there are no more than eight.
    static std::uint64_t firstOf(const std::uint8_t* run, std::size_t count) noexcept {
        const auto unused = static_cast<unsigned>(8 * (Units - count));
        return packOf(run) << unused >> unused;
    }
    /// The first bytes before one that is zero, as behind each run there is, told without its length;
    /// of keys the same, lest a unit that is zero makes a difference.
    static std::uint64_t beginningOf(const std::uint8_t* run) noexcept {
        return beginningOf(packOf(run));
    }
    static constexpr std::uint64_t beginningOf(std::uint64_t first) noexcept {
        constexpr std::uint64_t Lowest = 0x0101'0101'0101'0101, Highest = Lowest << 7;
        const std::uint64_t zeros = (first - Lowest) & ~first & Highest;  // the lowest bit is right
        return first & (zeros ^ (zeros - 1));
    }
    /// A key of units, each as the function has it.
    template <class UnitOf>
    static RunKey of(std::u16string_view run, const UnitOf& unitOf) noexcept {
        const std::size_t inPart = std::min(run.size(), Units);
        RunKey key;
        for (std::size_t i = 0; i < inPart; ++i) {
            const auto part = [&](char16_t unit) {
                return std::uint64_t{byteOfUnit(unitOf(unit), Case::Sensitive)} << 8 * i;
            };
            key.first |= part(run[i]);
            key.last |= part(run[run.size() - inPart + i]);
        }
        return key;
    }

    /// Whether it tells all of a run of that length.
    bool isWhole(std::size_t length) const noexcept {
        return length <= 2 * Units && ((first | last) & 0x8080'8080'8080'8080) == 0;
    }

    friend bool operator==(const RunKey&, const RunKey&) = default;

private:
    static std::uint64_t packOf(const std::uint8_t* bytes) noexcept {
        std::uint64_t pack = 0;
        if constexpr (std::endian::native == std::endian::little)
            std::memcpy(&pack, bytes, sizeof pack);  // compilers do not see it in the other form
        else
            for (unsigned i = 0; i < Units; ++i) pack |= std::uint64_t{bytes[i]} << 8 * i;
        return pack;
    }
};

}  // namespace velmo::detail
