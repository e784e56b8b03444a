// What excerpts are made of: the hits, and where the sentences around them end.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>
#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/query/QueryHits.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/words/Separators.h>

#include "query/WildcardWalk.h"
#include "text/PatternScan.h"

namespace velmo::detail {

/// Finds any of several wildcards.
class WildcardHits {
public:
    template <class Options>
    WildcardHits(std::u16string_view text, std::span<const String> wildcards,
                 const Options& options)
        : walk_({.text = wordTextOf(text, queryTermCharacters(), options.withinRuns, wildcards),
                 .start = 0,
                 .end = text.size(),
                 .wildcards = wildcards,
                 .comparison = options.comparison,
                 .minCharacters = options.minCharacters}) {}

    /// The first hit from a position on. Positions must not go back.
    Range next(std::uint64_t from) {
        walk_.skipTo(from);
        return walk_.next();
    }

private:
    WildcardWalk walk_;
};

/// Finds a string wherever it stands.
class StringHits {
public:
    StringHits(std::u16string_view text, std::u16string_view sought, WildcardComparison comparison)
        : text_(text), sought_(sought), letterCase_(letterCaseOf(comparison)) {}

    Range next(std::uint64_t from) const {
        const std::uint64_t found = withFold(letterCase_, [&](const auto& fold) {
            return firstOccurrence(text_.substr(from), sought_, fold);
        });
        return found == NotFound ? Range::none() : Range{from + found, sought_.size()};
    }

private:
    std::u16string_view text_, sought_;
    Case letterCase_;
};

/// Gives hits that are known already.
class KnownHits {
public:
    explicit KnownHits(std::span<const Range> hits) : hits_(hits) {}

    Range next(std::uint64_t from) {
        // Hits within a sentence that was shown are passed over, as the other searches do.
        while (!hits_.empty() && hits_.front().location < from) hits_ = hits_.subspan(1);
        return hits_.empty() ? Range::none() : hits_.front();
    }

private:
    std::span<const Range> hits_;
};

/// What made a query true.
inline std::vector<Range> hitsOf(std::u16string_view text, const QueryTerms& terms,
                                 WildcardComparison comparison) {
    return terms.hasWildcards() ? hitsOfQueryTerms(text, terms, comparison)
                                : hitsOfQueryTerms(text, terms, letterCaseOf(comparison));
}

/// A text as excerpts see it.
struct ExcerptUnits {
    std::u16string_view text;
    WordText words;
    const CharacterSetRep& boundaries;

    bool isStrict;
    const CharacterSetRep& white = whiteCharacterSetRep();

    template <class Options>
    ExcerptUnits(std::u16string_view units, const Options& options)
        : text(units),
          words{units, queryTermCharacters(), options.withinRuns ? &unspacedScripts() : nullptr},
          boundaries(options.paragraphs ? defaultLineSeparators()
                     : words.unspaced   ? words.unspaced->sentenceEnds
                                        : defaultSentenceSeparators()),
          isStrict(options.strictSentenceEnds && !options.paragraphs) {}

    bool isBoundary(std::uint64_t i) const {
        return boundaries.contains(text[i]) && !(isStrict && isInside(i));
    }
    /// Whether a unit that ends sentences does not, as it stands inside of something.
    bool isInside(std::uint64_t i) const {
        const char16_t unit = text[i];
        // A line end is a boundary also without white space behind it.
        const bool isMark = unit == u'.' || unit == u'!' || unit == u'?';
        if (!isMark || i + 1 == text.size() || white.contains(text[i + 1])) return false;
        return !(words.unspaced && words.unspaced->hasUnitAt(text, i + 1));
    }
    bool isTerm(std::uint64_t i) const { return words.isTerm(i); }
    /// The same, and whether words part there, where it is known whether there are scripts without
    /// spaces: loops over all units ask it once.
    template <bool Unspaced>
    bool isTermOf(std::uint64_t i) const {
        return Unspaced ? words.isTerm(i) : words.termCharacters.contains(text[i]);
    }
    template <bool Unspaced>
    bool isApart(std::uint64_t i) const {
        return Unspaced && words.parts(i);
    }
    /// Whether the term units before and at a position are of one word.
    bool joinsTerms(std::uint64_t i) const { return words.isAfterTerm(i); }
    /// Whether a character goes on at a position inside the text.
    bool cutsCharacter(std::uint64_t i) const {
        return words.unspaced && words.unspaced->joins(text, i);
    }
};

}  // namespace velmo::detail
