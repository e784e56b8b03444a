// What is asked where scripts without spaces have words. There a word ends beside each character,
// and nowhere inside a pair, whatever it stands for.
#include "words/WordText.h"

namespace velmo::detail {

bool WordText::goesOn(std::uint64_t position, std::uint64_t neighbour) const {
    const bool isInPair = position > 0 && isPairAt(units, position - 1);
    return (isTerm(neighbour) || isInPair) && !parts(position);
}

std::uint64_t WordText::endOfUnspacedWord(std::uint64_t position, std::uint64_t end) const {
    if (position < end && isTerm(position)) ++position;
    while (position < end && isTerm(position) && !parts(position)) ++position;
    return position;
}

std::uint64_t WordText::startOfUnspacedWord(std::uint64_t position, std::uint64_t start) const {
    while (position > start && isTerm(position - 1))
        if (parts(--position)) break;
    return position;
}

bool WordText::isAllTerms() const {
    for (std::uint64_t i = 0; i < units.size(); ++i)
        if (!isTerm(i)) return false;
    return true;
}

bool WordText::isOneWord() const {
    return !units.empty() && isAllTerms() && endOfWord(0, units.size()) == units.size();
}

bool WordText::isApartFromItself() const {
    const bool isUnspaced = !units.empty() && unspaced && unspaced->units.contains(units[0]);
    return isUnspaced && isAllTerms() && units.find(units[0], 1) == units.npos;
}

}  // namespace velmo::detail
