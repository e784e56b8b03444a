// The stop words of all languages in one hash table, so that a word of a text costs one
// look-up however many languages there are.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <velmocore/platform/String.h>
#include <velmocore/text/ConversionTables.h>

namespace velmo::detail {

class StopWordIndex {
public:
    /// The lists of the languages, which are known by their indexes from now on. The words
    /// of a text are folded by the table before they are compared; those of the lists are
    /// taken as they are, but lose their diacritics if asked for. Words of less units than
    /// the shortest are left out.
    StopWordIndex(std::span<const std::vector<String>* const> lists, bool ignoreUmlauts,
                  std::size_t shortest);

    static constexpr std::size_t NoWord = static_cast<std::size_t>(-1);

    /// The index of a word, NoWord if no language has it.
    std::size_t find(std::u16string_view word) const;
    /// The languages that have the word.
    std::span<const std::uint32_t> languagesOf(std::size_t word) const {
        return std::span(languages_).subspan(words_[word].firstLanguage, words_[word].languages);
    }

    std::size_t numberOfWords(std::size_t language) const { return counts_[language]; }
    /// The words of a language, sorted.
    std::vector<std::u16string_view> wordsOf(std::size_t language) const;

private:
    struct Word {
        std::uint32_t start, length;  // in units_
        std::uint32_t firstLanguage, languages;
    };
    /// A place of the table of words that PackedWord.h packs.
    struct PackedSlot {
        std::uint64_t key = 0;
        std::uint32_t word = 0;  // as below
    };
    /// A place of the table of all others. Part of the hash saves most looks at the word itself.
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t word = 0;  // its index and 1; 0 if the place is free
    };

    std::u16string_view textOf(const Word& word) const {
        return std::u16string_view(units_).substr(word.start, word.length);
    }
    bool mayHave(std::uint64_t hash) const {
        return filter_[hash >> filterShift_] >> (hash >> (filterShift_ - 6) & 63) & 1;
    }
    void noteInFilter(std::uint64_t hash);
    void place(std::uint32_t word);
    std::size_t findPacked(std::uint64_t key) const;
    std::size_t findOther(std::u16string_view word) const;

    const ConversionTable& fold_;
    std::u16string units_;
    std::vector<Word> words_;
    std::vector<std::uint32_t> languages_;
    std::vector<std::size_t> counts_;  // of words, by language
    std::size_t longest_ = 0;
    std::vector<PackedSlot> packedSlots_;  // a power of two, as all of these
    std::vector<Slot> slots_;
    /// Some bits of the hashes of all words: small enough to stay in the nearest cache, it answers
    /// for most words that no language has.
    std::vector<std::uint64_t> filter_;
    unsigned filterShift_ = 0;  // leaves the places in it of a hash
};

}  // namespace velmo::detail
