#include <velmocore/query/FuzzyAnalogy.h>

#include "query/FuzzyMeasure.h"

namespace velmo {
namespace {

using Units = detail::SmallBuffer<char16_t>;

Units folded(std::u16string_view units, const ConversionTable& table) {
    Units result(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) result[i] = table[units[i]];
    return result;
}

}  // namespace

// Set before anything runs, so that a static of another file may read it.
constinit std::atomic<double> MinWildcardFuzzyAnalogy = 0.75;

double stringMatchesUnixWildcardFuzzy(std::u16string_view first, std::u16string_view second) {
    return detail::fuzzyAnalogy(first, second);
}

double stringMatchesUnixWildcardFuzzyUsingUnicharTable(std::u16string_view first,
                                                       std::u16string_view second,
                                                       const ConversionTable& table) {
    const Units a = folded(first, table), b = folded(second, table);
    return detail::fuzzyAnalogy({a.data(), a.size()}, {b.data(), b.size()});
}

}  // namespace velmo
