// What one scan of a text counts for the language filter.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "words/StopWordIndex.h"
#include "words/WordCount.h"

namespace velmo::detail {

/// Scripts whose words need no list. The order is that in which they are compared.
enum class Script { Other, Cyrillic, Hebrew, Greek, Arabic };
inline constexpr std::size_t NumberOfScripts = 5;

class LanguageHits {
public:
    std::uint64_t hits() const { return hits_; }
    /// A language is not told by fewer than four different words, however often they occur.
    bool hasEnoughWords() const { return distinct_ == words_.size(); }

    /// A word, known by where its languages stand.
    void add(StopWordIndex::Languages word) {
        ++hits_;
        if (hasEnoughWords()) return;
        for (std::size_t i = 0; i < distinct_; ++i)
            if (words_[i] == word.data()) return;
        words_[distinct_++] = word.data();
    }

private:
    std::uint64_t hits_ = 0;
    std::size_t distinct_ = 0;  // of its words, four at most
    // Enough to tell that there are four; which others occur does not matter. So a text of any
    // length needs no set of words for each language.
    std::array<const std::uint32_t*, 4> words_;
};

struct LanguageTally {
    WordCount all;
    WordCount edgedByNonLetters;  // such as numbers; they speak for no language
    std::array<WordCount, NumberOfScripts> scripts;
    std::vector<LanguageHits> languages;

    WordCount edgedByLetters() const { return all.without(edgedByNonLetters); }
};

/// Counts the words of a text that have at least minLen units.
LanguageTally tallyOfText(std::u16string_view text, const StopWordIndex& index,
                          std::size_t numberOfLanguages, std::uint64_t minLen);

}  // namespace velmo::detail
