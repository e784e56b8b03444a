// The words of a query in a table, to be looked up by runs of term units of a text.
#pragma once

#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/platform/Matching.h>

#include "platform/UnitHash.h"
#include "query/RunKey.h"

namespace velmo::detail {

/// Tells of nearly all runs that they are no words, at no more than one look at a small place: for
/// the first eight units of each word there is a bit.
class BeginningFilter {
public:
    explicit BeginningFilter(std::size_t words)
        : numbers_(std::bit_ceil(NumbersOfWord * (words + 1))),
          view_{hashSeed(), nullptr,
                64 - 6 - static_cast<unsigned>(std::countr_zero(numbers_.size()))} {}

    void add(const RunKey& key) {
        const std::uint64_t bit = view_.bitOf(RunKey::beginningOf(key.first));
        numbers_[bit / 64] |= std::uint64_t{1} << bit % 64;
    }

    /// How it is asked, for loops that ask it often.
    struct View {
        std::uint64_t seed;
        const std::uint64_t* numbers;
        unsigned shift;

        /// For RunKey::beginningOf() a run.
        bool mayHave(std::uint64_t first) const noexcept {
            const std::uint64_t bit = bitOf(first);
            return numbers[bit / 64] >> bit % 64 & 1;
        }
        /// By the highest bits of a product, as all units have their part in these.
        std::uint64_t bitOf(std::uint64_t first) const noexcept {
            return (first ^ seed) * 0x9E3779B97F4A7C15 >> shift;
        }
    };
    View view() const { return {view_.seed, numbers_.data(), view_.shift}; }

private:
    /// So that few of a hundred other runs pass.
    static constexpr std::size_t NumbersOfWord = 2;

    std::vector<std::uint64_t> numbers_;
    View view_;
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

    const BeginningFilter& filter() const { return filter_; }

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
    static std::uint64_t hashOf(const RunKey& key) {
        return mixedHash(key.first ^ hashSeed(), key.last ^ 0x9E3779B97F4A7C15);
    }
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
    BeginningFilter filter_;
};

}  // namespace velmo::detail
