// The words of a query in a table, to be looked up by runs of term units of a text.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/platform/Matching.h>

#include "query/RunKey.h"
#include "text/UnitHash.h"

namespace velmo::detail {

/// Tells of nearly all runs that they are no words, at no more than one look at a small place: the
/// key of each word has two bits of a number there.
class KeyFilter {
public:
    explicit KeyFilter(std::size_t words)
        : seed_(hashSeed()),
          numbers_(std::bit_ceil(words + 2)),
          shift_(64 - static_cast<unsigned>(std::countr_zero(numbers_.size()))) {}

    void add(const RunKey& key) { numbers_[hashOf(key) >> shift_] |= bitsOf(hashOf(key)); }

    /// How it is asked, for loops that ask it often.
    struct View {
        std::uint64_t seed;
        const std::uint64_t* numbers;
        unsigned shift;

        bool mayHave(const RunKey& key) const noexcept {
            const std::uint64_t hash = hashOf(key, seed), bits = bitsOf(hash);
            return (numbers[hash >> shift] & bits) == bits;
        }
    };
    View view() const { return {seed_, numbers_.data(), shift_}; }

    std::uint64_t seed() const { return seed_; }
    std::uint64_t hashOf(const RunKey& key) const noexcept { return hashOf(key, seed_); }

private:
    static std::uint64_t hashOf(const RunKey& key, std::uint64_t seed) noexcept {
        constexpr std::uint64_t Odd = 0x9E3779B97F4A7C15;
        return mixedHash(key.first ^ seed, key.last ^ Odd);
    }
    /// By the last bits of the hash, as the first ones tell the number.
    static std::uint64_t bitsOf(std::uint64_t hash) noexcept {
        return std::uint64_t{1} << (hash & 63) | std::uint64_t{1} << (hash >> 6 & 63);
    }

    std::uint64_t seed_;
    std::vector<std::uint64_t>
        numbers_;  // as many as words: of a thousand other runs one or two pass
    unsigned shift_;
};

/// Words by their units. It does not own these. Never changes once it is made.
class WordTable {
public:
    struct Word {
        std::u16string_view units;
        std::size_t owner;  // what the word is asked for
    };

    /// Several owners may have the same word, which has at least one unit.
    WordTable(const std::vector<Word>& words, Case letterCase);

    const KeyFilter& filter() const { return filter_; }

    /// Calls found(owner) for each owner of the word that a run is, whose key that is.
    template <class Found>
    void find(std::u16string_view run, const RunKey& key, Found found) const {
        std::uint32_t i = key.isWhole(run.size()) ? firstOf(key, run.size()) : firstOf(run);
        for (; i != None; i = entries_[i].nextSame) found(entries_[i].word.owner);
    }

    /// Longer runs are no words of it.
    std::size_t longest() const { return longest_; }
    Case letterCase() const { return letterCase_; }

private:
    static constexpr std::uint32_t None = UINT32_MAX;

    struct Entry {
        Word word;
        RunKey key;
        std::uint64_t hash;
        std::uint32_t nextSame = None;
    };

    RunKey keyOf(std::u16string_view run) const;
    std::uint64_t hashOf(std::u16string_view run, const RunKey& key) const;
    bool isSame(std::u16string_view a, std::u16string_view b) const;
    template <class IsSame>
    std::uint32_t firstOf(std::uint64_t hash, IsSame isSame) const;
    std::uint32_t firstOf(const RunKey& key, std::size_t length) const;
    std::uint32_t firstOf(std::u16string_view run) const;
    void insert(const Word& word);

    Case letterCase_;
    std::size_t longest_ = 0;
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> slots_;  // entries by their hash; a power of two, half of it empty
    KeyFilter filter_;
};

}  // namespace velmo::detail
