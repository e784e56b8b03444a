#pragma once

#include <atomic>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/text/ConversionTables.h>

namespace velmo {

/// How much two words resemble each other, from 0.0 to 1.0: units in common count, and count
/// less the more often they are out of step. Neither side is a pattern, despite the name.
/// The order of the two matters where they are of equal length; two empty ones give NaN,
/// which reaches no threshold.
///
///     stringMatchesUnixWildcardFuzzy(u"analogy", u"analogie");     // 0.75
///     stringMatchesUnixWildcardFuzzy(u"abcd", u"abdc");            // 0.5
///
/// Time is at most the product of the lengths. Up to 512 units nothing is allocated. Any thread may
/// call what is told here.
[[nodiscard]] VELMO_API double stringMatchesUnixWildcardFuzzy(std::u16string_view first,
                                                              std::u16string_view second);
/// The same with every unit of both sides through the table.
[[nodiscard]] VELMO_API double stringMatchesUnixWildcardFuzzyUsingUnicharTable(
    std::u16string_view first, std::u16string_view second, const ConversionTable& table);

/// The resemblance that fuzzy searches ask for, and also the least quotient of the lengths
/// of two words that they compare at all: 0.75, unless it has been set. One value for the
/// whole process; a search reads it once.
VELMO_API extern std::atomic<double> MinWildcardFuzzyAnalogy;
/// Reads and sets it.
[[nodiscard]] inline double minWildcardFuzzyAnalogy() noexcept {
    return MinWildcardFuzzyAnalogy.load(std::memory_order_relaxed);
}
inline void setMinWildcardFuzzyAnalogy(double analogy) noexcept {
    MinWildcardFuzzyAnalogy.store(analogy, std::memory_order_relaxed);
}

}  // namespace velmo
