// The runs of a text that may be words of a table, listed for some blocks of it ahead.
//
// To judge each run where it is found costs more than the judgement: neither how many runs a block
// has nor how long they are can be foretold. So it is done in steps without branches for all runs of
// some blocks: where they begin and end is listed, and then they are looked up by their keys.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <span>

#include <velmocore/platform/Range.h>

#include "query/WordTable.h"
#include "text/TripleScan.h"
#include "text/UnitBlocks.h"
#include "words/WordText.h"

namespace velmo::detail {

class LikelyRuns {
public:
    static constexpr std::size_t MostBlocks = 16;

    /// Lists those that begin in blocks of a text, of at most MostBlocks, at places that passed.
    void list(const WordText& text, std::span<const SievedBlock> blocks, const WordTable& table);
    /// Lists those that begin in so many units from a base on, of at most MostBlocks.
    void list(const WordText& text, Range range, const WordTable& table);

    /// The first likely one from a number on, or count().
    std::size_t next(std::size_t run) const {
        if (run >= count_) return count_;
        const std::uint64_t rest = likely_[run / 64] >> run % 64;
        if (rest) return run + static_cast<unsigned>(std::countr_zero(rest));
        for (std::size_t i = run / 64 + 1; i * 64 < count_; ++i)
            if (likely_[i]) return i * 64 + static_cast<unsigned>(std::countr_zero(likely_[i]));
        return count_;
    }
    std::size_t count() const { return count_; }

    /// Where one is in the text; if it has RunKey::Longest units, it may have more.
    Range rangeOf(std::size_t run) const {
        return {bases_[starts_[run] / UnitsInBlock] + starts_[run] % UnitsInBlock, lengthOf(run)};
    }
    RunKey keyOf(std::size_t run) const {
        return RunKey::of(bytes_.data() + RunKey::Units + starts_[run], lengthOf(run));
    }

private:
    static constexpr std::size_t MostSlots = 2 * MostBlocks,
                                 MostRuns = MostBlocks * UnitsInBlock / 2;

    struct Steps;

    std::size_t lengthOf(std::size_t run) const {
        return std::min<std::size_t>(ends_[firstEnd_ + run] - starts_[run], RunKey::Longest);
    }
    void judge(const WordText& text, const WordTable& table, bool isSieved);

    // By slot: blocks, and behind them those that the last runs may go on in.
    std::size_t slots_ = 0;
    std::array<std::size_t, MostSlots> bases_;
    std::array<std::uint64_t, MostSlots> passed_;
    std::array<std::uint64_t, MostSlots + 1> members_;
    std::array<std::uint8_t, (MostSlots + 1) * UnitsInBlock> bytes_;  // the first in the middle
    // By run: where it begins and ends among the slots, and by bits whether it is likely.
    std::size_t count_ = 0, firstEnd_ = 0;
    std::array<std::uint16_t, MostRuns + UnitsInBlock> starts_, ends_;
    std::array<std::uint64_t, MostRuns / 64> likely_;
};

}  // namespace velmo::detail
