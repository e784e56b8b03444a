// Searches for wildcards in a text: single ones, the nearest of several, and all of them one
// after the other. What a wildcard finds is settled in WildcardTerm, what is remembered from
// hit to hit in WildcardWalk; here ranges are cut to the text and options handed on.
//
// The one-off searches make their pattern anew and remember nothing. Whoever wants hit after hit
// takes forEachWildcard(), which keeps what it found from one hit to the next.
#include <velmocore/query/WildcardSearch.h>

#include <algorithm>
#include <string>

#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/text/Normalisation.h>

#include "query/WildcardTerm.h"
#include "query/WildcardWalk.h"

namespace velmo {
namespace {

using detail::WildcardTerm;
using detail::WordText;

WordText wordText(std::u16string_view text, bool withinRuns,
                  const CharacterSetRep* termCharacters = nullptr) {
    return {text, termCharacters ? *termCharacters : queryTermCharacters(),
            withinRuns ? &detail::unspacedScripts() : nullptr};
}

/// The part of the range that the text has.
Range cutAt(std::u16string_view text, Range range) {
    const std::uint64_t start = std::min<std::uint64_t>(range.location, text.size());
    return {start, std::min<std::uint64_t>(range.length, text.size() - start)};
}

template <class Walk>
std::size_t walk(std::u16string_view text, std::span<const String> wildcards,
                 WildcardHandler handler, const WildcardSearchOptions& options) {
    const Range range = cutAt(text, options.range);
    Walk hits({detail::wordTextOf(text, queryTermCharacters(), options.withinRuns, wildcards),
               range.location, range.end(), wildcards, options.comparison, options.minCharacters});
    std::size_t calls = 0;
    for (Range hit; (hit = hits.next()).isFound();) {
        ++calls;
        if (!handler(hit)) break;
    }
    return calls;
}

NearestWildcardOptions nearest(const WildcardSearchOptions& options, Direction direction) {
    return {options.comparison, options.minCharacters, direction, false, options.withinRuns};
}

}  // namespace

Range FindWildcardInCharacters(std::u16string_view text, Range range, std::u16string_view wildcard,
                               const FindWildcardOptions& options) {
    range = cutAt(text, range);
    if (range.length == 0 || wildcard.empty()) return Range::none();
    const WordText words = wordText(text, options.withinRuns, options.termCharacters);
    const detail::WildcardPattern pattern(wildcard, options.comparison, options.minCharacters);
    if (options.acceptStar && pattern.isLoneStar())
        return findLoneStar(words, range.location, range.end(), options.direction,
                            options.starIsWord);
    return pattern.find(words, range.location, range.end(),
                        {.direction = options.direction, .anchored = options.anchored});
}

Range FindWildcardStringInCharacters(std::u16string_view text, Range range,
                                     std::u16string_view wildcard,
                                     const FindWildcardStringOptions& options) {
    range = cutAt(text, range);
    if (wildcard.empty()) return Range::none();
    const WildcardTerm term(wildcard, options.comparison, options.minCharacters,
                            options.withinRuns);
    return term.find(wordText(text, options.withinRuns, options.termCharacters), range.location,
                     range.end(), {options.direction, options.acceptStar});
}

Range rangeOfWildcard(std::u16string_view text, Range range, std::span<const String> wildcards,
                      const NearestWildcardOptions& options) {
    range = cutAt(text, range);
    std::uint64_t start = range.location, end = range.end();
    Range best = Range::none();
    for (const String& wildcard : wildcards) {
        if (start >= end) break;
        const WildcardTerm term(wildcard, options.comparison, options.minCharacters,
                                options.withinRuns);
        const Range hit = term.find(wordText(text, options.withinRuns), start, end,
                                    {.direction = options.direction});
        if (!hit.isFound()) continue;
        best = hit;
        if (options.firstHit) break;
        // A hit bounds what the next wildcard is sought in: only a nearer one can replace it.
        (options.direction == Direction::Backward ? start : end) =
            options.direction == Direction::Backward ? hit.end() : hit.location;
    }
    return best;
}

bool containsAnyWildcard(std::u16string_view text, std::span<const String> wildcards,
                         const WildcardSearchOptions& options) {
    return rangeOfWildcard(text, options.range, wildcards,
                           {.comparison = options.comparison,
                            .minCharacters = options.minCharacters,
                            .firstHit = true,
                            .withinRuns = options.withinRuns})
        .isFound();
}

Range findNextWildcard(std::u16string_view text, std::span<const String> wildcards,
                       const WildcardSearchOptions& options) {
    return rangeOfWildcard(text, options.range, wildcards, nearest(options, Direction::Forward));
}

Range findPreviousWildcard(std::u16string_view text, std::span<const String> wildcards,
                           const WildcardSearchOptions& options) {
    return rangeOfWildcard(text, options.range, wildcards, nearest(options, Direction::Backward));
}

Range rangeOfWildcard(std::u16string_view text, std::u16string_view wildcard,
                      const WildcardSearchOptions& options) {
    const Range range = cutAt(text, options.range);
    return FindWildcardStringInCharacters(text, range, wildcard,
                                          {.comparison = options.comparison,
                                           .minCharacters = options.minCharacters,
                                           .withinRuns = options.withinRuns});
}

Range rangeOfWildcardWords(std::u16string_view text, std::span<const String> words,
                           const WildcardSearchOptions& options) {
    if (words.empty()) return Range::none();
    std::u16string phrase;
    for (const String& word : words) {
        // The quotes separate words and are no hyphens: so nothing here is also sought as one
        // joined word.
        phrase += phrase.empty() ? u'"' : u' ';
        phrase += word.view();
    }
    return rangeOfWildcard(text, phrase + u'"', options);
}

std::size_t forEachWildcard(std::u16string_view text, std::span<const String> wildcards,
                            WildcardHandler handler, const WildcardSearchOptions& options) {
    return walk<detail::WildcardWalk>(text, wildcards, handler, options);
}

std::size_t forEachWildcardBackwards(std::u16string_view text, std::span<const String> wildcards,
                                     WildcardHandler handler,
                                     const WildcardSearchOptions& options) {
    return walk<detail::WildcardWalkBack>(text, wildcards, handler, options);
}

std::optional<std::set<String>> findStringsMatchingWildcards(std::u16string_view text,
                                                             std::span<const String> wildcards,
                                                             const WildcardSearchOptions& options) {
    if (text.empty() || wildcards.empty()) return std::nullopt;
    std::set<String> found;
    std::u16string match;
    forEachWildcard(
        text, wildcards,
        [&](Range hit) {
            match = text.substr(hit.location, hit.length);
            if (isCaseInsensitive(options.comparison)) lowercase(match);
            found.insert(String(match));
            return true;
        },
        options);
    return found;
}

}  // namespace velmo
