// Positions some words further on or back, as the windows of the proximity operators need
// them.
#pragma once

#include <cstdint>
#include <vector>

#include "words/WordText.h"

namespace velmo::detail {

/// Behind the n-th word that ends after the position; end if it lies further on.
std::uint64_t wordsForward(const WordText& text, std::uint64_t position, std::uint64_t end,
                           std::uint64_t n);

/// The unit before the n-th word that begins before the position; start if it lies further
/// back. In scripts without spaces the word itself, as that unit is one of another word.
std::uint64_t wordsBack(const WordText& text, std::uint64_t position, std::uint64_t start,
                        std::uint64_t n);

/// The same for many steps in one text. Far ones use a list of the text's words, made when
/// the first of them is taken, so that a wide window costs a look-up and not a walk through
/// the words in it. Not to be shared between threads.
class WordSteps {
public:
    explicit WordSteps(const WordText& text) : text_(text) {}

    std::uint64_t forward(std::uint64_t position, std::uint64_t end, std::uint64_t n);
    std::uint64_t back(std::uint64_t position, std::uint64_t start, std::uint64_t n);

private:
    static constexpr std::uint64_t NearSteps = 24;  // taken unit by unit

    void listWords();

    WordText text_;
    bool isListed_ = false;
    std::vector<std::uint64_t> starts_, ends_;  // of the words, in their order
};

}  // namespace velmo::detail
