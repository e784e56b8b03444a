// Search for a pattern in linear time and constant room, whatever text and pattern are: the
// two-way algorithm of Crochemore and Perrin. The pattern is cut in two at a place where it has
// no short period on both sides. The right part is compared from the cut on forward, and a
// difference at its i-th unit rules the next i starts out; then the left part. It is slower than
// the vector search of PatternScan.h on usual text, and stands behind it for the others.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <velmocore/platform/Range.h>

namespace velmo::detail {

/// Finds all occurrences, those that overlap too, one after the other. Text and pattern are
/// callables that give the unit at an index, which two units that count as the same have in
/// common; backwards is a matter of these. The pattern has at least one unit.
template <class Text, class Pattern>
class TwoWaySearch {
public:
    TwoWaySearch(const Text& text, std::size_t textLength, const Pattern& pattern,
                 std::size_t patternLength)
        : text_(text), textLength_(textLength), pattern_(pattern), length_(patternLength) {
        const Suffix rising = maximalSuffix(false), falling = maximalSuffix(true);
        const Suffix& later = rising.start > falling.start ? rising : falling;
        cut_ = later.start;
        period_ = later.period;
        isPeriodic_ = true;
        for (std::size_t i = 0; i < cut_ && isPeriodic_; ++i)
            isPeriodic_ = i + period_ < length_ && pattern_(i) == pattern_(i + period_);
        // Without a period of the whole, no two occurrences are nearer than this.
        if (!isPeriodic_) period_ = std::max(cut_, length_ - cut_) + 1;
    }

    /// The start of the next occurrence, or NotFound.
    std::uint64_t next() noexcept {
        while (length_ <= textLength_ && start_ <= textLength_ - length_) {
            std::size_t i = std::max(cut_, known_);
            while (i < length_ && pattern_(i) == text_(start_ + i)) ++i;
            if (i < length_) {
                start_ += i - cut_ + 1;
                known_ = 0;
                continue;
            }
            i = cut_;
            while (i > known_ && pattern_(i - 1) == text_(start_ + i - 1)) --i;
            const std::size_t hit = start_;
            const bool isHit = i <= known_;
            start_ += period_;
            known_ = isPeriodic_ ? length_ - period_ : 0;
            if (isHit) return hit;
        }
        return NotFound;
    }

private:
    struct Suffix {
        std::size_t start, period;
    };

    /// The suffix that is the greatest in the order of units, or in the reverse one, and its
    /// period.
    Suffix maximalSuffix(bool reverse) const noexcept {
        // best + 1 is where the suffix begins; it starts before the pattern.
        std::size_t best = static_cast<std::size_t>(-1), candidate = 0, offset = 1, period = 1;
        while (candidate + offset < length_) {
            const auto a = pattern_(candidate + offset), b = pattern_(best + offset);
            if (a == b) {
                if (offset == period) {
                    candidate += period;
                    offset = 1;
                } else {
                    ++offset;
                }
            } else if ((a < b) != reverse) {
                candidate += offset;
                offset = 1;
                period = candidate - best;
            } else {
                best = candidate++;
                offset = period = 1;
            }
        }
        return {best + 1, period};
    }

    const Text& text_;
    std::size_t textLength_;
    const Pattern& pattern_;
    std::size_t length_;
    std::size_t cut_ = 0;      ///< the right part begins here
    std::size_t period_ = 1;   ///< how far to go on after the right part was found
    bool isPeriodic_ = false;  ///< whether it is the period of the whole pattern
    std::size_t start_ = 0;
    std::size_t known_ = 0;  ///< units at the start that are known to be equal
};

}  // namespace velmo::detail
