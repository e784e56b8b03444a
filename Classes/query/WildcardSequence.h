// Patterns for words that follow one another in a text: a phrase, or the one word that most
// wildcards are.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/platform/Matching.h>
#include <velmocore/platform/String.h>

#include "query/WildcardPattern.h"

namespace velmo::detail {

/// How a sequence is looked for.
struct SequenceChoice {
    Direction direction = Direction::Forward;
    bool acceptStar = false;  // a lone * finds the whole stretch; in a phrase it is any word
};

/// What FindWildcardInCharacters() makes of a lone star.
Range findLoneStar(const WordText& text, std::uint64_t start, std::uint64_t end,
                   Direction direction, bool starIsWord);

/// Any number of threads may share it.
class WildcardSequence {
public:
    /// Of one word.
    WildcardSequence(std::u16string_view word, WildcardComparison comparison,
                     std::uint64_t minCharacters)
        : first_(word, comparison, minCharacters) {}
    /// Of one or more.
    WildcardSequence(std::span<const String> words, WildcardComparison comparison,
                     std::uint64_t minCharacters);

    /// In a stretch of the text. A phrase is looked for from each place of its first word on
    /// that does not lie in the place tried before; going backwards, its words must end where
    /// that one begins.
    Range find(const WordText& text, std::uint64_t start, std::uint64_t end,
               SequenceChoice choice = {}) const;

    /// The next place of the first word of a phrase, or the last one.
    Range findFirst(const WordText& text, std::uint64_t start, std::uint64_t end,
                    Direction direction = Direction::Forward) const;
    /// Where the other words end if they follow from a position on, or NotFound.
    std::uint64_t endOfRest(const WordText& text, std::uint64_t position, std::uint64_t end) const;

    /// Whether the last word may stand at the end of a stretch only because it ends there.
    bool mayTouch(const WordText& text, std::uint64_t end) const;
    /// What stands there, if the sequence is of one word.
    Range findAtEnd(const WordText& text, std::uint64_t start, std::uint64_t end) const {
        return first_.findAtEnd(text, start, end);
    }

    bool isPhrase() const { return !rest_.empty(); }
    bool beginsWithStar() const { return isPhrase() && first_.isLoneStar(); }
    bool isLoneStar() const { return !isPhrase() && first_.isLoneStar(); }
    /// Whether what is found is made of whole words of the text only.
    bool findsWords(const WordText& text) const;
    /// The same, of several words side by side; of a sequence of one pattern.
    bool findsApart(const WordText& text) const { return first_.findsApart(text); }

private:
    const WildcardPattern& last() const { return rest_.empty() ? first_ : rest_.back(); }

    WildcardPattern first_;
    std::vector<WildcardPattern> rest_;  // of a phrase
};

}  // namespace velmo::detail
