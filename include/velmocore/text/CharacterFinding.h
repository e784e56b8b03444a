#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>

namespace velmo {

// Single UTF-16 units looked for and counted. An index is NotFound if there is no hit; a start
// after the text's end gives none, and so does an empty or absent text. Any thread may call these.
//
// Mind the case rule of findCharacter(), findLastCharacter(), countCharacter() and
// containsCharacter(): where case counts, a unit that has two cases is looked for in
// UPPER case, so that a search for a letter a finds only A. Where it does not, upper-case
// forms are compared. A unit without case is looked for as it is.
//
//     findCharacter(u"www.example.com", u'.');                           // 3
//     containsCharacter(u"aaa", u'a');                                   // false
//     containsCharacter(u"aaa", u'a', {.letterCase = Case::Insensitive});        // true
//     findOneOf(u"a;b,c", u",;");                                        // 1
//     countLTGT(u"<a> <b").LT;                                           // 2

/// Where a search begins, and what it looks past.
struct CharacterSearch {
    std::int64_t startAt = 0;           ///< an index; below 0 counts as 0
    Case letterCase = Case::Sensitive;  ///< mind the rule above
};

/// The first hit from the start index upward.
[[nodiscard]] VELMO_API std::size_t findCharacter(std::u16string_view string, char16_t unit,
                                                  CharacterSearch search = {});
/// The last hit that is not below the start index.
[[nodiscard]] VELMO_API std::size_t findLastCharacter(std::u16string_view string, char16_t unit,
                                                      CharacterSearch search = {});
/// The number of hits from the start index upward.
[[nodiscard]] VELMO_API std::size_t countCharacter(std::u16string_view string, char16_t unit,
                                                   CharacterSearch search = {});
/// Whether there is a hit.
[[nodiscard]] inline bool containsCharacter(std::u16string_view string, char16_t unit,
                                            CharacterSearch search = {}) {
    return findCharacter(string, unit, search) != NotFound;
}

/// The first hit of any of the units, from the start index upward. Where case counts,
/// the units are looked for as they are, in both cases.
[[nodiscard]] VELMO_API std::size_t findOneOf(std::u16string_view string, std::u16string_view units,
                                              CharacterSearch search = {});

/// Punctuation marks, for containsCharacters().
enum CharacterMask : unsigned {
    FullStopMask = 1,      ///< a full stop
    AtSignMask = 2,        ///< an at sign
    SlashMask = 4,         ///< a slash
    QuestionMarkMask = 8,  ///< a question mark
    SemicolonMask = 16,    ///< a semicolon
    UnderscoreMask = 32,   ///< an underscore
    AsteriskMask = 64,     ///< an asterisk
    DollarSignMask = 128,  ///< a dollar sign
};
/// Whether all units of the mask occur; false for a mask of 0. Stops at the last one needed.
[[nodiscard]] VELMO_API bool containsCharacters(std::u16string_view string, unsigned mask);

/// The numbers of < and > of a text.
struct AngleBrackets {
    std::size_t LT = 0;  ///< of <
    std::size_t GT = 0;  ///< of >
    /// Whether there are as many of the one as of the other, and any at all.
    explicit operator bool() const { return LT == GT && LT > 0; }
};
/// Counts both in one pass.
[[nodiscard]] VELMO_API AngleBrackets countLTGT(std::u16string_view string);

}  // namespace velmo
