#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo {

// The sets that cut text into words and components. Each is made at first use, on
// whatever thread, and stays for the life of the process.
//
//     defaultWordSeparators().contains(u'-');          // true
//     defaultWordSeparators().contains(u'7');          // false: digits belong to words

/// White space, punctuation, symbols, control and unassigned units, and surrogates, so
/// that a character outside the 16-bit plane parts two words. Letters, marks and digits
/// of all scripts are no separators.
[[nodiscard]] VELMO_API const CharacterSetRep& defaultWordSeparators();
/// What ends a component: . , : ; ! ? and the feed units.
[[nodiscard]] VELMO_API const CharacterSetRep& defaultComponentSeparators();
/// The component separators without the comma and the semicolon.
[[nodiscard]] VELMO_API const CharacterSetRep& defaultSentenceSeparators();
/// The feed units without U+FEFF.
[[nodiscard]] VELMO_API const CharacterSetRep& defaultLineSeparators();

/// Makes the word, component and line separators ahead of time. See also
/// initSeparatorsAndTables() of query/Wildcards.h, which makes all sets and tables.
VELMO_API void initSeparators();

}  // namespace velmo
