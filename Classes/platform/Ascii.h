// Classes and cases of ASCII, for units and bytes alike. Every other unit is in no class and has
// no case.
#pragma once

namespace velmo::detail::ascii {

template <class Unit>
constexpr bool isIn(Unit unit, char low, char high) noexcept {
    return unit >= static_cast<Unit>(low) && unit <= static_cast<Unit>(high);
}

template <class Unit>
constexpr bool isDigit(Unit unit) noexcept {
    return isIn(unit, '0', '9');
}
template <class Unit>
constexpr bool isUpper(Unit unit) noexcept {
    return isIn(unit, 'A', 'Z');
}
template <class Unit>
constexpr bool isLower(Unit unit) noexcept {
    return isIn(unit, 'a', 'z');
}
template <class Unit>
constexpr bool isLetter(Unit unit) noexcept {
    return isUpper(unit) || isLower(unit);
}
template <class Unit>
constexpr bool isLetterOrDigit(Unit unit) noexcept {
    return isLetter(unit) || isDigit(unit);
}

// The two cases of a letter differ in one bit.

template <class Unit>
constexpr Unit toLower(Unit unit) noexcept {
    return isUpper(unit) ? static_cast<Unit>(unit | 0x20) : unit;
}
template <class Unit>
constexpr Unit toUpper(Unit unit) noexcept {
    return isLower(unit) ? static_cast<Unit>(unit & ~0x20) : unit;
}

/// The value of a hexadecimal digit; 16 if it is none.
template <class Unit>
constexpr unsigned hexValue(Unit unit) noexcept {
    if (isDigit(unit)) return static_cast<unsigned>(unit - '0');
    const Unit lower = toLower(unit);
    return isIn(lower, 'a', 'f') ? static_cast<unsigned>(lower - 'a' + 10) : 16;
}

}  // namespace velmo::detail::ascii
