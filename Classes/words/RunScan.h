// The scanning core of words and components: a text is a row of runs, each of units that
// are all members of a set or all none. The set is one of separators, or of the units that
// make up words. Every form (counts, ranges, strings, handlers) is a small
// callable that takes these runs.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <velmocore/platform/Range.h>
#include <velmocore/text/CharacterSets.h>

#include "text/MemberScan.h"

namespace velmo::detail {

/// A maximal run of members, or of units that are none.
struct Run {
    std::size_t start;
    std::size_t end;
    bool isMember;

    std::size_t length() const { return end - start; }
    Range range() const { return {start, end - start}; }
};

/// Calls block(base, members, count) for each 64 units of the text, the last block being
/// shorter; a result of false ends the scan.
template <class Block>
void forEachBlock(std::u16string_view text, const CharacterSetRep& set, Block block) {
    std::size_t base = 0;
    for (; text.size() - base >= 64; base += 64)
        if (!block(base, membersOf(text.data() + base, 64, set), 64)) return;
    if (const std::size_t rest = text.size() - base)
        block(base, membersOf(text.data() + base, rest, set), rest);
}

/// Calls run(Run) for each run, from the first on; a result of false ends the scan. Edges
/// are found 64 units at a time, by comparing each unit with its neighbour, so that the
/// only jumps that depend on the text are those from run to run.
template <class Handler>
void forEachRun(std::u16string_view text, const CharacterSetRep& set, Handler run) {
    if (text.empty()) return;
    bool isMember = set.contains(text[0]);
    // The bit of the unit in front of each block, so that an edge between two blocks is found like
    // any other. As the first unit is its own forerunner, no edge is seen at the start.
    std::uint64_t before = isMember;
    std::size_t start = 0;
    bool going = true;
    forEachBlock(text, set, [&](std::size_t base, std::uint64_t members, std::size_t count) {
        std::uint64_t edges = members ^ (members << 1 | before);
        if (count < 64) edges &= (std::uint64_t{1} << count) - 1;
        before = members >> 63;
        for (; edges && going; edges &= edges - 1) {
            // Runs take turns, so that an edge needs no look at the unit to tell what begins
            // there.
            const std::size_t end = base + static_cast<std::size_t>(std::countr_zero(edges));
            going = run(Run{start, end, isMember});
            start = end;
            isMember = !isMember;
        }
        return going;
    });
    if (going) run(Run{start, text.size(), isMember});
}

/// The same, but a [ that is no separator takes all up to the next ] or the end of the text
/// into its word, separators too. The ] itself is then looked at as any unit.
template <class Handler>
void forEachRunWithBrackets(std::u16string_view text, const CharacterSetRep& set, Handler run) {
    if (text.empty()) return;
    bool isMember = set.contains(text[0]);
    std::size_t start = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (set.contains(text[i]) != isMember) {
            if (!run(Run{start, i, isMember})) return;
            start = i;
            isMember = !isMember;
        }
        // The loop's own step then leads to the ]. It is a plain loop: what is skipped depends on
        // the text, and wildcards are short.
        if (!isMember && text[i] == u'[') i = std::min(text.find(u']', i + 1), text.size()) - 1;
    }
    run(Run{start, text.size(), isMember});
}

/// Number of runs of units that are no separators.
inline std::uint64_t countOfWordRuns(std::u16string_view text, const CharacterSetRep& set) {
    // The text begins as after a separator, so that a word at its start is counted.
    std::uint64_t count = 0, before = 1;
    forEachBlock(text, set, [&](std::size_t, std::uint64_t members, std::size_t units) {
        std::uint64_t starts = ~members & (members << 1 | before);
        if (units < 64) starts &= (std::uint64_t{1} << units) - 1;
        before = members >> 63;
        count += static_cast<std::uint64_t>(std::popcount(starts));
        return true;
    });
    return count;
}

/// The part of a text that a range covers, cut at the text's end.
inline std::u16string_view unitsInRange(std::u16string_view text, Range range) {
    return range.location < text.size() ? text.substr(range.location, range.length)
                                        : std::u16string_view();
}

}  // namespace velmo::detail
