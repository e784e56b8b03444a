// The places of one word in one text, for evaluations that ask for them over and over.
#pragma once

#include <cstdint>
#include <vector>

#include "query/WordScan.h"

namespace velmo::detail {

/// Answers what scanForWord() answers, for any stretches of a text, but scans each part of
/// the text only once and not before it is needed. Not to be shared between threads.
class WordOccurrences {
public:
    /// The first position in the stretch at which the word stands, or NotFound. The word
    /// must be the same in all calls.
    std::uint64_t find(const SoughtWord& sought, std::uint64_t start, std::uint64_t end);

private:
    std::uint64_t firstListed(const SoughtWord& sought, std::uint64_t from, std::uint64_t end);

    // Positions at which the word stands in the text as a whole, in their order. Where a
    // stretch begins or ends may add one more to that stretch, as its edges end words.
    std::vector<std::uint64_t> positions_;
    std::uint64_t scanned_ = 0;  // all positions below it are known
};

}  // namespace velmo::detail
