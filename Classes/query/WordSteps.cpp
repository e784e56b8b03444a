// A window of some words around a place is mostly narrow, and a walk over its units is then
// cheaper than any list. A wide one around each of many hits would cost hits times words; for
// these the ends of all words are listed once, and a step is a binary search.
#include "query/WordSteps.h"

#include <algorithm>

#include "words/RunScan.h"

namespace velmo::detail {

/// Where a window that holds a word begins: with the unit before it, if that is of no word.
static std::uint64_t before(const WordText& text, std::uint64_t word, std::uint64_t start) {
    if (word <= start) return start;
    return text.unspaced && text.isTerm(word - 1) ? word : word - 1;
}

std::uint64_t wordsForward(const WordText& text, std::uint64_t position, std::uint64_t end,
                           std::uint64_t n) {
    // A word takes at least one unit.
    if (position >= end || end - position <= n) return end;
    for (; n > 0 && position < end; --n) {
        while (position < end && !text.isTerm(position)) ++position;
        position = text.endOfWord(position, end);
    }
    return position;
}

std::uint64_t wordsBack(const WordText& text, std::uint64_t position, std::uint64_t start,
                        std::uint64_t n) {
    if (position <= start || position - start - !text.unspaced <= n) return start;
    for (; n > 0 && position > start; --n) {
        while (position > start && !text.isTerm(position - 1)) --position;
        position = text.startOfWord(position, start);
    }
    return before(text, position, start);
}

void WordSteps::listWords() {
    if (isListed_) return;
    isListed_ = true;
    const auto list = [&](const Run& run) {
        if (!run.isMember) return true;
        starts_.push_back(run.start);
        ends_.push_back(run.end);
        return true;
    };
    if (!text_.unspaced) return forEachRun(text_.units, text_.termCharacters, list);
    for (std::size_t at = 0, end = 0; at < text_.units.size(); at = std::max(end, at + 1)) {
        end = text_.endOfWord(at, text_.units.size());
        list({at, end, end > at});
    }
}

std::uint64_t WordSteps::forward(std::uint64_t position, std::uint64_t end, std::uint64_t n) {
    if (n <= NearSteps || position >= end || end - position <= n)
        return wordsForward(text_, position, end, n);
    listWords();
    // A word that ends at the position is behind it, as the walk has it.
    const auto first = std::ranges::upper_bound(ends_, position);
    if (static_cast<std::uint64_t>(ends_.end() - first) < n) return end;
    return std::min(first[static_cast<std::ptrdiff_t>(n - 1)], end);
}

std::uint64_t WordSteps::back(std::uint64_t position, std::uint64_t start, std::uint64_t n) {
    if (n <= NearSteps || position <= start || position - start <= n)
        return wordsBack(text_, position, start, n);
    listWords();
    const auto behind = std::ranges::upper_bound(starts_, position - 1);
    if (static_cast<std::uint64_t>(behind - starts_.begin()) < n) return start;
    return before(text_, behind[-static_cast<std::ptrdiff_t>(n)], start);
}

}  // namespace velmo::detail
