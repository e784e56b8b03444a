// What searches take for the words of a text, asked in one place: where words begin and end.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/text/CharacterSets.h>

#include "words/UnspacedScripts.h"

namespace velmo::detail {

/// A text and what makes words in it: runs of term units; and, if scripts without spaces are
/// given, each character of these by itself.
struct WordText {
    std::u16string_view units;
    const CharacterSetRep& termCharacters;
    const UnspacedScripts* unspaced = nullptr;

    bool isTerm(std::uint64_t position) const {
        return termCharacters.contains(units[position]) ||
               (unspaced && unspaced->hasHalfAt(units, position));
    }
    /// Whether a unit at the position would belong to the word before it.
    bool isAfterTerm(std::uint64_t position) const {
        return position > 0 && (unspaced ? goesOn(position, position - 1)
                                         : termCharacters.contains(units[position - 1]));
    }
    /// Whether the unit at the position would belong to a word that ends before it.
    bool isBeforeTerm(std::uint64_t position) const {
        return position < units.size() &&
               (unspaced ? goesOn(position, position) : termCharacters.contains(units[position]));
    }
    /// Whether a word ends at the position although a term unit stands behind it.
    bool parts(std::uint64_t position) const {
        return unspaced && position > 0 && position < units.size() &&
               unspaced->parts(units, position);
    }
    /// The ends of the word that goes on from a position.
    std::uint64_t endOfWord(std::uint64_t position, std::uint64_t end) const {
        if (unspaced) return endOfUnspacedWord(position, end);
        while (position < end && termCharacters.contains(units[position])) ++position;
        return position;
    }
    std::uint64_t startOfWord(std::uint64_t position, std::uint64_t start) const {
        if (unspaced) return startOfUnspacedWord(position, start);
        while (position > start && termCharacters.contains(units[position - 1])) --position;
        return position;
    }

    VELMO_API bool isAllTerms() const;
    /// Whether it is one word; or several, no two places of which in a text can overlap.
    VELMO_API bool isOneWord() const;
    VELMO_API bool isApartFromItself() const;

private:
    // Apart from the usual way, which they would slow down. A position is inside the text.
    VELMO_API bool goesOn(std::uint64_t position, std::uint64_t neighbour) const;
    VELMO_API std::uint64_t endOfUnspacedWord(std::uint64_t position, std::uint64_t end) const;
    VELMO_API std::uint64_t startOfUnspacedWord(std::uint64_t position, std::uint64_t start) const;
};

/// A text for searches that go through all of it. Where neither it nor what is sought has any of
/// their characters, there is nothing to ask of scripts without spaces, and a search may use that
/// all words are runs.
template <class Strings>
WordText wordTextOf(std::u16string_view units, const CharacterSetRep& termCharacters,
                    bool withinRuns, const Strings& sought) {
    const auto has = [](std::u16string_view text) { return hasUnspacedScript(text); };
    const bool isUnspaced = withinRuns && (has(units) || std::ranges::any_of(sought, has));
    return {units, termCharacters, isUnspaced ? &unspacedScripts() : nullptr};
}

}  // namespace velmo::detail
