// A wildcard as a user writes it, of one word or of several, made ready for searches.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <velmocore/platform/Matching.h>
#include <velmocore/platform/String.h>

#include "query/WildcardPattern.h"

namespace velmo::detail {

/// How a term is looked for.
struct TermChoice {
    Direction direction = Direction::Forward;
    bool acceptStar = false;  // a lone * finds the whole stretch; in a phrase it is any word
};

/// What FindWildcardInCharacters() makes of a lone star.
Range findLoneStar(const WordText& text, std::uint64_t start, std::uint64_t end,
                   Direction direction, bool starIsWord);

/// Answers what FindWildcardStringInCharacters() answers, for any stretches of any texts.
/// Any number of threads may share it.
class WildcardTerm {
public:
    WildcardTerm(std::u16string_view wildcard, WildcardComparison comparison,
                 std::uint64_t minCharacters);

    /// In a stretch of the text.
    Range find(const WordText& text, std::uint64_t start, std::uint64_t end,
               TermChoice choice = {}) const;

    // Its two steps: the words as a phrase, or the one word that there is; and if that fails,
    // the words of a hyphenated term written as one.

    Range findWords(const WordText& text, std::uint64_t start, std::uint64_t end,
                    TermChoice choice = {}) const;
    Range findJoined(const WordText& text, std::uint64_t start, std::uint64_t end,
                     TermChoice choice = {}) const;

    /// Whether what is found is made of whole words of the text only. Then a hit stays one in
    /// any stretch that holds it and cuts no word.
    bool findsWords(const CharacterSetRep& termCharacters) const;
    bool isPhrase() const { return !rest_.empty(); }
    /// Whether one of its two steps is to look for a lone star.
    bool hasLoneStar() const {
        return (!isPhrase() && first_.isLoneStar()) || (joined_ && joined_->isLoneStar());
    }

private:
    /// The words of a wildcard; none if there are fewer than two.
    struct Parts {
        explicit Parts(std::u16string_view wildcard);
        std::vector<String> words;
        bool hyphenated = false;
    };

    WildcardTerm(std::u16string_view wildcard, const Parts& parts, WildcardComparison comparison,
                 std::uint64_t minCharacters);
    std::uint64_t endOfRest(const WordText& text, std::uint64_t position, std::uint64_t end) const;

    WildcardPattern first_;
    std::vector<WildcardPattern> rest_;  // of a phrase
    std::optional<WildcardPattern> joined_;
};

}  // namespace velmo::detail
