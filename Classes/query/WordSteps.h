// Positions some words further on or back, as the windows of the proximity operators need
// them.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/text/CharacterSets.h>

namespace velmo::detail {

/// Behind the n-th word that ends after the position, a word being a run of term units; end
/// if it lies further on.
std::uint64_t wordsForward(std::u16string_view text, const CharacterSetRep& termCharacters,
                           std::uint64_t position, std::uint64_t end, std::uint64_t n);

/// The unit before the n-th word that begins before the position; start if it lies further
/// back.
std::uint64_t wordsBack(std::u16string_view text, const CharacterSetRep& termCharacters,
                        std::uint64_t position, std::uint64_t start, std::uint64_t n);

/// The same for many steps in one text. Far ones use a list of the text's words, made when
/// the first of them is taken, so that a wide window costs a look-up and not a walk through
/// the words in it. Not to be shared between threads.
class WordSteps {
public:
    WordSteps(std::u16string_view text, const CharacterSetRep& termCharacters)
        : text_(text), termCharacters_(termCharacters) {}

    std::uint64_t forward(std::uint64_t position, std::uint64_t end, std::uint64_t n);
    std::uint64_t back(std::uint64_t position, std::uint64_t start, std::uint64_t n);

private:
    static constexpr std::uint64_t NearSteps = 24;  // taken unit by unit

    void listWords();

    std::u16string_view text_;
    const CharacterSetRep& termCharacters_;
    bool isListed_ = false;
    std::vector<std::uint64_t> starts_, ends_;  // of the words, in their order
};

}  // namespace velmo::detail
