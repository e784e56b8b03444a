// What excerpts are made of: the hits, and where the sentences around them end.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include <velmocore/platform/Matching.h>
#include <velmocore/platform/Range.h>
#include <velmocore/query/QueryEvaluation.h>
#include <velmocore/text/CharacterSets.h>
#include <velmocore/words/Separators.h>

#include "query/WildcardWalk.h"
#include "text/PatternScan.h"

namespace velmo::detail {

/// Finds any of several wildcards.
class WildcardHits {
public:
    WildcardHits(std::u16string_view text, std::span<const String> wildcards,
                 WildcardComparison comparison, std::uint64_t minCharacters)
        : walk_({.text = {text, queryTermCharacters()},
                 .start = 0,
                 .end = text.size(),
                 .wildcards = wildcards,
                 .comparison = comparison,
                 .minCharacters = minCharacters}) {}

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

/// A text as excerpts see it.
struct ExcerptUnits {
    std::u16string_view text;
    const CharacterSetRep& boundaries;
    const CharacterSetRep& terms = queryTermCharacters();

    ExcerptUnits(std::u16string_view units, bool paragraphs)
        : text(units),
          boundaries(paragraphs ? defaultLineSeparators() : defaultSentenceSeparators()) {}

    bool isBoundary(std::uint64_t i) const { return boundaries.contains(text[i]); }
    bool isTerm(std::uint64_t i) const { return terms.contains(text[i]); }
};

}  // namespace velmo::detail
