#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// Unicode normalisation forms. The numbers are part of the interface.
///
///     normalizedString(u"\uFB01", NormalizationForm::KC);    // fi
enum class NormalizationForm : std::uint8_t { D = 0, KD = 1, C = 2, KC = 3 };

// Composed, decomposed, in lower or upper case: whole texts, where the length may change.
// No locale has a say. Always a new string; an absent or empty one comes back as it is.
// A text beyond 2^31 units is refused with std::bad_alloc. The time is linear in the text, runs
// of any number of combining marks included: none is cut. Any thread may call these.
//
//     normalizedString(u"a\u0308");                          // \u00E4
//     fixedAndNormalizedString(u"a\U0001F600");              // "a  "

[[nodiscard]] VELMO_API String normalizedString(const String& string,
                                                NormalizationForm form = NormalizationForm::C);
/// Form C, then lower case.
[[nodiscard]] VELMO_API String normalizedLowercaseString(const String& string);
/// Form C, then upper case.
[[nodiscard]] VELMO_API String normalizedUppercaseString(const String& string);
/// Safe for keeping: a space for each NUL, each surrogate (a character outside the 16-bit
/// plane so becomes two) and each unit from U+F400 to U+F8FF, then form C.
[[nodiscard]] VELMO_API String fixedAndNormalizedString(const String& string);

/// The units of the text in form C, an array of the caller's own.
[[nodiscard]] VELMO_API std::u16string getCharactersOfNormalizedString(std::u16string_view string);

// The same in place, and the case alone.

VELMO_API void normalizeString(std::u16string& text, NormalizationForm form = NormalizationForm::C);
VELMO_API void normalizeLowercaseString(std::u16string& text);
VELMO_API void normalizeUppercaseString(std::u16string& text);
VELMO_API void fixAndNormalizeString(std::u16string& text);

VELMO_API void lowercase(std::u16string& text);
VELMO_API void uppercase(std::u16string& text);
/// The first letter of each word in upper case, the others in lower case.
VELMO_API void capitalize(std::u16string& text);

/// Latin ligatures by their letters: U+FB00 to U+FB06, and ij in both cases. U+FB05, the
/// long s with t, becomes ft.
VELMO_API void convertLigaturesToCharacters(std::u16string& text);

/// A new string with the same units; an empty one comes back as it is. Strings are always
/// one array, so there is nothing to gain.
[[nodiscard]] VELMO_API String optimizedString(const String& string);
[[nodiscard]] inline std::u16string optimizedMutableString(std::u16string_view string) {
    return std::u16string(string);
}

// Plain text has no attributes: these do nothing, so that code for attributed text runs on it.

inline void removeAttachments(std::u16string&) {}
inline void removeLinks(std::u16string&) {}
inline void removeAttribute(std::u16string&, std::u16string_view /*name*/) {}

}  // namespace velmo
