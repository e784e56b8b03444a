// Units of the scripts without spaces between words, as ranges.
#pragma once

#include <span>

namespace velmo::detail {

struct UnitRange {
    char16_t first, last;
};

std::span<const UnitRange> unspacedUnits();
std::span<const UnitRange> unspacedJoinsBefore();
std::span<const UnitRange> unspacedJoinsBehind();
std::span<const UnitRange> unspacedSentenceEnds();

}  // namespace velmo::detail
