#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <span>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/query/Wildcards.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo {

// Wildcards of the Unix language in a text, word by word. A word is a run of units of
// queryTermCharacters(), and what is found is always the whole word, not only the part that
// the pattern spells out. A wildcard of several words, as wordsUsingWildcardSeparation()
// cuts it, is found as a phrase: the words one after the other, whatever stands between
// them that is no term unit. If its words are joined by hyphens, they are also found
// written as one.
//
//     rangeOfWildcard(u"the database", u"data*");                  // {4, 8}
//     rangeOfWildcard(u"Hello, world", u"h?llo w*");               // {0, 12}
//     rangeOfWildcard(u"send email", u"e-mail");                   // {5, 5}
//
// Scripts without spaces. With withinRuns, which is ours, each character of Han, Kana, Thai, Lao,
// Burmese and Khmer is a word of its own, a mark being one with what it stands on. A wildcard may
// match several such words in a row; of what ends first, the shortest is found, which a star at
// its end does not make longer. Words of these scripts are not sought by resemblance.
//
//     const String text = u"\u79C1\u306F\u6771\u4EAC\u3078";
//     rangeOfWildcard(text, u"\u6771*", {.withinRuns = true});              // {2, 1}
//     rangeOfWildcard(text, u"\u79C1*\u4EAC", {.withinRuns = true});        // {0, 4}
//
// Malformed and unusable wildcards find nothing. Ranges count UTF-16 units and are cut at
// the end of the text; a search that begins inside a word does not take the rest of it for
// a word, but the end of the range ends one. A call takes time in proportion to the text,
// unless many stars make it pattern times text, and allocates nothing for a single word of
// up to 256 units. Any thread may search.

/// How FindWildcardInCharacters() looks.
struct FindWildcardOptions {
    WildcardComparison comparison = DefaultComparison;  ///< what is looked past
    /// A wildcard with a star needs so many plain units and sets.
    std::size_t minCharacters = 1;
    bool anchored = false;                     ///< only the first word that is met is looked at
    Direction direction = Direction::Forward;  ///< the last word that matches, and not the first
    bool acceptStar = false;                   ///< a lone * finds something: the whole range, or
    bool starIsWord = false;  ///< the first word; backwards, the first unit, if it begins one
    const CharacterSetRep* termCharacters = nullptr;  ///< null is queryTermCharacters()
    bool withinRuns = false;                          ///< see "Scripts without spaces" above
};

/// The first word in a range that matches a pattern for one word. A pattern without star and
/// set is compared from the start of a word on, and backwards up to the end of one, so that
/// it may hold units that are no term units; and it must not break off inside a word.
///
/// Whether the range begins inside a word is asked of the unit before it; backwards as well,
/// so that a range that does leaves out a word at its very end.
[[nodiscard]] VELMO_API Range FindWildcardInCharacters(std::u16string_view text, Range range,
                                                       std::u16string_view wildcard,
                                                       const FindWildcardOptions& options = {});

/// How FindWildcardStringInCharacters() looks; see FindWildcardOptions.
struct FindWildcardStringOptions {
    // The same as those of FindWildcardOptions.
    WildcardComparison comparison = DefaultComparison;
    std::size_t minCharacters = 1;
    Direction direction = Direction::Forward;
    bool acceptStar = false;  ///< in a phrase, a lone * is any word in any case
    const CharacterSetRep* termCharacters = nullptr;
    bool withinRuns = false;
};

/// The same for a pattern of one word or several. Backwards, a phrase is looked for from its
/// first word on, and the words after it must end before the last place that was tried.
[[nodiscard]] VELMO_API Range
FindWildcardStringInCharacters(std::u16string_view text, Range range, std::u16string_view wildcard,
                               const FindWildcardStringOptions& options = {});

/// How the nearest hit of several wildcards is looked for.
struct NearestWildcardOptions {
    // The same as those of FindWildcardOptions.
    WildcardComparison comparison = DefaultComparison;
    std::size_t minCharacters = 1;
    Direction direction = Direction::Forward;
    bool firstHit = false;  ///< any hit will do: that of the first wildcard that has one
    bool withinRuns = false;
};

