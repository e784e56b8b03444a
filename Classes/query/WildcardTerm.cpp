#include "query/WildcardTerm.h"

#include <algorithm>
#include <string>

namespace velmo::detail {
namespace {

Range findPattern(const WildcardPattern& pattern, const WordText& text, std::uint64_t start,
                  std::uint64_t end, TermChoice choice) {
    if (start >= end) return Range::none();
    if (choice.acceptStar && pattern.isLoneStar())
        return findLoneStar(text, start, end, choice.direction, false);
    return pattern.find(text, start, end, {.direction = choice.direction});
}

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
    const bool beginsInside = text.isBehindTerm(start);
    if (direction == Direction::Backward)
        return !beginsInside && text.isTerm(start) ? Range{start, 1} : Range::none();
    std::uint64_t word = beginsInside ? text.endOfRun(start, end) : start;
    while (word < end && !text.isTerm(word)) ++word;
    return word < end ? Range{word, text.endOfRun(word, end) - word} : Range::none();
}

WildcardTerm::Parts::Parts(std::u16string_view wildcard) {
    if (wildcard.size() >= 3 && numberOfWordsUsingWildcardSeparation(wildcard) >= 2)
        words = wordsUsingWildcardSeparation(String(wildcard), &hyphenated);
}

WildcardTerm::WildcardTerm(std::u16string_view wildcard, WildcardComparison comparison,
                           std::uint64_t minCharacters)
    : WildcardTerm(wildcard, Parts(wildcard), comparison, minCharacters) {}

WildcardTerm::WildcardTerm(std::u16string_view wildcard, const Parts& parts,
                           WildcardComparison comparison, std::uint64_t minCharacters)
    : first_(parts.words.empty() ? wildcard : parts.words.front().view(), comparison,
             minCharacters) {
    for (std::size_t i = 1; i < parts.words.size(); ++i)
        rest_.emplace_back(parts.words[i], comparison, minCharacters);
    if (!parts.hyphenated) return;
    std::u16string joined;
    for (const String& word : parts.words) joined += word.view();
    joined_.emplace(joined, comparison, minCharacters);
}

Range WildcardTerm::find(const WordText& text, std::uint64_t start, std::uint64_t end,
                         TermChoice choice) const {
    const Range hit = findWords(text, start, end, choice);
    return hit.isFound() ? hit : findJoined(text, start, end, choice);
}

Range WildcardTerm::findWords(const WordText& text, std::uint64_t start, std::uint64_t end,
                              TermChoice choice) const {
    if (!isPhrase()) return findPattern(first_, text, start, end, choice);
    for (;;) {
        const Range hit = findPhraseWord(first_, text, start, end, {.direction = choice.direction});
        if (!hit.isFound()) return hit;
        const std::uint64_t last = endOfRest(text, hit.end(), end);
        if (last != NotFound) return {hit.location, last - hit.location};
        (choice.direction == Direction::Backward ? end : start) =
            choice.direction == Direction::Backward ? hit.location : hit.end();
    }
}

std::uint64_t WildcardTerm::endOfRest(const WordText& text, std::uint64_t position,
                                      std::uint64_t end) const {
    for (const WildcardPattern& pattern : rest_) {
        const Range hit = findPhraseWord(pattern, text, position, end, {.anchored = true});
        if (!hit.isFound()) return NotFound;
        position = hit.end();
    }
    return position;
}

Range WildcardTerm::findJoined(const WordText& text, std::uint64_t start, std::uint64_t end,
                               TermChoice choice) const {
    return joined_ ? findPattern(*joined_, text, start, end, choice) : Range::none();
}

bool WildcardTerm::findsWords(const CharacterSetRep& termCharacters) const {
    const auto does = [&](const WildcardPattern& pattern) {
        return pattern.findsWords(termCharacters);
    };
    return does(first_) && std::ranges::all_of(rest_, does) && (!joined_ || does(*joined_));
}

}  // namespace velmo::detail
