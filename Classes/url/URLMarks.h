// Where the units stand that mean something in a URL, as bits: one walk over the text finds them
// all, and what follows asks for the next one, or for two side by side, with a shift and a count of
// zeros. For texts of up to 128 units, which most links are; who has a longer one goes unit by unit.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>

namespace velmo::detail {

/// A bit for each unit, the lowest one for the first.
class UnitBits {
public:
    static constexpr std::uint32_t MostUnits = 128, LowUnits = 64;

    constexpr UnitBits() = default;
    constexpr UnitBits(std::uint64_t low, std::uint64_t high)
        : bits_(static_cast<Wide>(high) << 64 | low) {}

    /// The first length bits.
    static constexpr UnitBits below(std::uint32_t length) noexcept {
        return UnitBits(length < MostUnits ? (Wide{1} << length) - 1 : ~Wide{0});
    }
    constexpr explicit operator bool() const noexcept { return bits_ != 0; }
    constexpr bool operator[](std::uint32_t i) const noexcept { return bits_ >> i & 1; }
    /// The first one from a position on; the given end if there is none in front of it.
    constexpr std::uint32_t first(std::uint32_t from, std::uint32_t end) const noexcept {
        if (from >= end) return end;
        const Wide rest = bits_ >> from;
        const auto low = static_cast<std::uint64_t>(rest);
        const int zeros = low ? std::countr_zero(low)
                              : 64 + std::countr_zero(static_cast<std::uint64_t>(rest >> 64));
        const std::uint32_t found = from + static_cast<std::uint32_t>(zeros);
        return found < end ? found : end;
    }
    /// The last one in front of an end, where there must be one.
    constexpr std::uint32_t last(std::uint32_t end) const noexcept {
        const Wide rest = bits_ & below(end).bits_;
        const auto high = static_cast<std::uint64_t>(rest >> 64);
        return high ? 127 - static_cast<std::uint32_t>(std::countl_zero(high))
                    : 63 - static_cast<std::uint32_t>(
                               std::countl_zero(static_cast<std::uint64_t>(rest)));
    }
    /// Those of the first LowUnits units.
    constexpr std::uint64_t low() const noexcept { return static_cast<std::uint64_t>(bits_); }
    /// Those that have one of the others right behind them, or in front of them.
    constexpr UnitBits before(UnitBits other) const noexcept {
        return UnitBits(bits_ & other.bits_ >> 1);
    }
    constexpr UnitBits behind(UnitBits other) const noexcept {
        return UnitBits(bits_ & other.bits_ << 1);
    }
    constexpr UnitBits without(UnitBits other) const noexcept {
        return UnitBits(bits_ & ~other.bits_);
    }

    /// Those that are left when the units of a range are cut out of the text.
    constexpr UnitBits erased(std::uint32_t from, std::uint32_t to) const noexcept {
        const Wide behind = to < MostUnits ? bits_ >> to << from : 0;
        return UnitBits((bits_ & below(from).bits_) | behind);
    }

    friend constexpr UnitBits operator&(UnitBits a, UnitBits b) noexcept {
        return UnitBits(a.bits_ & b.bits_);
    }
    friend constexpr UnitBits operator|(UnitBits a, UnitBits b) noexcept {
        return UnitBits(a.bits_ | b.bits_);
    }
    friend constexpr bool operator==(UnitBits, UnitBits) noexcept = default;

private:
    __extension__ using Wide = unsigned __int128;
    constexpr explicit UnitBits(Wide bits) : bits_(bits) {}

    Wide bits_ = 0;
};

struct URLMarks {
    UnitBits slash, dot, colon, question, hash, semicolon, equals, ampersand, percent;
    /// All that may not stand for itself in a URL everywhere behind the scheme, aside from the
    /// marks above: what no URL holds, and @ and brackets.
    UnitBits other;

    bool operator==(const URLMarks&) const = default;
};

/// The marks that names and values of parameters end at, and that of escapes.
struct ParameterMarks {
    UnitBits equals, ampersand, semicolon, question, percent;

    bool operator==(const ParameterMarks&) const = default;
};

/// The marks of a text of up to UnitBits::MostUnits units.
URLMarks urlMarksOf(std::u16string_view text) noexcept;
ParameterMarks parameterMarksOf(std::u16string_view text) noexcept;

/// The same sixteen units a step: their form for machines without AVX-512.
URLMarks urlMarksByBlocks(std::u16string_view text) noexcept;
ParameterMarks parameterMarksByBlocks(std::u16string_view text) noexcept;

/// The same unit by unit: the references for the others, and their form for other machines.
URLMarks urlMarksOneByOne(std::u16string_view text) noexcept;
ParameterMarks parameterMarksOneByOne(std::u16string_view text) noexcept;

}  // namespace velmo::detail
