#pragma once

#include <cstddef>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo {

// Texts tested against sets of units. An absent text is an empty one; no text has a unit in
// an absent (null) set. Any thread may call these.
//
//     containsDigitCharacter(u"page 7");                                     // true
//     equalStringsUsingCharacterSetRep(u"A-B", u"AB", alphaNumCharacterSetRep());   // true

/// Some unit is in the set.
[[nodiscard]] VELMO_API bool characterPartOfSet(std::u16string_view string,
                                                const CharacterSetRep* set);
/// The number of units in the set.
[[nodiscard]] VELMO_API std::size_t countCharactersPartOfSet(std::u16string_view string,
                                                             const CharacterSetRep* set);
/// Every unit is in the set; the last argument for an empty string.
[[nodiscard]] VELMO_API bool charactersPartOfSet(std::u16string_view string,
                                                 const CharacterSetRep& set, bool emptyResult);

/// The same under the name for strings, and with the sets of the names.
[[nodiscard]] inline bool containsCharacterPartOfCharacterSetRep(std::u16string_view string,
                                                                 const CharacterSetRep* set) {
    return characterPartOfSet(string, set);
}
[[nodiscard]] VELMO_API bool containsAlphaNumCharacter(std::u16string_view string);
[[nodiscard]] VELMO_API bool containsAlphaCharacter(std::u16string_view string);
[[nodiscard]] VELMO_API bool containsWhiteCharacter(std::u16string_view string);
[[nodiscard]] VELMO_API bool containsDigitCharacter(std::u16string_view string);

/// How many units are in the set given or named.
[[nodiscard]] inline std::size_t countCharactersPartOfCharacterSetRep(std::u16string_view string,
                                                                      const CharacterSetRep* set) {
    return countCharactersPartOfSet(string, set);
}
[[nodiscard]] VELMO_API std::size_t countAlphaNumCharacters(std::u16string_view string);
[[nodiscard]] VELMO_API std::size_t countAlphaCharacters(std::u16string_view string);
[[nodiscard]] VELMO_API std::size_t countWhiteCharacters(std::u16string_view string);
[[nodiscard]] VELMO_API std::size_t countDigitCharacters(std::u16string_view string);

// Every unit is in the set of the name. An empty string is a space and a white string, and
// none of the others.
[[nodiscard]] VELMO_API bool isSpaceString(std::u16string_view string);
[[nodiscard]] VELMO_API bool isWhiteString(std::u16string_view string);
[[nodiscard]] VELMO_API bool isDigitString(std::u16string_view string);
[[nodiscard]] VELMO_API bool isAlphaString(std::u16string_view string);
[[nodiscard]] VELMO_API bool isAlphaNumString(std::u16string_view string);
/// The same as isWhiteString().
[[nodiscard]] VELMO_API bool onlyWhiteCharacters(std::u16string_view characters);

/// Whether the text begins like two capitalised words glued together, as "CamelCase": an
/// upper-case letter, at least one lower-case letter, an upper-case letter and a lower-case one.
[[nodiscard]] VELMO_API bool isMashedWordString(std::u16string_view string);
[[nodiscard]] inline bool isMashedWord(std::u16string_view string) {
    return isMashedWordString(string);
}

// Two texts compared over the units of a set: all other units are passed over. NoCase
// compares upper-case forms. A prefix with no unit of the set is a prefix of every text.

[[nodiscard]] VELMO_API bool equalCharsOfCharacterSetRep(std::u16string_view a,
                                                         std::u16string_view b,
                                                         const CharacterSetRep& set);
[[nodiscard]] VELMO_API bool equalCharsNoCaseOfCharacterSetRep(std::u16string_view a,
                                                               std::u16string_view b,
                                                               const CharacterSetRep& set);
[[nodiscard]] VELMO_API bool hasPrefixCharsOfCharacterSetRep(std::u16string_view text,
                                                             std::u16string_view prefix,
                                                             const CharacterSetRep& set);
[[nodiscard]] VELMO_API bool hasPrefixCharsNoCaseOfCharacterSetRep(std::u16string_view text,
                                                                   std::u16string_view prefix,
                                                                   const CharacterSetRep& set);

// The same under the names for strings.

[[nodiscard]] inline bool equalStringsUsingCharacterSetRep(std::u16string_view a,
                                                           std::u16string_view b,
                                                           const CharacterSetRep& set) {
    return equalCharsOfCharacterSetRep(a, b, set);
}
[[nodiscard]] inline bool equalStringsNoCaseUsingCharacterSetRep(std::u16string_view a,
                                                                 std::u16string_view b,
                                                                 const CharacterSetRep& set) {
    return equalCharsNoCaseOfCharacterSetRep(a, b, set);
}
[[nodiscard]] inline bool hasPrefixUsingCharacterSetRep(std::u16string_view text,
                                                        std::u16string_view prefix,
                                                        const CharacterSetRep& set) {
    return hasPrefixCharsOfCharacterSetRep(text, prefix, set);
}
[[nodiscard]] inline bool hasPrefixNoCaseUsingCharacterSetRep(std::u16string_view text,
                                                              std::u16string_view prefix,
                                                              const CharacterSetRep& set) {
    return hasPrefixCharsNoCaseOfCharacterSetRep(text, prefix, set);
}

// Numbers are runs of the ASCII digits, whatever digitCharacterSetRep() holds.

/// The number of numbers.
[[nodiscard]] VELMO_API std::size_t countNumbers(std::u16string_view string);
/// Some number has that many digits or more; false for 0 digits.
[[nodiscard]] VELMO_API bool containsNumberWithNDigits(std::u16string_view string,
                                                       std::size_t digits);
/// Whether the digits stand in the text as a whole number, not as a part of a longer one.
///
///     containsNumber(u"7 12 x", u"12");    // true
///     containsNumber(u"7 123 x", u"12");   // false
[[nodiscard]] VELMO_API bool containsNumber(std::u16string_view string, std::u16string_view digits);

/// The units outside the set: always a new string. A null set, or an empty or absent string, gives
/// the string itself.
[[nodiscard]] VELMO_API String stringByRemovingCharactersInRep(const String& string,
                                                               const CharacterSetRep* set);
/// The same with whiteCharacterSetRep().
[[nodiscard]] VELMO_API String stringByRemovingWhiteSpaces(const String& string);

}  // namespace velmo
