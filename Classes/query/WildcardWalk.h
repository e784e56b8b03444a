// The nearest hits of several wildcards, one after the other. Each wildcard remembers its
// nearest hit, so that a frequent one does not have the rare ones searched for again and
// again.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include <velmocore/platform/String.h>

#include "query/WildcardTerm.h"

namespace velmo::detail {

/// What is looked for, and where.
struct WildcardSearch {
    WordText text;
    std::uint64_t start, end;
    std::span<const String> wildcards;
    WildcardComparison comparison;
    std::uint64_t minCharacters;
};

/// Gives what rangeOfNextWildcard() gives for a stretch that begins after the hit before.
class WildcardWalk {
public:
    explicit WildcardWalk(const WildcardSearch& search);

    /// The next hit, or no range; then the walk is over.
    Range next();

    /// Goes on at a position further on.
    void skipTo(std::uint64_t position) { start_ = std::max(start_, position); }

private:
    std::uint64_t start_, end_;  // of what is still to be searched
    std::vector<std::unique_ptr<WildcardOccurrences>> wildcards_;
};

/// Gives what rangeOfPreviousWildcard() gives for a stretch that ends before the hit before.
class WildcardWalkBack {
public:
    explicit WildcardWalkBack(const WildcardSearch& search);

    Range next();

private:
    /// What is known of a sequence of patterns. The places that a phrase tries overlap where
    /// one may hold more than a word; then it is remembered where its first word stands, from
    /// the last place back, and what comes of a search that goes on before a position.
    struct Memory {
        bool isChain;
        std::optional<Range> last = {};  // the last hit
        std::vector<Range> places = {};
        std::uint64_t scanned = UINT64_MAX;  // all places that end after it are known
        std::unordered_map<std::uint64_t, Range> chain = {};
    };
    struct Track {
        WildcardTerm term;
        Memory words, joined;
    };

    Range hitOf(Track& track, std::uint64_t start);
    Range remembered(const WildcardSequence& sequence, Memory& memory);
    Range hitOfChain(const WildcardSequence& sequence, Memory& memory);
    Range placeBefore(const WildcardSequence& sequence, Memory& memory, std::uint64_t end);

    WordText text_;
    std::uint64_t start_, end_;  // of what is still to be searched
    std::vector<Track> tracks_;
};

}  // namespace velmo::detail
