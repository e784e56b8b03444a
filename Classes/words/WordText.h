// What searches take for the words of a text, asked in one place: where words begin and end.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

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
        return position > 0 && (isTerm(position - 1) || joins(position)) && !parts(position);
    }
    /// Whether the unit at the position would belong to a word that ends before it.
    bool isBeforeTerm(std::uint64_t position) const {
        return position < units.size() && (isTerm(position) || joins(position)) && !parts(position);
    }
    /// Whether a word ends at the position although a term unit stands behind it.
    bool parts(std::uint64_t position) const {
        return unspaced && isInside(position) && unspaced->parts(units, position);
    }
    bool isAllTerms() const {
        for (std::uint64_t i = 0; i < units.size(); ++i)
            if (!isTerm(i)) return false;
        return true;
    }
    /// Whether it is one word; or several, no two places of which in a text can overlap.
    bool isOneWord() const {
        return !units.empty() && isAllTerms() && endOfWord(0, units.size()) == units.size();
    }
    bool isApartFromItself() const {
        const bool isUnspaced = !units.empty() && unspaced && unspaced->units.contains(units[0]);
        return isUnspaced && isAllTerms() && units.find(units[0], 1) == units.npos;
    }
    /// The ends of the word that goes on from a position.
    std::uint64_t endOfWord(std::uint64_t position, std::uint64_t end) const {
        if (position < end && isTerm(position)) ++position;
        while (position < end && isTerm(position) && !parts(position)) ++position;
        return position;
    }
    std::uint64_t startOfWord(std::uint64_t position, std::uint64_t start) const {
        while (position > start && isTerm(position - 1))
            if (parts(--position)) break;
        return position;
    }

private:
    bool isInside(std::uint64_t position) const { return position > 0 && position < units.size(); }
    /// Whether a position is inside a pair, which may be no term at all.
    bool joins(std::uint64_t position) const {
        return unspaced && isInside(position) && isPairAt(units, position - 1);
    }
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
