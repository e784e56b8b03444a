// The counting looks at 64 units a step, as a mask of each unit that matters. What is inside quotes
// is then a sum without carries over the mask of the quotes, and no unit is branched on. Two quotes
// side by side within quotes are skipped as a pair; closing and opening again comes to the same.
#include "readers/SheetSeparator.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "readers/UnitMasks.h"

namespace velmo::detail {
namespace {

/// Each bit becomes the sum of those up to it.
std::uint64_t prefixXor(std::uint64_t bits) {
    for (unsigned shift = 1; shift < 64; shift *= 2) bits ^= bits << shift;
    return bits;
}

struct Counts {
    std::size_t tabs = 0, commas = 0, semicolons = 0;
    bool quoted;
    std::uint64_t inside = 0;  ///< all bits set between steps that are within quotes

    void take(const char16_t* units) {
        const AsciiBlock block(units);
        if (const std::uint64_t quotes = quoted ? block.maskOf('"') : 0)
            inside ^= prefixXor(quotes);
        add(tabs, block.maskOf('\t'));
        add(commas, block.maskOf(','));
        add(semicolons, block.maskOf(';'));
        inside = inside >> 63 ? ~std::uint64_t{0} : 0;
    }

private:
    void add(std::size_t& count, std::uint64_t mask) const {
        // Most masks are empty.
        if (mask &= ~inside) count += static_cast<std::size_t>(std::popcount(mask));
    }
};

}  // namespace

SheetSeparator sheetSeparator(std::u16string_view text, bool quoted) {
    Counts counts{.quoted = quoted};
    const char16_t* from = text.data();
    const char16_t* const to = from + text.size();
    for (; to - from >= BlockOfMask; from += BlockOfMask) counts.take(from);
    counts.take(LastBlock(from, to).units);
    if (counts.tabs > std::max(counts.commas, counts.semicolons)) return {u'\t', counts.tabs};
    if (counts.commas > counts.semicolons) return {u',', counts.commas};
    return {u';', counts.semicolons};
}

}  // namespace velmo::detail
