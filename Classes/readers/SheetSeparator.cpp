// The counting looks at 64 units a step, as a mask of each unit that matters. What is inside quotes
// is then a sum without carries over the mask of the quotes, and no unit is branched on. Two quotes
// side by side within quotes are skipped as a pair; closing and opening again comes to the same.
#include "readers/SheetSeparator.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "text/UnitScan.h"

namespace velmo::detail {
namespace {

constexpr std::size_t StepUnits = 64;

/// Bit i is set if units[i] is the unit.
std::uint64_t maskOf(const char16_t* units, char16_t unit) {
    std::uint64_t mask = 0;
#if defined(__SSE2__)
    for (unsigned i = 0; i < StepUnits; i += 16) {
        const __m128i low = scan::equalTo(scan::loadBlock(units + i), unit);
        const __m128i high = scan::equalTo(scan::loadBlock(units + i + scan::BlockUnits), unit);
        const int bits = _mm_movemask_epi8(_mm_packs_epi16(low, high));
        mask |= static_cast<std::uint64_t>(bits) << i;
    }
#else
    for (unsigned i = 0; i < StepUnits; ++i)
        mask |= static_cast<std::uint64_t>(units[i] == unit) << i;
#endif
    return mask;
}

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
        const std::uint64_t quotes = quoted ? maskOf(units, u'"') : 0;
        if (quotes) inside ^= prefixXor(quotes);
        tabs += count(units, u'\t');
        commas += count(units, u',');
        semicolons += count(units, u';');
        inside = inside >> 63 ? ~std::uint64_t{0} : 0;
    }

private:
    std::size_t count(const char16_t* units, char16_t unit) const {
        return static_cast<std::size_t>(std::popcount(maskOf(units, unit) & ~inside));
    }
};

}  // namespace

char16_t sheetSeparator(std::u16string_view text, bool quoted) {
    Counts counts{.quoted = quoted};
    std::size_t i = 0;
    for (; text.size() - i >= StepUnits; i += StepUnits) counts.take(text.data() + i);
    char16_t rest[StepUnits] = {};
    std::copy(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(), rest);
    counts.take(rest);
    if (counts.tabs > std::max(counts.commas, counts.semicolons)) return u'\t';
    return counts.commas > counts.semicolons ? u',' : u';';
}

}  // namespace velmo::detail
