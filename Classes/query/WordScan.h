// The plain search for a word in a stretch of a text, on which nearly all of the query
// module stands.
#pragma once

#include <cstdint>
#include <string_view>

#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>

#include "words/WordText.h"

namespace velmo::detail {

/// A word as it is looked for in a text. It has at least one unit.
struct SoughtWord {
    std::u16string_view text;
    std::u16string_view word;
    Case letterCase;
    bool wholeWord;  // no term unit may adjoin the word
    const CharacterSetRep& termCharacters;
    const UnspacedScripts* unspaced = nullptr;  // if given, but beside their characters
};

/// Whether the word stands at a position of the stretch from start to end. No unit outside
/// the stretch is looked at, so that its edges end words.
bool wordStandsAt(const SoughtWord& sought, std::uint64_t position, std::uint64_t start,
                  std::uint64_t end);

/// The first or the last position in the stretch at which the word stands, or NotFound.
std::uint64_t scanForWord(const SoughtWord& sought, std::uint64_t start, std::uint64_t end);
std::uint64_t scanBackForWord(const SoughtWord& sought, std::uint64_t start, std::uint64_t end);

}  // namespace velmo::detail
