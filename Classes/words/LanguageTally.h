// What one scan of a text counts for the language filter.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "words/StopWordIndex.h"

namespace velmo::detail {

/// Scripts whose words need no list. The order is that in which they are compared.
enum class Script { Other, Cyrillic, Hebrew, Greek, Arabic };
inline constexpr std::size_t NumberOfScripts = 5;

struct WordCount {
    std::uint64_t words = 0;
    std::uint64_t units = 0;

    void add(std::u16string_view word) {
        ++words;
        units += word.size();
    }
    /// Whether it holds at least half of the words or of the units, both rounded down.
    bool isHalfOf(const WordCount& all) const {
        return units >= all.units / 2 || words >= all.words / 2;
    }
};

class LanguageHits {
public:
    std::uint64_t hits() const { return hits_; }
    /// How many different words there were, four at most.
    std::size_t distinct() const { return distinct_; }
    /// A language is not told by fewer words, however often they occur.
    bool hasEnoughWords() const { return distinct_ == words_.size(); }

    /// A word that counts for so many.
    void add(std::size_t word, std::uint64_t count = 1) {
        hits_ += count;
        if (hasEnoughWords()) return;
        for (std::size_t i = 0; i < distinct_; ++i)
            if (words_[i] == word) return;
        words_[distinct_++] = word;
    }

private:
    std::uint64_t hits_ = 0;
    std::size_t distinct_ = 0;
    // Enough to tell that there are four; which others occur does not matter. So a text of any
    // length needs no set of words for each language.
    std::array<std::size_t, 4> words_;
};

struct LanguageTally {
    WordCount all;
    WordCount edgedByNonLetters;  // such as numbers; they speak for no language
    std::array<WordCount, NumberOfScripts> scripts;
    std::vector<LanguageHits> languages;

    WordCount edgedByLetters() const {
        return {all.words - edgedByNonLetters.words, all.units - edgedByNonLetters.units};
    }
};

/// Counts the words of a text that have at least minLen units.
LanguageTally tallyOfText(std::u16string_view text, const StopWordIndex& index,
                          std::size_t numberOfLanguages, std::uint64_t minLen);

}  // namespace velmo::detail
