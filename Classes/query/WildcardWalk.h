// The nearest hits of several wildcards, one after the other.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/platform/Matching.h>
#include <velmocore/platform/String.h>

#include "query/WildcardTerm.h"

namespace velmo::detail {

/// Gives what rangeOfNextWildcard() or rangeOfPreviousWildcard() gives for a stretch that
/// begins (or ends) behind the hit before. Each wildcard remembers its nearest hit, so that
/// a frequent one does not have the rare ones searched for again and again.
class WildcardWalk {
public:
    WildcardWalk(const WordText& text, std::uint64_t start, std::uint64_t end,
                 std::span<const String> wildcards, WildcardComparison comparison,
                 std::uint64_t minCharacters, Direction direction);

    /// The next hit, or no range; then the walk is over.
    Range next();

    /// Goes on at a position further on, going forward.
    void skipTo(std::uint64_t position) { start_ = std::max(start_, position); }

private:
    /// One of the two searches of a term, and what it has found.
    struct Known {
        bool isKnown = false;
        Range hit = Range::none();
    };
    struct Track {
        WildcardTerm term;
        bool canRemember;
        Known words = {}, joined = {};
    };
    using Search = Range (WildcardTerm::*)(const WordText&, std::uint64_t, std::uint64_t,
                                           TermChoice) const;

    Range hitOf(Track& track, std::uint64_t start, std::uint64_t end);
    Range remembered(const Track& track, Known& known, Search search, std::uint64_t start,
                     std::uint64_t end);

    WordText text_;
    std::uint64_t start_, end_;  // of what is still to be searched
    TermChoice choice_;
    std::vector<Track> tracks_;
};

}  // namespace velmo::detail
