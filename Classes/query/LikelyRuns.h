// The runs of a text that may be words of a table, listed for some blocks of it ahead.
//
// To judge each run where it is found costs more than the judgement: neither how many runs a block
// has nor how long they are can be foretold. So it is done in steps without branches for all runs of
// some blocks: where they begin is listed, and then their first units are looked up.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
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
    /// Longer runs are told with that length.
    static constexpr std::size_t Longest = 56;

    /// Lists those that begin in blocks of a text, of at most MostBlocks, at places that passed.
    void list(const WordText& text, std::span<const SievedBlock> blocks, const WordTable& table);

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

    /// Where one is in the text; if it has Longest units, it may have more.
    Range rangeOf(std::size_t run) const {
        return {bases_[starts_[run] / UnitsInBlock] + starts_[run] % UnitsInBlock,
                lengthAt<Longest>(members_.data(), starts_[run])};
    }
    RunKey keyOf(std::size_t run) const {
        return RunKey::of(bytes_.data() + RunKey::Units + starts_[run],
                          lengthAt<Longest>(members_.data(), starts_[run]));
    }

private:
    static constexpr std::size_t MostSlots = 2 * MostBlocks,
                                 MostRuns = MostBlocks * UnitsInBlock / 2;

    struct Steps;

    /// How many members stand in a row from a place on, but no more than Most.
    template <std::size_t Most>
    static std::size_t lengthAt(const std::uint64_t* members, std::size_t place) noexcept;
    void judge(const WordText& text, const WordTable& table);

    // By slot: blocks, and behind them those that the last runs may go on in.
    std::size_t slots_ = 0;
    std::array<std::size_t, MostSlots> bases_;
    std::array<std::uint64_t, MostSlots> passed_;
    std::array<std::uint64_t, MostSlots + 1> members_;
    std::array<std::uint8_t, (MostSlots + 1) * UnitsInBlock> bytes_;  // the first in the middle
    // By run: where it begins among the slots, and by bits whether it is likely.
    std::size_t count_ = 0;
    std::array<std::uint16_t, MostRuns + UnitsInBlock> starts_;
    std::array<std::uint64_t, MostRuns / 64> likely_;
};

template <std::size_t Most>
inline std::size_t LikelyRuns::lengthAt(const std::uint64_t* members, std::size_t place) noexcept {
    static_assert(Most <= 56, "seven bits may be before the place");
    std::uint64_t bits;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&bits, reinterpret_cast<const char*>(members) + place / 8, sizeof bits);
        bits >>= place % 8;
    } else {
        const std::size_t slot = place / UnitsInBlock, start = place % UnitsInBlock;
        bits = members[slot] >> start | members[slot + 1] << 1 << (63 - start);
    }
    return static_cast<std::size_t>(std::countr_zero(~bits | std::uint64_t{1} << Most));
}

}  // namespace velmo::detail
