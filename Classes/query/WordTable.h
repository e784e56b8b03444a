// The words of a query in a table, to be looked up by runs of term units of a text.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <velmocore/platform/Matching.h>

namespace velmo::detail {

/// Words by their units. It does not own these. Never changes once it is made.
class WordTable {
public:
    struct Word {
        std::u16string_view units;
        std::size_t owner;  // what the word is asked for
    };

    /// Several owners may have the same word, which has at least one unit.
    WordTable(const std::vector<Word>& words, Case letterCase);

    /// Calls found(owner) for each owner of the word that the first units of a text are. More
    /// units than those may be looked at.
    template <class Found>
    void find(std::u16string_view text, std::size_t length, Found found) const {
        if (!(lengths_ >> (length < OtherLengths ? length : OtherLengths) & 1)) return;
        const std::uint64_t hash = hashOf(text, length);
        if (!(present_[hash >> presentShift_ >> 6] >> (hash >> presentShift_ & 63) & 1)) return;
        for (std::uint32_t i = firstOf(text.substr(0, length), hash); i != None;
             i = entries_[i].nextSame)
            found(entries_[i].word.owner);
    }

    /// Longer runs are no words of it.
    std::size_t longest() const { return longest_; }

private:
    static constexpr std::uint32_t None = UINT32_MAX;
    static constexpr unsigned OtherLengths = 63;  // stands for all greater ones

    struct Entry {
        Word word;
        std::uint64_t hash;
        std::uint32_t nextSame = None;
    };

    std::uint64_t hashOf(std::u16string_view text, std::size_t length) const;
    std::uint32_t firstOf(std::u16string_view run, std::uint64_t hash) const;
    bool isSame(std::u16string_view a, std::u16string_view b) const;
    void insert(const Word& word);

    Case letterCase_;
    std::uint64_t seed_;
    std::uint64_t lengths_ = 0;
    std::size_t longest_ = 0;
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> slots_;  // entries by their hash; a power of two, half of it empty
    // A bit for each hash, by its high bits, so that nearly all runs that are no words cost one
    // look at a small place.
    std::vector<std::uint64_t> present_;
    unsigned presentShift_;
};

}  // namespace velmo::detail
