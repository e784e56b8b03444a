// The scripts that put no spaces between words: Han, Bopomofo, Kana, Thai, Lao, Burmese and
// Khmer. What a word is in them only a dictionary knows; without one, each character is taken
// for a word of its own.
#pragma once

#include <cstddef>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/text/CharacterSets.h>

#include "platform/Surrogates.h"

namespace velmo::detail {

struct UnspacedScripts {
    CharacterSetRep units;         // of these scripts, and the halves of pairs that may be
    CharacterSetRep joinsBefore;   // continues the character before it: marks, second halves
    CharacterSetRep joinsBehind;   // goes on with the unit behind it: stacking signs, first halves
    CharacterSetRep sentenceEnds;  // the usual ones, and those of the scripts

    /// Whether a character outside the 16-bit plane that belongs to them has a half there.
    bool hasHalfAt(std::u16string_view text, std::size_t i) const {
        if (isLowSurrogate(text[i])) return i > 0 && isHanHalf(text[i - 1]);
        return isHanHalf(text[i]) && i + 1 < text.size() && isLowSurrogate(text[i + 1]);
    }
    /// Whether a unit of them, or half of one, stands there.
    bool hasUnitAt(std::u16string_view text, std::size_t i) const {
        return units.contains(text[i]) && (!isSurrogate(text[i]) || hasHalfAt(text, i));
    }
    /// Whether a word ends and another one begins between a unit that belongs to words and the
    /// one before it, which does too: beside each character of these scripts.
    bool parts(std::u16string_view text, std::size_t i) const {
        return (units.contains(text[i - 1]) || units.contains(text[i])) && !joins(text, i);
    }
    /// Whether both units are of one character.
    bool joins(std::u16string_view text, std::size_t i) const {
        return joinsBefore.contains(text[i]) || joinsBehind.contains(text[i - 1]);
    }

private:
    /// The planes 2 and 3 are Han.
    static bool isHanHalf(char16_t unit) { return unit >= 0xD840 && unit <= 0xD8BF; }
};

/// Made at first use, on whatever thread.
VELMO_API const UnspacedScripts& unspacedScripts();

/// Whether a text holds anything of them. In one that does not, all words have spaces.
VELMO_API bool hasUnspacedScript(std::u16string_view text);

}  // namespace velmo::detail
