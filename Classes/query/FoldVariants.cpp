// The tables turned round: for each unit the units that fold to it, side by side in one array of
// 64K, with where each group starts (a counting sort). Made once for each of the three tables that
// comparisons use, when the first pattern is sought through it.
#include "query/FoldVariants.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace velmo::detail {
namespace {

/// The units sorted by what they become.
struct Inverse {
    explicit Inverse(const ConversionTable& table) {
        // One place further on, so that the sums that follow are the starts and not the ends.
        for (char16_t folded : table.entries) ++starts[folded + 1u];
        for (std::size_t unit = 0; unit < 65536; ++unit) starts[unit + 1] += starts[unit];
        // On the heap: 256 KB is too much for the stack of a thread.
        std::unique_ptr<std::uint32_t[]> next(new std::uint32_t[65536]);
        for (std::size_t unit = 0; unit < 65536; ++unit) next[unit] = starts[unit];
        for (std::size_t unit = 0; unit < 65536; ++unit)
            units[next[table.entries[unit]]++] = static_cast<char16_t>(unit);
    }

    std::uint32_t starts[65537] = {};
    char16_t units[65536];
};

template <const ConversionTable& (*Table)()>
const Inverse& inverse() {
    static const Inverse made(Table());
    return made;
}

const Inverse& inverseOf(const ConversionTable& table) {
    if (&table == &upperCharsTable()) return inverse<upperCharsTable>();
    if (&table == &umlautsCharsTable()) return inverse<umlautsCharsTable>();
    return inverse<upperUmlautsCharsTable>();
}

}  // namespace

std::span<const char16_t> unitsFoldedTo(char16_t unit, const ConversionTable& table) {
    const Inverse& inverse = inverseOf(table);
    return {inverse.units + inverse.starts[unit], inverse.starts[unit + 1u] - inverse.starts[unit]};
}

}  // namespace velmo::detail
