#include <velmocore/text/FastSearch.h>

#include <algorithm>

#include "text/PatternScan.h"
#include "text/SmallBuffer.h"
#include "text/UnitMap.h"

namespace velmo {
namespace {

using namespace detail;

/// Remembers which pairs of neighbours a text has, more or less: a pair that was never put
/// in is mostly not there. One look at a keyword's pairs so spares a walk over the text.
class PairFilter {
public:
    /// Longer texts have too many pairs for it.
    static constexpr std::size_t MaxUnits = 1024;

    explicit PairFilter(std::u16string_view text) {
        for (std::size_t i = 0; i + 1 < text.size(); ++i) {
            const unsigned slot = slotOf(text[i], text[i + 1]);
            bits_[slot / 64] |= std::uint64_t{1} << (slot % 64);
        }
    }
    bool mayHold(std::string_view keyword) const {
        for (std::size_t i = 0; i + 1 < keyword.size(); ++i) {
            const unsigned slot = slotOf(widened(keyword[i]), widened(keyword[i + 1]));
            if (!((bits_[slot / 64] >> (slot % 64)) & 1)) return false;
        }
        return true;
    }

private:
    // 4096 bits are 512 bytes, which are cheap to clear for a text of 1024 units at most. ASCII
    // pairs hardly share a slot: six bits of the first unit lie above all but one of the second.
    static unsigned slotOf(char16_t a, char16_t b) { return ((a << 6) ^ b) & 4095u; }

    std::uint64_t bits_[64] = {};
};

bool containsAny(std::u16string_view text, std::span<const std::string_view> keywords) {
    const auto occurs = [&](std::string_view keyword) {
        return firstOccurrence(text, keyword, NoFold{}) != NotFound;
    };
    // The filter pays for lists of hundreds of keywords over one link. A filter that says no is
    // always right, so the answer is the same with and without it.
    if (text.size() > PairFilter::MaxUnits) return std::ranges::any_of(keywords, occurs);
    const PairFilter pairs(text);
    return std::ranges::any_of(keywords, [&](std::string_view keyword) {
        return pairs.mayHold(keyword) && occurs(keyword);
    });
}

}  // namespace

std::size_t fastContainsUnichars(std::u16string_view text, std::u16string_view pattern) {
    if (pattern.empty() || pattern.size() >= text.size()) return NotFound;
    // One start less than there is, on purpose; see the header.
    return firstOccurrence(text.data(), text.size() - pattern.size(), pattern, NoFold{});
}

std::size_t fastCaseInsensitiveContainsUnichars(std::u16string_view text,
                                                std::u16string_view pattern) {
    return firstOccurrence(text, pattern, UpperFold{});
}

std::size_t fastUnicharsContainChars(std::u16string_view text, std::string_view pattern) {
    return firstOccurrence(text, pattern, NoFold{});
}

std::size_t fastCaseInsensitiveUnicharsContainChars(std::u16string_view text,
                                                    std::string_view pattern) {
    return firstOccurrence(text, pattern, UpperFold{});
}

bool fastContainsSubCStrings(std::u16string_view text, std::span<const std::string_view> keywords,
                             const ConversionTable* table) {
    if (text.empty()) return false;
    if (!table) return containsAny(text, keywords);

    // Mapped once for all keywords, and not once for each.
    SmallBuffer<char16_t> units(text.size());
    mapUnits(text.data(), text.data() + text.size(), units.data(), TableFold{*table});
    return containsAny({units.data(), units.size()}, keywords);
}

}  // namespace velmo
