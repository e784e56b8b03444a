#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>
#include <velmocore/query/QueryTerms.h>
#include <velmocore/query/Wildcards.h>

namespace velmo {

// Where the terms of a query occur in a text, as people want to read it: one summary of the
// sentences that hold a hit, or a list of excerpts. A boundary is what ends a sentence
// (defaultSentenceSeparators()) or, if paragraphs is set, a line (defaultLineSeparators()).
// Term units are those of queryTermCharacters(). All lengths and limits count UTF-16 units.
// The wildcards are those of findNextWildcard(); plusWildcards() of a query gives them. The
// forms for a string look for it as it is, inside words too; with regard to case unless the
// comparison is CaseInsensitive or Insensitive.
//
//     auto wildcards = *plusWildcards(u"tea OR cof*");
//     const String text = u"Tea, hot. It rained.\nMore coffee came.";
//     assembleOccurrencesOfWildcards(text, wildcards);    // Tea, hot More coffee came
//     for (const Occurrence& hit : getOccurrencesOfWildcards(text, wildcards))
//         print(hit.line + 1, hit.string);
//
// Time is in proportion to the text; with a limit the search ends where the summary is full.
// Any thread may call these.

/// How a summary is made.
struct AssemblyOptions {
    /// What is looked past, of case and diacritics; of Fuzzy see FindWildcardOptions.
    WildcardComparison comparison = DefaultComparison;
    std::size_t minCharacters = 1;  ///< see FindWildcardOptions
    bool paragraphs = false;        ///< whole lines instead of sentences
    /// Sentences of nothing but the hit, too.
    bool singleWords = false;
    /// No hit gives the absent string, and not the beginning of the text.
    bool onlyOccurrences = false;
    String separator = {};  ///< between excerpts; absent is a space
    /// The length that a summary may have, without the "..." at its end; 0 is no limit.
    std::size_t ellipsizeAfterNCharacters = 0;
    /// The same where text has been left out between the two, as u" ... "; absent is no
    /// difference.
    String gapSeparator = {};
    /// See OccurrenceOptions.
    bool strictSentenceEnds = false;
    /// A sentence that does not fit is not cut between the halves of a pair.
    bool keepsPairs = false;
    /// Each character of a script without spaces is a word; see QueryOptions. Sentences also end
    /// with the punctuation of these scripts, and none is cut inside a character. A query tells of
    /// its terms by itself.
    bool withinRuns = false;
};

/// The sentences or paragraphs with a hit, each once. One that does not fit is cut such that
/// its hit can still be read. Where nothing is found, or no longer text is wanted than there
/// is, it is the text, shortened by stringByEllipsizingAfterNCharacters(). Absent for an
/// empty text.
[[nodiscard]] VELMO_API String assembleOccurrencesOfWildcards(const String& text,
                                                              std::span<const String> wildcards,
                                                              const AssemblyOptions& options = {});
/// The same for hits that have been found before, in their order.
[[nodiscard]] VELMO_API String assembleOccurrencesOfHits(const String& text,
                                                         std::span<const Range> hits,
                                                         const AssemblyOptions& options = {});
/// The same for what made a query true: see hitsOfQueryTerms(). It is taken as it was parsed,
/// and without wildcards the comparison tells of case only.
[[nodiscard]] VELMO_API String assembleOccurrencesOfQueryTerms(const String& text,
                                                               const QueryTerms& terms,
                                                               const AssemblyOptions& options = {});
/// The same for a string wherever it stands.
[[nodiscard]] VELMO_API String assembleOccurrencesOfString(const String& text,
                                                           std::u16string_view sought,
                                                           const AssemblyOptions& options = {});

/// A piece of a text that stands in a summary of it.
struct SummaryPart {
    Range range;            ///< in the text
    std::size_t start = 0;  ///< in the summary
};

/// A summary that knows where its parts come from, so that hits can be shown in it.
struct Summary {
    String string;                   ///< the text of it
    std::vector<SummaryPart> parts;  ///< in their order; what is between them are separators
};

/// What assembleOccurrencesOfWildcards() and assembleOccurrencesOfHits() give, with the places.
/// These operations are ours.
[[nodiscard]] VELMO_API Summary summaryOfWildcards(const String& text,
                                                   std::span<const String> wildcards,
                                                   const AssemblyOptions& options = {});
[[nodiscard]] VELMO_API Summary summaryOfHits(const String& text, std::span<const Range> hits,
                                              const AssemblyOptions& options = {});

/// Where hits of the text stand in a summary of it, each that stands there as a whole; they must be
/// in their order. This operation is ours.
[[nodiscard]] VELMO_API std::vector<Range> hitsInSummary(const Summary& summary,
                                                         std::span<const Range> hits);

/// An excerpt with one hit or more.
struct Occurrence {
    Range range;           ///< in the text
    std::size_t line = 0;  ///< of its start, from 0; CR with LF after it is one line end
    /// What stands in the range, with "..." at an end that crossed a boundary.
    String string;
};

/// How excerpts are cut.
struct OccurrenceOptions {
    WildcardComparison comparison = DefaultComparison;  ///< see AssemblyOptions
    std::size_t minCharacters = 1;                      ///< see FindWildcardOptions
    bool paragraphs = false;                            ///< whole lines instead of sentences
    /// An excerpt goes on across boundaries until so many words stand on each side of the
    /// hit.
    std::size_t minEnclosingWords = 0;
    /// A . or ! or ? ends a sentence only before white space or the end of the text, so that
    /// 2.4 and example.org stay whole.
    bool strictSentenceEnds = false;
    bool withinRuns = false;  ///< see AssemblyOptions
};

/// The sentences or paragraphs with a hit, in their order. All hits in one excerpt make one
/// record. Empty if there is none.
[[nodiscard]] VELMO_API std::vector<Occurrence> getOccurrencesOfWildcards(
    std::u16string_view text, std::span<const String> wildcards,
    const OccurrenceOptions& options = {});
/// The same for hits that have been found before, in their order, and for what made a query
/// true, as with the summaries.
[[nodiscard]] VELMO_API std::vector<Occurrence> getOccurrencesOfHits(
    std::u16string_view text, std::span<const Range> hits, const OccurrenceOptions& options = {});
[[nodiscard]] VELMO_API std::vector<Occurrence> getOccurrencesOfQueryTerms(
    std::u16string_view text, const QueryTerms& terms, const OccurrenceOptions& options = {});
/// The same for a string wherever it stands.
[[nodiscard]] VELMO_API std::vector<Occurrence> getOccurrencesOfString(
    std::u16string_view text, std::u16string_view sought, const OccurrenceOptions& options = {});

}  // namespace velmo
