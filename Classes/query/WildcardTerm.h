// A wildcard as a user writes it, of one word or of several, made ready for searches.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <velmocore/platform/String.h>

#include "query/SequencePlaces.h"
#include "query/WildcardSequence.h"

namespace velmo::detail {

/// Answers what FindWildcardStringInCharacters() answers, for any stretches of any texts.
/// Any number of threads may share it.
class WildcardTerm {
public:
    /// With scripts without spaces, a pair of theirs parts no words of the wildcard.
    WildcardTerm(std::u16string_view wildcard, WildcardComparison comparison,
                 std::uint64_t minCharacters, bool withinRuns);

    /// In a stretch of the text: the words as a phrase, or the one word that there is; and if
    /// that fails, the words of a hyphenated term written as one.
    Range find(const WordText& text, std::uint64_t start, std::uint64_t end,
               SequenceChoice choice = {}) const;

    const WildcardSequence& words() const { return words_; }
    const std::optional<WildcardSequence>& joined() const { return joined_; }

    /// Whether what is found is made of whole words of the text only. Then a hit stays one in
    /// any stretch that holds it and cuts no word.
    bool findsWords(const WordText& text) const {
        return words_.findsWords(text) && (!joined_ || joined_->findsWords(text));
    }
    /// Whether one of its two steps is to look for a lone star.
    bool hasLoneStar() const { return words_.isLoneStar() || (joined_ && joined_->isLoneStar()); }

private:
    WildcardTerm(std::u16string_view wildcard, const SeparatedWords& parts,
                 WildcardComparison comparison, std::uint64_t minCharacters);

    WildcardSequence words_;
    std::optional<WildcardSequence> joined_;
};

/// Answers what WildcardTerm::find() answers, going forward, for any stretches of one text: see
/// SequencePlaces. Not to be shared between threads.
class WildcardOccurrences {
public:
    WildcardOccurrences(const WordText& text, std::u16string_view wildcard,
                        WildcardComparison comparison, std::uint64_t minCharacters,
                        bool acceptStar);
    WildcardOccurrences(const WildcardOccurrences&) = delete;
    WildcardOccurrences& operator=(const WildcardOccurrences&) = delete;

    Range find(std::uint64_t start, std::uint64_t end);
    void forgetBefore(std::uint64_t position);

    /// Whether it matches single runs of term units, told by nothing but their units.
    bool isOneRun() const;
    /// The same of several runs side by side, if no two of its places overlap.
    bool isApart() const;
    /// Whether what is found first in a stretch is so in every longer one that cuts it no more. A
    /// hyphenated term is found as one word only where it is not found as several.
    bool isInOrder() const { return !joined_; }
    /// Whether it is, or may stand for, a lone star.
    bool hasLoneStar() const { return term_.hasLoneStar(); }

private:
    WordText text_;
    WildcardTerm term_;
    SequencePlaces words_;
    std::optional<SequencePlaces> joined_;
};

}  // namespace velmo::detail
