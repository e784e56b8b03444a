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

#include "platform/UnitHash.h"
#include "words/PackedWord.h"

namespace velmo::detail {

class StopWordIndex {
public:
    /// The lists of the languages, which are known by their indexes from now on. The words
    /// of a text are folded by the table before they are compared; those of the lists are
    /// taken as they are, but lose their diacritics if asked for. Words of less units than
    /// the shortest are left out.
    StopWordIndex(std::span<const std::vector<String>* const> lists, bool ignoreUmlauts,
                  std::size_t shortest);
    StopWordIndex(const StopWordIndex&) = delete;
    StopWordIndex& operator=(const StopWordIndex&) = delete;

    /// The languages that have a word, none if no language has it. Words that are folded alike
    /// give the very same span, and no other word gives it.
    using Languages = std::span<const std::uint32_t>;
    Languages find(std::u16string_view word) const;

    /// Some bits of the hashes of all words: small enough to stay in the nearest caches, it answers
    /// for most words that no language has.
    class Filter {
    public:
        Filter() = default;
        Filter(std::uint64_t* bits, std::size_t size) : bits_(bits), mask_(size - 1) {}

        bool mayHave(std::uint64_t hash) const {
            return bits_[hash / 64 & mask_] >> (hash & 63) & 1;
        }
        void add(std::uint64_t hash) {
            bits_[hash / 64 & mask_] |= std::uint64_t{1} << (hash & 63);
        }

    private:
        std::uint64_t* bits_ = nullptr;
        std::uint64_t mask_ = 0;
    };
    const Filter& filter() const { return filter_; }

    /// The languages of a word that has a number, and whose hash the filter has let pass.
    static std::uint64_t hashOf(const PackedWord& word) {
        return mixedHash(word.low ^ 0x9E3779B97F4A7C15, word.high ^ 0xD6E8FEB86659FD93);
    }
    Languages findPacked(const PackedWord& word, std::uint64_t hash) const {
        for (std::size_t i = placeOf(hash);; i = (i + 1) & (packedSlots_.size() - 1)) {
            const PackedSlot& slot = packedSlots_[i];
            // A free place has no languages.
            if (slot.word == word || !slot.languages.length) return languagesOf(slot.languages);
        }
    }

    std::size_t numberOfWords(std::size_t language) const { return counts_[language]; }
    /// The words of a language, sorted.
    std::vector<std::u16string_view> wordsOf(std::size_t language) const;

private:
    struct Stretch {
        std::uint32_t start = 0, length = 0;
    };
    struct Word {
        Stretch units, languages;  // in units_ and languages_
    };
    /// A place of the table of words that PackedWord.h packs, which says all of them.
    struct PackedSlot {
        PackedWord word;
        Stretch languages;  // none if the place is free
    };
    /// A place of the table of all others. Part of the hash saves most looks at the word itself.
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t word = 0;  // its index and 1; 0 if the place is free
    };

    std::u16string_view textOf(const Word& word) const {
        return std::u16string_view(units_).substr(word.units.start, word.units.length);
    }
    Languages languagesOf(const Stretch& stretch) const {
        return Languages(languages_).subspan(stretch.start, stretch.length);
    }
    std::size_t placeOf(std::uint64_t hash) const { return hash >> 32 & (packedSlots_.size() - 1); }
    void place(std::uint32_t word);
    Languages findFolded(std::u16string_view word) const;

    const ConversionTable& fold_;
    std::u16string units_;
    std::vector<Word> words_;
    std::vector<std::uint32_t> languages_;
    std::vector<std::size_t> counts_;  // of words, by language
    std::size_t longest_ = 0;
    std::vector<PackedSlot> packedSlots_;  // a power of two, as all of these
    std::vector<Slot> slots_;
    std::vector<std::uint64_t> filterBits_;
    Filter filter_;
};

}  // namespace velmo::detail
