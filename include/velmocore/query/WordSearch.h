#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/query/Wildcards.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo {

// Words in a text. A term unit is one of queryTermCharacters(); a whole word is one that no
// term unit adjoins. The edges of the searched range end words too: no unit outside it is
// looked at. Without regard to case, upper-case forms are compared, unit by unit. All
// locations and lengths count UTF-16 units; ranges are cut at the end of the text.
//
//     rangeOfWord(u"concatenate a cat", u"cat", Case::Insensitive);                    // {14, 3}
//     countAnyWord(u"one two one", std::vector<String>{u"one", u"two"}, Case::Sensitive);   // 3
//     findNextWord(u"one two one", u"one", {1, 10});                                         // {8, 3}
//
// An empty or absent text or word gives no hit, but see FindWordInString() for a *. Any thread may
// search.

/// How FindWordInString() looks.
struct FindWordOptions {
    Case letterCase = DefaultCase;                    ///< without regard to case
    Direction direction = Direction::Forward;         ///< the last occurrence, and not the first
    bool wholeWord = true;                            ///< else inside of words too
    const CharacterSetRep* termCharacters = nullptr;  ///< null is queryTermCharacters()
    /// Each character of a script without spaces is a word; see QueryOptions.
    bool withinRuns = false;
};

/// The location of a word in a range, or NotFound, as for an empty word. A word that begins
/// with * counts as found at the start of the range, whatever stands there.
[[nodiscard]] VELMO_API std::size_t FindWordInString(std::u16string_view text, Range range,
                                                     std::u16string_view word,
                                                     const FindWordOptions& options = {});

/// How FindNonExactPhraseInString() looks.
struct FindPhraseOptions {
    Case letterCase = DefaultCase;             ///< without regard to case
    Direction direction = Direction::Forward;  ///< the last occurrence, and not the first
    /// Whether the words after the first must be whole; the first is in any case.
    bool exact = false;
    const CharacterSetRep* termCharacters = nullptr;  ///< null is queryTermCharacters()
    /// Each character of a script without spaces is a word; see QueryOptions.
    bool withinRuns = false;
};

/// Several words in a row, with any units between them that are no term units, but at least
/// one. The words after the first must end before the end of the range: one that ends with
/// it is not found.
[[nodiscard]] VELMO_API Range FindNonExactPhraseInString(std::u16string_view text, Range range,
                                                         std::span<const String> words,
                                                         const FindPhraseOptions& options = {});

/// The position after the n-th word from a position on, a word being a run of term units;
/// end if it lies further on.
[[nodiscard]] VELMO_API std::size_t NWordsForward(std::size_t n, std::u16string_view text,
                                                  const CharacterSetRep& termCharacters,
                                                  std::size_t position, std::size_t end);
/// The unit before the n-th word back from a position; start if it lies further back.
[[nodiscard]] VELMO_API std::size_t NWordsBack(std::size_t n, std::u16string_view text,
                                               const CharacterSetRep& termCharacters,
                                               std::size_t position, std::size_t start);

/// The first whole word in a text, or no range.
[[nodiscard]] VELMO_API Range rangeOfWord(std::u16string_view text, std::u16string_view word,
                                          Case letterCase);
/// How often it occurs without overlaps.
[[nodiscard]] VELMO_API std::size_t countWord(std::u16string_view text, std::u16string_view word,
                                              Case letterCase);
/// The range of the first of the words that occurs at all: the first in the list, not in the
/// text.
[[nodiscard]] VELMO_API Range rangeOfAnyWord(std::u16string_view text,
                                             std::span<const String> words, Case letterCase);
/// The sum of the counts of all words.
[[nodiscard]] VELMO_API std::size_t countAnyWord(std::u16string_view text,
                                                 std::span<const String> words, Case letterCase);

/// How words and terms are looked for in a range.
struct TermSearchOptions {
    Case letterCase = DefaultCase;  ///< without regard to case
    bool anchored = true;           ///< whole words only
    /// A term of several words is looked for as it is written, and not word by word.
    bool exactPhrase = false;
    bool withinRuns = false;  ///< see FindWordOptions
};

/// The first or the last occurrence of a word in a range, which must lie inside the text and
/// not be empty; else there is none.
[[nodiscard]] VELMO_API Range findNextWord(std::u16string_view text, std::u16string_view word,
                                           Range range, const TermSearchOptions& options = {});
[[nodiscard]] VELMO_API Range findPreviousWord(std::u16string_view text, std::u16string_view word,
                                               Range range, const TermSearchOptions& options = {});

// The nearest occurrence of any term in a range: the first, or for the previous term the
// last one. Where two terms begin at one place, the earlier of the list counts. A term of
// several words is found with anything but term units between them, unless exactPhrase is
// set; see FindNonExactPhraseInString().
//
//     std::vector<String> terms = {u"new york", u"boston"};
//     findNextQueryTerm(terms, u"Boston, New   York", {0, 18}, {.letterCase = Case::Insensitive});
//     // {0, 6}; from 6 on it would be {8, 10} if anything stood after it

[[nodiscard]] VELMO_API Range findNextQueryTerm(std::span<const String> terms,
                                                std::u16string_view text, Range range,
                                                const TermSearchOptions& options = {});
[[nodiscard]] VELMO_API Range findPreviousQueryTerm(std::span<const String> terms,
                                                    std::u16string_view text, Range range,
                                                    const TermSearchOptions& options = {});

// The same for those who walk through a text: terms that do not occur in the range, and so
// will not further on, are taken out of the list. The list must not be shared meanwhile.

VELMO_API Range findNextMutableQueryTerm(std::vector<String>& terms, std::u16string_view text,
                                         Range range, const TermSearchOptions& options = {});
VELMO_API Range findPreviousMutableQueryTerm(std::vector<String>& terms, std::u16string_view text,
                                             Range range, const TermSearchOptions& options = {});

}  // namespace velmo
