#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo {

/// A set of UTF-16 units: one bit a unit. A surrogate is tested as itself.
///
///     CharacterSetRep vowels;
///     vowels.add(u"aeiou");
///     vowels.contains(u'e');                        // true
///     alphaNumCharacterSetRep().contains(u'-');     // false
///
/// A plain value of 8 KB; any thread may read one that none changes.
struct CharacterSetRep {
    std::uint8_t bits[8192] = {};  ///< of unit n the bit n % 8 of byte n / 8

    /// Whether it has a unit.
    [[nodiscard]] bool contains(char16_t unit) const noexcept {
        return (bits[unit >> 3] >> (unit & 7)) & 1;
    }
    /// Puts a unit in, or all of a text.
    void add(char16_t unit) noexcept {
        bits[unit >> 3] = static_cast<std::uint8_t>(bits[unit >> 3] | 1u << (unit & 7));
    }
    void add(std::u16string_view units) noexcept {
        for (char16_t unit : units) add(unit);
    }
    /// Takes a unit out.
    void remove(char16_t unit) noexcept {
        bits[unit >> 3] = static_cast<std::uint8_t>(bits[unit >> 3] & ~(1u << (unit & 7)));
    }
};

// The standard sets. Each is made at first use, on whatever thread, and stays for the life
// of the process.

/// No unit.
[[nodiscard]] VELMO_API const CharacterSetRep& emptyCharacterSetRep();
/// The spaces of a line: category Zs, tab and NUL.
[[nodiscard]] VELMO_API const CharacterSetRep& spaceCharacterSetRep();
/// Every kind of white space: Zs, Zl, Zp, U+0009 to U+000D, U+0085, NUL and the feed units.
[[nodiscard]] VELMO_API const CharacterSetRep& whiteCharacterSetRep();
/// Categories L and M, so that a decomposed word stays in one piece.
[[nodiscard]] VELMO_API const CharacterSetRep& alphaCharacterSetRep();
/// Categories L, M and N.
[[nodiscard]] VELMO_API const CharacterSetRep& alphaNumCharacterSetRep();
/// Category Nd.
[[nodiscard]] VELMO_API const CharacterSetRep& digitCharacterSetRep();
/// Category Ll.
[[nodiscard]] VELMO_API const CharacterSetRep& lowerCharacterSetRep();
/// Categories Lu and Lt.
[[nodiscard]] VELMO_API const CharacterSetRep& upperCharacterSetRep();

/// Feed units end a line or stand for a break: U+0003, U+000A, U+000C, U+000D, U+2028,
/// U+2029, U+FEFF and U+FFFC. All of them are white, but not all that is white is a feed.
[[nodiscard]] constexpr bool isFeedUnit(char16_t unit) noexcept {
    // With 16-bit wrap-around, unit + 4 is below 18 for U+FFFC and up and for U+000D and
    // below; the mask holds the five feeds among these.
    const auto low = static_cast<char16_t>(unit + 4);
    if (low < 18) return (213121u >> low) & 1;
    return unit == 0x2028 || unit == 0x2029 || unit == 0xFEFF;
}

}  // namespace velmo
