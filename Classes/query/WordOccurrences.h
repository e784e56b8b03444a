// The places of one word in one text, for evaluations that ask for them over and over.
#pragma once

#include <algorithm>
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
    std::uint64_t find(const SoughtWord& sought, std::uint64_t start, std::uint64_t end) {
        return find(sought, start, end, [&](std::uint64_t from) { scanUpTo(sought, from, end); });
    }

    /// The same where another one scans the text: list(from) adds positions until the list reaches
    /// that one, or all below the end of the stretch are known.
    template <class List>
    std::uint64_t find(const SoughtWord& sought, std::uint64_t start, std::uint64_t end,
                       List list) {
        const std::uint64_t length = sought.word.size();
        if (start > end || end - start < length) return NotFound;
        if (start == 0 && end == sought.text.size()) {
            if (!reaches(0)) list(0);
            return positions_.empty() ? NotFound : positions_.front();
        }
        // The edges of the stretch first and last; between them it is as in the whole text.
        if (wordStandsAt(sought, start, start, end)) return start;
        const std::uint64_t last = end - length;
        if (!reaches(start + 1)) list(start + 1);
        const auto inner = std::ranges::lower_bound(positions_, start + 1);
        if (inner != positions_.end() && *inner <= last) return *inner;
        return wordStandsAt(sought, last, start, end) ? last : NotFound;
    }

    /// The next position, behind all that are known.
    void add(std::uint64_t position) { positions_.push_back(position); }
    /// Whether a known position is that one or behind it.
    bool reaches(std::uint64_t position) const {
        return !positions_.empty() && positions_.back() >= position;
    }

private:
    void scanUpTo(const SoughtWord& sought, std::uint64_t from, std::uint64_t end);

    // Positions at which the word stands in the text as a whole, in their order. Where a
    // stretch begins or ends may add one more to that stretch, as its edges end words.
    std::vector<std::uint64_t> positions_;
    std::uint64_t scanned_ = 0;  // all positions below it are known
};

}  // namespace velmo::detail
