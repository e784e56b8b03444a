// The words of a query in a table, to be looked up by runs of term units of a text.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
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
        if (length > longest_ || !mayBe(text, length)) return;
        for (std::uint32_t i = firstOf(text.substr(0, length)); i != None; i = entries_[i].nextSame)
            found(entries_[i].word.owner);
    }

    /// Longer runs are no words of it.
    std::size_t longest() const { return longest_; }

private:
    static constexpr std::uint32_t None = UINT32_MAX;
    static constexpr std::size_t PackSize = 4;

    struct Entry {
        Word word;
        std::uint64_t hash;
        std::uint32_t nextSame = None;
    };

    // Nearly all runs are no words, and are to cost no more than one look at a small place: there is
    // a bit for the first and the last four units of each word and its length. Of units only what
    // is the same in both cases is looked at; a run with others than ASCII has to be looked up.

    struct Ends {
        std::uint64_t first, last;  // four units each, or those of a shorter word twice
    };

    bool mayBe(std::u16string_view text, std::size_t length) const {
        constexpr std::uint64_t OutsideAscii = 0xFF80'FF80'FF80'FF80;
        if (text.size() < PackSize) return true;
        // Without branches, as the lengths of words cannot be foretold.
        const std::size_t inPack = std::min(length, PackSize);
        const std::uint64_t inRun = ~std::uint64_t{0} >> 16 * (PackSize - inPack);
        const Ends ends = {packOf(text.data()) & inRun,
                           packOf(text.data() + length - inPack) & inRun};
        if ((ends.first | ends.last) & OutsideAscii) return true;
        const std::uint64_t bit = bitOf(ends, length);
        return ends_[bit / 64] >> bit % 64 & 1;
    }
    static std::uint64_t packOf(const char16_t* units) {
        std::uint64_t pack = 0;
        if constexpr (std::endian::native == std::endian::little)
            std::memcpy(&pack, units, sizeof pack);  // compilers do not see it in the other form
        else
            for (unsigned i = 0; i < PackSize; ++i)
                pack |= static_cast<std::uint64_t>(units[i]) << 16 * i;
        return pack;
    }
    std::uint64_t bitOf(Ends ends, std::size_t length) const {
        constexpr std::uint64_t InBothCases = 0x005F'005F'005F'005F, Odd = 0x9E3779B97F4A7C15,
                                Other = 0xD6E8FEB86659FD93;
        return ((ends.first & InBothCases) * Odd ^ ((ends.last & InBothCases) + length) * Other) *
                   Odd >>
               shift_;
    }

    std::uint32_t firstOf(std::u16string_view run) const;
    bool isSame(std::u16string_view a, std::u16string_view b) const;
    std::uint64_t hashOf(std::u16string_view run) const;
    void insert(const Word& word);
    void insertEnds(std::u16string_view word);

    Case letterCase_;
    std::size_t longest_ = 0;
    std::vector<Entry> entries_;
    std::vector<std::uint32_t> slots_;  // entries by their hash; a power of two, half of it empty
    std::vector<std::uint64_t> ends_;
    unsigned shift_;
};

}  // namespace velmo::detail
