// Units that are characters by themselves.
#pragma once

#include <string_view>

#include <velmocore/text/CharacterSets.h>

namespace velmo::detail {

/// The units for which comparing units says what comparing decomposed characters does, with case
/// or without: no marks, no halves of pairs, no parts that join to syllables, and none that has
/// another form besides its decomposed one.
VELMO_API const CharacterSetRep& simpleUnits();

/// Whether all units of the text are simple.
bool areSimpleUnits(std::u16string_view text);

}  // namespace velmo::detail
