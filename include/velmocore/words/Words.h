#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo {

// A word is a stretch of units between separators; one that is too short is dropped. What
// separates is a set; null stands for defaultWordSeparators(). All locations and lengths
// count UTF-16 units. An empty text has no words.
//
//     numberOfWordsUsingDefaultSeparation(u"don't");              // 2
//     wordsUsingDefaultSeparation(u"A well-known fact", 3);       // well, known, fact
//
// Time is linear in the text. Any thread may scan; all state is on the stack.

/// How a text is cut into words.
struct WordOptions {
    const CharacterSetRep* separators = nullptr;  ///< null is defaultWordSeparators()
    bool withSeparators = false;                  ///< each run of separators is an entry of its own
    std::size_t minLen = 1;                       ///< shorter words are dropped; 0 means 1
    /// A [ that is no separator takes all up to the next ] into its word, so that a
    /// wildcard's set of characters is not cut.
    bool wildcard = false;
};

/// The bit of a length that marks an entry as a run of separators. It leaves 31 bits for
/// the length.
inline constexpr std::uint64_t SeparatorMark = 1u << 31;
/// Whether an entry is a run of separators, and the range of any entry.
[[nodiscard]] constexpr bool isSeparatorEntry(Range entry) {
    return (entry.length & SeparatorMark) != 0;
}
[[nodiscard]] constexpr Range withoutSeparatorMark(Range entry) {
    return {entry.location, entry.length & ~SeparatorMark};
}

/// The entries in their order; the length of a run of separators carries the SeparatorMark.
[[nodiscard]] VELMO_API std::vector<Range> wordsOfCharacters(std::u16string_view characters,
                                                             const WordOptions& options = {});
/// How many they are.
[[nodiscard]] VELMO_API std::size_t numberOfWordsOfCharacters(std::u16string_view characters,
                                                              const WordOptions& options = {});

/// Takes the whole text and the range of one word in it.
using WordHandler = FunctionRef<void(std::u16string_view text, Range word)>;
/// The same on a private copy of the text, which the handler may change.
using MutableWordHandler = FunctionRef<void(std::span<char16_t> text, Range word)>;

/// What a handler is called for.
struct WordParseOptions {
    const CharacterSetRep* separators = nullptr;  ///< null is defaultWordSeparators()
    std::size_t minLen = 1;                       ///< 0 means 1
    bool wildcard = false;                        ///< see WordOptions
};

/// Calls the handler for each word and gives the number of calls: 0 if there is no handler
/// or the text is shorter than the minimum. An exception out of the handler passes through.
///
///     std::set<std::u16string_view> distinct;
///     parseWordsWithHandler(u"a b a", [&](std::u16string_view units, Range word) {
///         distinct.insert(units.substr(word.location, word.length));
///     });
///     distinct.size();    // 2
VELMO_API std::size_t parseWordsWithHandler(std::u16string_view text, WordHandler handler,
                                            const WordParseOptions& options = {});

/// The same on a copy that lives until the last call. What a handler changes is seen by the
/// calls after it, but does not change where the words stand.
VELMO_API std::size_t parseMutableWordsWithHandler(std::u16string_view text,
                                                   MutableWordHandler handler,
                                                   const WordParseOptions& options = {});

/// The words as strings; with separators, so are the runs of them. A text that is one word
/// comes back as it is.
[[nodiscard]] VELMO_API std::vector<String> wordsUsingSeparators(const String& text,
                                                                 const WordOptions& options = {});

/// The same in another collection, such as a std::set, or a std::multiset that counts.
///
///     wordsUsingSeparators<std::set<String>>(u"a b a").size();     // 2
template <class Collection>
[[nodiscard]] Collection wordsUsingSeparators(const String& text, const WordOptions& options = {}) {
    Collection words;
    for (String& word : wordsUsingSeparators(text, options))
        words.insert(words.end(), std::move(word));
    return words;
}

/// Words, and whether a reader sees them as one term.
struct SeparatedWords {
    std::vector<String> words;  ///< as wordsUsingSeparators() gives them
    /// There is more than one word, and they are single letters joined by full stops (U.S.A.)
    /// or are joined by hyphens only (well-known).
    bool hyphenated = false;
};
/// Both from one scan.
[[nodiscard]] VELMO_API SeparatedWords separatedWords(const String& text,
                                                      const WordOptions& options = {});

/// Cuts at defaultWordSeparators(), which are left out.
[[nodiscard]] VELMO_API std::vector<String> wordsUsingDefaultSeparation(const String& text,
                                                                        std::size_t minLen = 1);
/// Cuts at white space only.
[[nodiscard]] VELMO_API std::vector<String> wordsUsingWhiteSeparation(const String& text,
                                                                      std::size_t minLen = 1);

// Counts, which make no strings.

[[nodiscard]] VELMO_API std::size_t numberOfWordsUsingSeparators(std::u16string_view text,
                                                                 const CharacterSetRep* separators,
                                                                 std::size_t minLen = 1,
                                                                 bool wildcard = false);
[[nodiscard]] VELMO_API std::size_t numberOfWordsUsingDefaultSeparation(std::u16string_view text,
                                                                        std::size_t minLen = 1);
/// The words of a part of the text, whose edges end words. The range is cut at the end of
/// the text; one that begins there, or no range, has no words.
[[nodiscard]] VELMO_API std::size_t numberOfWordsInRange(
    std::u16string_view text, Range range, const CharacterSetRep* separators = nullptr,
    std::size_t minLen = 1);

}  // namespace velmo
