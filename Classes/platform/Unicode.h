// What the library needs of Unicode, asked of ICU: categories, one-to-one mappings,
// normalisation and case of whole texts. No ICU type shows. ICU counts in 32 bits with sign:
// a longer text is refused with std::bad_alloc.
#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo::detail::unicode {

/// Unicode's general categories, as bits of a mask.
enum Category : std::uint32_t {
    Letter = 1u << 0,            // L
    Mark = 1u << 1,              // M
    Number = 1u << 2,            // N
    DecimalDigit = 1u << 3,      // Nd
    Lowercase = 1u << 4,         // Ll
    UppercaseOrTitle = 1u << 5,  // Lu, Lt
    SpaceSeparator = 1u << 6,    // Zs
    LineOrParagraph = 1u << 7,   // Zl, Zp
    Punctuation = 1u << 8,       // P
    Symbol = 1u << 9,            // S
    Control = 1u << 10,          // Cc, Cf
    Unassigned = 1u << 11,       // Cn
};

/// The categories a unit belongs to, by the character of that number; a surrogate
/// belongs to none.
VELMO_API std::uint32_t categoriesOf(char16_t unit) noexcept;

/// Lower or upper case of one unit, full mapping, no locale. The unit itself where
/// the mapping is not exactly one unit.
VELMO_API char16_t lowerCase(char16_t unit) noexcept;
VELMO_API char16_t upperCase(char16_t unit) noexcept;

/// The unit without diacritics: decomposed, its marks removed. The unit itself where
/// not exactly one unit is left.
VELMO_API char16_t withoutDiacritics(char16_t unit) noexcept;

/// Normalisation forms, with the numbers that callers use for them.
enum class Form { D = 0, KD = 1, C = 2, KC = 3 };
VELMO_API String normalized(std::u16string_view text, Form form);

/// Whether the text is surely in form C. False may also mean that it would take
/// normalising to know.
VELMO_API bool isNormalizedC(std::u16string_view text) noexcept;

/// Case of a whole text, no locale; the length may change.
VELMO_API String lowerCase(std::u16string_view text);
VELMO_API String upperCase(std::u16string_view text);
/// The first letter of each word in upper case, the others in lower case.
VELMO_API String titleCase(std::u16string_view text);

/// Membership of the platform's white-space-and-newline set: Zs, Zl, Zp, U+0009 to
/// U+000D and U+0085.
VELMO_API bool isWhiteSpaceOrNewline(char16_t unit) noexcept;

}  // namespace velmo::detail::unicode
