// A window of some words around a place is mostly narrow, and a walk over its units is then
// cheaper than any list. A wide one around each of many hits would cost hits times words; for
// these the ends of all words are listed once, and a step is a binary search.
#include "query/WordSteps.h"

#include <algorithm>

#include "words/RunScan.h"

namespace velmo::detail {

std::uint64_t wordsForward(std::u16string_view text, const CharacterSetRep& termCharacters,
                           std::uint64_t position, std::uint64_t end, std::uint64_t n) {
    // A word takes at least one unit.
    if (position >= end || end - position <= n) return end;
    for (; n > 0 && position < end; --n) {
        while (position < end && !termCharacters.contains(text[position])) ++position;
        while (position < end && termCharacters.contains(text[position])) ++position;
    }
    return position;
}

std::uint64_t wordsBack(std::u16string_view text, const CharacterSetRep& termCharacters,
                        std::uint64_t position, std::uint64_t start, std::uint64_t n) {
    if (position <= start || --position - start <= n) return start;
    for (; n > 0 && position > start; --n) {
        while (position > start && !termCharacters.contains(text[position])) --position;
        while (position > start && termCharacters.contains(text[position])) --position;
    }
    return position;
}

void WordSteps::listWords() {
    if (isListed_) return;
    forEachRun(text_, termCharacters_, [&](const Run& run) {
        if (run.isMember) {
            starts_.push_back(run.start);
            ends_.push_back(run.end);
        }
        return true;
    });
    isListed_ = true;
}

std::uint64_t WordSteps::forward(std::uint64_t position, std::uint64_t end, std::uint64_t n) {
    if (n <= NearSteps || position >= end || end - position <= n)
        return wordsForward(text_, termCharacters_, position, end, n);
    listWords();
    // A word that ends at the position is behind it, as the walk has it.
    const auto first = std::ranges::upper_bound(ends_, position);
    if (static_cast<std::uint64_t>(ends_.end() - first) < n) return end;
    return std::min(first[static_cast<std::ptrdiff_t>(n - 1)], end);
}

std::uint64_t WordSteps::back(std::uint64_t position, std::uint64_t start, std::uint64_t n) {
    if (n <= NearSteps || position <= start || position - start <= n)
        return wordsBack(text_, termCharacters_, position, start, n);
    listWords();
    const auto behind = std::ranges::upper_bound(starts_, position - 1);
    if (static_cast<std::uint64_t>(behind - starts_.begin()) < n) return start;
    const std::uint64_t word = behind[-static_cast<std::ptrdiff_t>(n)];
    return word > start ? word - 1 : start;
}

}  // namespace velmo::detail
