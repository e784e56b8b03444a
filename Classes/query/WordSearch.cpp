// Words and phrases in a text. All of it stands on the one scan of WordScan, forwards or from
// the end; a phrase is tried at each place of its first word.
//
// An occurrence is asked for in a range, whose edges end words as the edges of a text do. So the
// evaluation of a query can ask about a window around a word without cutting the text.
#include <velmocore/query/WordSearch.h>

#include <algorithm>

#include <velmocore/query/QueryEvaluation.h>

#include "query/WordScan.h"
#include "query/WordSteps.h"
#include "text/UnitFold.h"

namespace velmo {
namespace {

template <class Options>
detail::WordText wordText(std::u16string_view text, const Options& options) {
    return {text, options.termCharacters ? *options.termCharacters : queryTermCharacters(),
            options.withinRuns ? &detail::unspacedScripts() : nullptr};
}

/// The part of the range that the text has.
Range cutAt(std::u16string_view text, Range range) {
    const std::uint64_t start = std::min<std::uint64_t>(range.location, text.size());
    return {start, std::min<std::uint64_t>(range.length, text.size() - start)};
}

/// The range of an occurrence. A word that begins with a star is found wherever it does not
/// fit as well, so the range is cut at the end of the text.
Range rangeOf(std::uint64_t location, std::u16string_view word, std::u16string_view text) {
    if (location == NotFound) return Range::none();
    return {location, std::min<std::uint64_t>(word.size(), text.size() - location)};
}

/// Calls found(location) for each occurrence of a whole word, without overlaps, until it
/// gives false.
template <class Found>
void forEachWord(std::u16string_view text, std::u16string_view word, Case letterCase, Found found) {
    for (std::uint64_t from = 0; from < text.size(); from += word.size()) {
        from = FindWordInString(text, {from, text.size() - from}, word, {.letterCase = letterCase});
        if (from == NotFound || !found(from)) return;
    }
}

Range findWord(std::u16string_view text, std::u16string_view word, Range range,
               const TermSearchOptions& options, Direction direction) {
    const bool isInside = range.location < text.size() && range.length > 0 &&
                          range.length <= text.size() - range.location;
    if (!isInside || word.empty() || word.size() > text.size()) return Range::none();
    return rangeOf(FindWordInString(text, range, word,
                                    {.letterCase = options.letterCase,
                                     .direction = direction,
                                     .wholeWord = options.anchored,
                                     .withinRuns = options.withinRuns}),
                   word, text);
}

}  // namespace

std::size_t FindWordInString(std::u16string_view text, Range range, std::u16string_view word,
                             const FindWordOptions& options) {
    if (word.empty()) return NotFound;
    // Before the range is cut: such a word counts as found at the start of any range.
    if (word.front() == u'*') return range.location;
    range = cutAt(text, range);
    const detail::WordText words = wordText(text, options);
    const detail::SoughtWord sought{
        text, word, options.letterCase, options.wholeWord, words.termCharacters, words.unspaced};
    return options.direction == Direction::Backward
               ? detail::scanBackForWord(sought, range.location, range.end())
               : detail::scanForWord(sought, range.location, range.end());
}

Range FindNonExactPhraseInString(std::u16string_view text, Range range,
                                 std::span<const String> words, const FindPhraseOptions& options) {
    if (words.empty()) return Range::none();
    range = cutAt(text, range);
    const detail::WordText term = wordText(text, options);
    const FindWordOptions first{options.letterCase, options.direction, true, &term.termCharacters,
                                options.withinRuns};
    const auto agrees = [&](std::uint64_t position, const String& word) {
        const char16_t* units = text.data() + position;
        return options.letterCase == Case::Sensitive
                   ? detail::sameUnits(units, word.characters(), word.length(), detail::NoFold{})
                   : detail::sameUnits(units, word.characters(), word.length(),
                                       detail::UpperFold{});
    };
    /// The end of the other words, if they follow, or NotFound.
    const auto endOfRest = [&](std::uint64_t position, std::uint64_t end) {
        for (const String& word : words.subspan(1)) {
            const std::uint64_t before = position;
            while (position < end && !term.isTerm(position)) ++position;
            // Strictly inside the range: a phrase cannot end where the range does.
            const bool isApart = position > before || term.parts(position);
            const bool fits = isApart && word.length() < end - position;
            if (!fits || !agrees(position, word)) return NotFound;
            position += word.length();
            if (options.exact && term.isBeforeTerm(position)) return NotFound;
        }
        return position;
    };

    std::uint64_t start = range.location, end = range.end();
    for (;;) {
        const std::uint64_t hit = FindWordInString(text, {start, end - start}, words[0], first);
        if (hit == NotFound) return Range::none();
        const std::uint64_t behind = hit + words[0].length();
        const std::uint64_t last = behind < end ? endOfRest(behind, end) : NotFound;
        if (last != NotFound) return {hit, last - hit};
        // Nothing would be left of the stretch.
        if (options.direction == Direction::Backward ? hit <= start : behind >= end)
            return Range::none();
        (options.direction == Direction::Backward ? end : start) =
            options.direction == Direction::Backward ? hit : behind;
    }
}

std::size_t NWordsForward(std::size_t n, std::u16string_view text,
                          const CharacterSetRep& termCharacters, std::size_t position,
                          std::size_t end) {
    return detail::wordsForward({text, termCharacters}, position,
                                std::min<std::uint64_t>(end, text.size()), n);
}

std::size_t NWordsBack(std::size_t n, std::u16string_view text,
                       const CharacterSetRep& termCharacters, std::size_t position,
                       std::size_t start) {
    return detail::wordsBack({text, termCharacters}, std::min<std::uint64_t>(position, text.size()),
                             start, n);
}

Range rangeOfWord(std::u16string_view text, std::u16string_view word, Case letterCase) {
    Range result = Range::none();
    forEachWord(text, word, letterCase, [&](std::uint64_t location) {
        result = rangeOf(location, word, text);
        return false;
    });
    return result;
}

std::size_t countWord(std::u16string_view text, std::u16string_view word, Case letterCase) {
    std::uint64_t count = 0;
    forEachWord(text, word, letterCase, [&](std::uint64_t) {
        ++count;
        return true;
    });
    return count;
}

Range rangeOfAnyWord(std::u16string_view text, std::span<const String> words, Case letterCase) {
    for (const String& word : words) {
        if (word.length() > text.size()) continue;
        const Range found = rangeOfWord(text, word, letterCase);
        if (found.isFound()) return found;
    }
    return Range::none();
}

std::size_t countAnyWord(std::u16string_view text, std::span<const String> words, Case letterCase) {
    std::uint64_t count = 0;
    for (const String& word : words)
        if (word.length() <= text.size()) count += countWord(text, word, letterCase);
    return count;
}

Range findNextWord(std::u16string_view text, std::u16string_view word, Range range,
                   const TermSearchOptions& options) {
    return findWord(text, word, range, options, Direction::Forward);
}

Range findPreviousWord(std::u16string_view text, std::u16string_view word, Range range,
                       const TermSearchOptions& options) {
    return findWord(text, word, range, options, Direction::Backward);
}

}  // namespace velmo
