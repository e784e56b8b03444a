// The nearest occurrence of any of several terms.
// The terms are sought one after the other; going forward, each only where it can still beat the
// best hit so far.
#include <algorithm>

#include <velmocore/query/WordSearch.h>
#include <velmocore/words/Words.h>

namespace velmo {
namespace {

/// A direction with what follows from it.
struct Way {
    Direction direction;

    bool isNearer(Range a, Range b) const {
        return direction == Direction::Backward ? a.location > b.location : a.location < b.location;
    }
    /// What is still to be searched once a hit is known: going forward, only what lies
    /// before it can beat it.
    Range left(Range range, Range best) const {
        if (direction == Direction::Backward || !best.isFound()) return range;
        return {range.location, best.location - range.location};
    }
};

Range findTerm(const String& term, std::u16string_view text, Range range, Way way,
               const TermSearchOptions& options) {
    // A star alone would be found everywhere, and hide what the other terms find.
    if (term.isEmpty() || term.length() > range.length || term == u"*") return Range::none();
    if (!options.exactPhrase && term.length() >= 3) {
        const std::vector<String> words = wordsUsingDefaultSeparation(term);
        if (words.size() > 1)
            return FindNonExactPhraseInString(text, range, words,
                                              {.letterCase = options.letterCase,
                                               .direction = way.direction,
                                               .exact = options.anchored,
                                               .withinRuns = options.withinRuns});
    }
    const std::uint64_t location = FindWordInString(text, range, term,
                                                    {.letterCase = options.letterCase,
                                                     .direction = way.direction,
                                                     .wholeWord = options.anchored,
                                                     .withinRuns = options.withinRuns});
    return location == NotFound ? Range::none() : Range{location, term.length()};
}

struct Nearest {
    Range range = Range::none();
    std::size_t missed = 0;  ///< so many terms, from the first on, do not occur in the range
};

Nearest nearestTerm(std::span<const String> terms, std::u16string_view text, Range range, Way way,
                    const TermSearchOptions& options) {
    Nearest best;
    if (range.location >= text.size()) return best;
    range.length = std::min<std::uint64_t>(range.length, text.size() - range.location);
    for (const String& term : terms) {
        const Range left = way.left(range, best.range);
        const Range hit = findTerm(term, text, left, way, options);
        // Once there is a hit, a miss proves nothing.
        if (!best.range.isFound() && !hit.isFound())
            ++best.missed;
        else if (!best.range.isFound() || (hit.isFound() && way.isNearer(hit, best.range)))
            best.range = hit;
    }
    return best;
}

Range nearestTerm(std::vector<String>& terms, std::u16string_view text, Range range, Way way,
                  const TermSearchOptions& options) {
    const Nearest best = nearestTerm(std::span<const String>(terms), text, range, way, options);
    // Whoever searches on in the same direction need not look for these again.
    terms.erase(terms.begin(), terms.begin() + static_cast<std::ptrdiff_t>(best.missed));
    return best.range;
}

}  // namespace

Range findNextQueryTerm(std::span<const String> terms, std::u16string_view text, Range range,
                        const TermSearchOptions& options) {
    return nearestTerm(terms, text, range, Way{Direction::Forward}, options).range;
}

Range findPreviousQueryTerm(std::span<const String> terms, std::u16string_view text, Range range,
                            const TermSearchOptions& options) {
    return nearestTerm(terms, text, range, Way{Direction::Backward}, options).range;
}

Range findNextMutableQueryTerm(std::vector<String>& terms, std::u16string_view text, Range range,
                               const TermSearchOptions& options) {
    return nearestTerm(terms, text, range, Way{Direction::Forward}, options);
}

Range findPreviousMutableQueryTerm(std::vector<String>& terms, std::u16string_view text,
                                   Range range, const TermSearchOptions& options) {
    return nearestTerm(terms, text, range, Way{Direction::Backward}, options);
}

}  // namespace velmo
