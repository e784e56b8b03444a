#pragma once

#include <cstddef>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo {

// What stands around one index of a text, as an editor asks when the user clicks into it.
// Each range has a string beside it, which is empty if there is no range. An index outside
// the text gives none. Indexes and ranges count UTF-16 units. Any thread may call these.
//
//     getWordAtIndex(u"one two", 5);                         // two
//     getLinkAtIndex(u"see <http://example.com/>.", 10);     // http://example.com/

/// The word of alphaNumCharacterSetRep() that the unit at the index belongs to; none if it is
/// no word unit. NotFound stands for the last index.
[[nodiscard]] VELMO_API Range getWordRangeAtIndex(std::u16string_view string, std::size_t index);
[[nodiscard]] VELMO_API String getWordAtIndex(std::u16string_view string, std::size_t index);
/// The word at the very start; empty if the string begins with another unit.
[[nodiscard]] VELMO_API String firstWord(std::u16string_view string);
/// The word at the very end; empty if the string ends with another unit.
[[nodiscard]] VELMO_API String lastWord(std::u16string_view string);

/// The units around the index up to the next separator on either side.
[[nodiscard]] VELMO_API Range getSubstringRangeAtIndex(std::u16string_view string,
                                                       std::size_t index,
                                                       const CharacterSetRep& separators);
[[nodiscard]] VELMO_API String getSubstringAtIndex(std::u16string_view string, std::size_t index,
                                                   const CharacterSetRep& separators);

/// The URL around the index, or the mail address if the unit at the index is its @. White
/// space and angle brackets end it, punctuation at its end does not belong to it.
[[nodiscard]] VELMO_API Range getLinkRangeAtIndex(std::u16string_view string, std::size_t index);
[[nodiscard]] VELMO_API String getLinkAtIndex(std::u16string_view string, std::size_t index);

}  // namespace velmo