/// The nearest hit of any wildcard in a range. Each hit shortens the stretch for the
/// wildcards after it in the list: they count only if they lie wholly before it (or after
/// it, going backwards). A lone * finds nothing.
[[nodiscard]] VELMO_API Range rangeOfWildcard(std::u16string_view text, Range range,
                                              std::span<const String> wildcards,
                                              const NearestWildcardOptions& options);

/// How wildcards are compared, and where.
struct WildcardSearchOptions {
    WildcardComparison comparison = DefaultComparison;  ///< what is looked past
    std::size_t minCharacters = 1;                      ///< see FindWildcardOptions
    Range range = {0, NotFound};                        ///< in units of the text
    bool withinRuns = false;                            ///< see "Scripts without spaces" above
};

/// Whether any of the wildcards occurs in the range.
[[nodiscard]] VELMO_API bool containsAnyWildcard(std::u16string_view text,
                                                 std::span<const String> wildcards,
                                                 const WildcardSearchOptions& options = {});
/// The nearest hit from the start of the range on, or from its end back.
[[nodiscard]] VELMO_API Range findNextWildcard(std::u16string_view text,
                                               std::span<const String> wildcards,
                                               const WildcardSearchOptions& options = {});
[[nodiscard]] VELMO_API Range findPreviousWildcard(std::u16string_view text,
                                                   std::span<const String> wildcards,
                                                   const WildcardSearchOptions& options = {});
/// The same, wildcards first.
[[nodiscard]] inline Range rangeOfNextWildcard(std::span<const String> wildcards,
                                               std::u16string_view text,
                                               const WildcardSearchOptions& options = {}) {
    return findNextWildcard(text, wildcards, options);
}
[[nodiscard]] inline Range rangeOfPreviousWildcard(std::span<const String> wildcards,
                                                   std::u16string_view text,
                                                   const WildcardSearchOptions& options = {}) {
    return findPreviousWildcard(text, wildcards, options);
}

/// The first hit of one wildcard.
[[nodiscard]] VELMO_API Range rangeOfWildcard(std::u16string_view text,
                                              std::u16string_view wildcard,
                                              const WildcardSearchOptions& options = {});
/// The first hit of the phrase of these words, set in quotes. The quotes part nothing from a
/// single word: as no word begins with one, it is not found.
[[nodiscard]] VELMO_API Range rangeOfWildcardWords(std::u16string_view text,
                                                   std::span<const String> words,
                                                   const WildcardSearchOptions& options = {});

/// Takes a hit; false ends the search.
using WildcardHandler = FunctionRef<bool(Range hit)>;
/// Calls the handler for the hits that findNextWildcard() gives when each call goes on
/// after the hit before, and tells how many calls there were. A wildcard is prepared once
/// and no stretch is searched for it twice, however many hits the others have.
///
///     std::vector<String> wildcards = {u"data*", u"*base"};
///     forEachWildcard(text, wildcards, [&](Range hit) {
///         print(text.substr(hit.location, hit.length));
///         return true;
///     });
VELMO_API std::size_t forEachWildcard(std::u16string_view text, std::span<const String> wildcards,
                                      WildcardHandler handler,
                                      const WildcardSearchOptions& options = {});
/// The same from the end of the range back: the hits of findPreviousWildcard().
VELMO_API std::size_t forEachWildcardBackwards(std::u16string_view text,
                                               std::span<const String> wildcards,
                                               WildcardHandler handler,
                                               const WildcardSearchOptions& options = {});

/// The distinct texts that match; without regard to case, in lower case. Nothing if there is
/// no wildcard or the text is empty.
[[nodiscard]] VELMO_API std::optional<std::set<String>> findStringsMatchingWildcards(
    std::u16string_view text, std::span<const String> wildcards,
    const WildcardSearchOptions& options = {});

}  // namespace velmo
