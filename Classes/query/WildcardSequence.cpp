// One pattern, or a phrase of them. A phrase is tried at each place of its first word; the others
// must be the very next words, so that a try costs the phrase and no search.
#include "query/WildcardSequence.h"

#include <algorithm>

namespace velmo::detail {
namespace {

/// A word of a phrase, in which a lone star is any word.
Range findPhraseWord(const WildcardPattern& pattern, const WordText& text, std::uint64_t start,
                     std::uint64_t end, WordChoice choice) {
    if (start >= end) return Range::none();
    if (pattern.isLoneStar()) return findLoneStar(text, start, end, choice.direction, true);
    return pattern.find(text, start, end, choice);
}

}  // namespace

Range findLoneStar(const WordText& text, std::uint64_t start, std::uint64_t end,
                   Direction direction, bool starIsWord) {
    if (!starIsWord) return {start, end - start};
    const bool beginsInside = text.isAfterTerm(start);
    // Backwards a star takes the one unit at the start; a deliberate rule, see the header.
    if (direction == Direction::Backward)
        return !beginsInside && text.isTerm(start) ? Range{start, 1} : Range::none();
    std::uint64_t word = beginsInside ? text.endOfWord(start, end) : start;
    while (word < end && !text.isTerm(word)) ++word;
    return word < end ? Range{word, text.endOfWord(word, end) - word} : Range::none();
}

WildcardSequence::WildcardSequence(std::span<const String> words, WildcardComparison comparison,
                                   std::uint64_t minCharacters)
    : first_(words.front(), comparison, minCharacters) {
    for (const String& word : words.subspan(1)) rest_.emplace_back(word, comparison, minCharacters);
}

Range WildcardSequence::find(const WordText& text, std::uint64_t start, std::uint64_t end,
                             SequenceChoice choice) const {
    if (start >= end) return Range::none();
    if (!isPhrase()) {
        if (choice.acceptStar && isLoneStar())
            return findLoneStar(text, start, end, choice.direction, false);
        return first_.find(text, start, end, {.direction = choice.direction});
    }
    for (;;) {
        const Range hit = findFirst(text, start, end, choice.direction);
        if (!hit.isFound()) return hit;
        const std::uint64_t last = endOfRest(text, hit.end(), end);
        if (last != NotFound) return {hit.location, last - hit.location};
        if (choice.direction == Direction::Backward)
            end = hit.location;
        else
            start = hit.end();
    }
}

Range WildcardSequence::findFirst(const WordText& text, std::uint64_t start, std::uint64_t end,
                                  Direction direction) const {
    return findPhraseWord(first_, text, start, end, {.direction = direction});
}

std::uint64_t WildcardSequence::endOfRest(const WordText& text, std::uint64_t position,
                                          std::uint64_t end) const {
    for (const WildcardPattern& pattern : rest_) {
        const Range hit = findPhraseWord(pattern, text, position, end, {.anchored = true});
        if (!hit.isFound()) return NotFound;
        position = hit.end();
    }
    return position;
}

bool WildcardSequence::mayTouch(const WordText& text, std::uint64_t end) const {
    if (end == text.units.size() || !text.isBeforeTerm(end)) return false;
    return text.isAfterTerm(end) || (last().isDirect() && last().findAtEnd(text, 0, end).isFound());
}

bool WildcardSequence::findsWords(const WordText& text) const {
    const auto does = [&](const WildcardPattern& pattern) { return pattern.findsWords(text); };
    return does(first_) && std::ranges::all_of(rest_, does);
}

}  // namespace velmo::detail
