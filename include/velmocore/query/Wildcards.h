#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>
#include <velmocore/words/Words.h>

namespace velmo {

// Wildcards: patterns for words. There are two languages, and no escapes in either.
//
//   *        any units, also none
//   ?        exactly one unit
//   [abx-z]  exactly one unit of a set, with ranges; [^abc] one that is not in it. A | in
//            it parts members and means nothing. Only in the Unix language: in the plain
//            one, brackets stand for themselves.
//
// Everything else stands for itself. A pattern is matched against a whole string, unit by
// unit, in time of at most pattern times string, whatever the number of stars.
//
//     isLikeWildcard(u"database", u"data*");               // true
//     isLikeUnixWildcard(u"Data", u"[dD]?ta");             // true
//     isCaseInsensitiveLikeWildcard(u"DATA", u"d?ta");     // true
//
// All of these are pure functions; any thread may call them. Where a search looks for
// wildcards in a text, see WildcardSearch.h.

/// The shape of a pattern, as optimizeWildcard() tells it. An element is a plain unit, a ?
/// or a whole set; stars are none.
enum class WildcardType : std::uint32_t {
    Plain = 0,        ///< a plain word
    Marks = 1,        ///< units and at least one ?
    Prefix = 2,       ///< abc*
    Suffix = 3,       ///< *abc
    Infix = 4,        ///< *abc*
    General = 5,      ///< stars in any other way
    GeneralSets = 6,  ///< sets, and stars in any other way than the next three
    PrefixSets = 7,   ///< sets, and one star, at the end
    SuffixSets = 8,   ///< sets, and one star, at the start
    Sets = 9,         ///< sets and no star
    Unusable = 10,    ///< malformed, or too little to search for
};

/// How units are compared, and whether plain words are looked for by resemblance. Fuzzy is a
/// bit that goes with each of the others.
///
///     const auto both = WildcardComparison::CaseInsensitive | WildcardComparison::Fuzzy;
enum class WildcardComparison : std::uint32_t {
    Exact = 0,                  ///< unit by unit
    CaseInsensitive = 1,        ///< through upperCharsTable()
    DiacriticsInsensitive = 2,  ///< through umlautsCharsTable()
    Insensitive = 3,            ///< to both, through upperUmlautsCharsTable()
    Fuzzy = 4,                  ///< a WildcardType::Plain is compared by its analogy
};
/// Adds the Fuzzy bit to a comparison, or takes a part of one.
constexpr WildcardComparison operator|(WildcardComparison a, WildcardComparison b) {
    return static_cast<WildcardComparison>(static_cast<std::uint32_t>(a) |
                                           static_cast<std::uint32_t>(b));
}
constexpr WildcardComparison operator&(WildcardComparison a, WildcardComparison b) {
    return static_cast<WildcardComparison>(static_cast<std::uint32_t>(a) &
                                           static_cast<std::uint32_t>(b));
}
/// Whether a comparison has that bit, and whether it looks past case.
[[nodiscard]] constexpr bool isFuzzy(WildcardComparison comparison) {
    return (comparison & WildcardComparison::Fuzzy) == WildcardComparison::Fuzzy;
}
[[nodiscard]] constexpr bool isCaseInsensitive(WildcardComparison comparison) {
    return (comparison & WildcardComparison::CaseInsensitive) ==
           WildcardComparison::CaseInsensitive;
}

/// What a comparison says of case alone.
[[nodiscard]] constexpr Case letterCaseOf(WildcardComparison comparison) {
    return isCaseInsensitive(comparison) ? Case::Insensitive : Case::Sensitive;
}

/// How words and wildcards are compared where nothing is said: without regard to case. It is
/// one for queries, searches and excerpts, so that what matches also gives excerpts.
inline constexpr WildcardComparison DefaultComparison = WildcardComparison::CaseInsensitive;
inline constexpr Case DefaultCase = letterCaseOf(DefaultComparison);

// Matching. With a table, each unit of the string goes through it before it is compared; the
// wildcard is taken as it is, so pass one that prepareWildcardUsingUnicharTable() has
// folded. An empty wildcard matches the empty string, and * does too.
//
// What the Unix language makes of odd sets: the lower end of a range is whatever stands
// before the -, so that in [-x] it is the bracket; the upper end may be a ] and the set then
// runs on after it; a set that never ends takes one unit, and matches if it is negated.

[[nodiscard]] VELMO_API bool stringMatchesWildcard(std::u16string_view string,
                                                   std::u16string_view wildcard);
[[nodiscard]] VELMO_API bool stringMatchesWildcardUsingUnicharTable(std::u16string_view string,
                                                                    std::u16string_view wildcard,
                                                                    const ConversionTable& table);
[[nodiscard]] VELMO_API bool stringMatchesUnixWildcard(std::u16string_view string,
                                                       std::u16string_view wildcard);
[[nodiscard]] VELMO_API bool stringMatchesUnixWildcardUsingUnicharTable(
    std::u16string_view string, std::u16string_view wildcard, const ConversionTable& table);

// The same for people: neither an empty string nor an empty wildcard matches, and without
// regard to case both sides go through upperCharsTable().

[[nodiscard]] VELMO_API bool isLikeWildcard(std::u16string_view string,
                                            std::u16string_view wildcard);
[[nodiscard]] VELMO_API bool isCaseInsensitiveLikeWildcard(std::u16string_view string,
                                                           std::u16string_view wildcard);
[[nodiscard]] VELMO_API bool isLikeUnixWildcard(std::u16string_view string,
                                                std::u16string_view wildcard);
[[nodiscard]] VELMO_API bool isCaseInsensitiveLikeUnixWildcard(std::u16string_view string,
                                                               std::u16string_view wildcard);

/// Every unit of the wildcard through the table, in place.
VELMO_API void prepareWildcardUsingUnicharTable(std::u16string& wildcard,
                                                const ConversionTable& table);

/// What optimizeWildcard() finds out.
struct OptimizedWildcard {
    WildcardType type = WildcardType::Unusable;  ///< its shape
    /// The part of the compacted wildcard that a search compares: without the star of a
    /// Prefix, Suffix, Infix, PrefixSets or SuffixSets, else all. None if it is malformed.
    Range core = Range::none();
};

/// Brings a wildcard of the Unix language into the one form that searches take, in place,
/// and tells its shape. Runs of stars become one, | in sets and sets without a member are removed.
/// Unusable is what has a ] outside or a [ inside a set or a set without end, which is left
/// as it is; what has neither a plain unit nor a set; and what has a star but fewer of them
/// than minCharacters.
///
///     std::u16string wildcard = u"**[|a|b]x*";
///     optimizeWildcard(wildcard).core;     // {0, 7}; the type is GeneralSets
///     wildcard;                            // *[ab]x*
VELMO_API OptimizedWildcard optimizeWildcard(std::u16string& wildcard,
                                             std::size_t minCharacters = 1);

/// The type of a wildcard as it is written; Plain for an empty one.
[[nodiscard]] VELMO_API WildcardType wildcardType(std::u16string_view wildcard);
/// The number of elements of a wildcard as it is written, a set without end being one.
[[nodiscard]] VELMO_API std::size_t wildcardLength(std::u16string_view wildcard);

/// The lengths of the strings that an optimized wildcard can match: the number of its
/// elements, and for the longest UnboundedWildcardLength if it holds a star.
[[nodiscard]] VELMO_API std::size_t minWildcardLen(std::u16string_view wildcard);
[[nodiscard]] VELMO_API std::size_t maxWildcardLen(std::u16string_view wildcard);
inline constexpr std::size_t UnboundedWildcardLength = 0x7FFFFFFFFFFFFFFF;

/// The table that a comparison folds through; null if it is exact.
[[nodiscard]] VELMO_API const ConversionTable* unicharTableForWildcardComparison(
    WildcardComparison comparison);
/// Whether folding through conversion does all that folding through table does. False if
/// either is null.
[[nodiscard]] VELMO_API bool isUnicharTablePartOfConversionTable(const ConversionTable* table,
                                                                 const ConversionTable* conversion);

// Words that may contain wildcards: cut as by defaultWordSeparators(), but * ? [ and ]
// belong to words, and a set is not cut by what stands in it.
//
//     wordsUsingWildcardSeparation(u"data* [a-d]ing");     // data*, [a-d]ing
//     minWildcardLen(u"a?[bc]*");                          // 3
//     wildcardType(u"abc*") == WildcardType::Prefix;       // true

[[nodiscard]] VELMO_API const CharacterSetRep& defaultWildcardSeparators();
[[nodiscard]] VELMO_API std::vector<String> wordsUsingWildcardSeparation(const String& text);
[[nodiscard]] VELMO_API SeparatedWords separatedWildcardWords(const String& text);
[[nodiscard]] VELMO_API std::size_t numberOfWordsUsingWildcardSeparation(std::u16string_view text);

// All tables and sets are made at first use, on whatever thread. A program may have them
// made while it starts, so that no later call pays for it.

VELMO_API void initWildcardSeparators();
VELMO_API void initWildcardTables();
/// All that scanning, folding and searching need: initSeparators(), initWildcardSeparators()
/// and initWildcardTables(), in this order, and the standard sets.
VELMO_API void initSeparatorsAndTables();

}  // namespace velmo
