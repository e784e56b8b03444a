// Search for a pattern of units. Candidates are found many starts at a time by two units of
// the pattern, its anchors, and then compared whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>

#include "text/UnitFold.h"

namespace velmo::detail {

/// A unit of a pattern: where it stands in it, and all units of the text that may count as
/// the same. The first is repeated where there are fewer than three.
struct Anchor {
    std::size_t offset;
    char16_t variants[3];
};

/// The first start from the given one up to (and without) the end of the starts, at which
/// both anchors stand; the end if there is none. The text must reach behind every anchor of
/// every start. The fewer variants the anchors have, the faster the search.
VELMO_API std::size_t nextCandidate(const char16_t* text, std::size_t start, std::size_t starts,
                                    const Anchor& first, const Anchor& second) noexcept;

/// The anchor of a unit that is compared as it is.
inline Anchor exactAnchor(std::size_t offset, char16_t unit) noexcept {
    return {offset, {unit, unit, unit}};
}

/// The anchor of an ASCII unit that is compared without regard to case. Three non-ASCII
/// letters have an ASCII letter as their other case: U+0131, U+017F and U+212A.
inline Anchor caseAnchor(std::size_t offset, char16_t unit) noexcept {
    const auto lower = static_cast<char16_t>(unit | 0x20);
    if (lower < u'a' || lower > u'z') return exactAnchor(offset, unit);
    const char16_t other = lower == u'i'   ? u'\u0131'
                           : lower == u's' ? u'\u017F'
                           : lower == u'k' ? u'\u212A'
                                           : lower;
    return {offset, {lower, static_cast<char16_t>(unit & ~0x20), other}};
}

/// The start of the first occurrence among the given number of starts, or NotFound. The
/// pattern has at least one unit, and the text reaches behind the pattern at every start.
template <class Unit, class Fold>
std::uint64_t firstOccurrence(const char16_t* text, std::size_t starts,
                              std::basic_string_view<Unit> pattern, const Fold& fold) noexcept {
    const auto matches = [&](std::size_t start) {
        return sameUnits(text + start, pattern.data(), pattern.size(), fold);
    };
    const auto search = [&](const Anchor& first, const Anchor& second) -> std::uint64_t {
        for (std::size_t start = 0;; ++start) {
            start = nextCandidate(text, start, starts, first, second);
            if (start == starts) return NotFound;
            if (matches(start)) return start;
        }
    };
    if constexpr (Fold::changesCase) {
        // The anchors are the outermost ASCII units. Without one, every start is tried.
        const auto isAscii = [&](std::size_t i) { return widened(pattern[i]) < 128; };
        std::size_t first = 0, last = pattern.size();
        while (first < last && !isAscii(first)) ++first;
        if (first < last) {
            while (!isAscii(--last)) {
            }
            return search(caseAnchor(first, widened(pattern[first])),
                          caseAnchor(last, widened(pattern[last])));
        }
        for (std::size_t start = 0; start < starts; ++start)
            if (matches(start)) return start;
        return NotFound;
    } else {
        return search(exactAnchor(0, widened(pattern.front())),
                      exactAnchor(pattern.size() - 1, widened(pattern.back())));
    }
}

/// The same with every start at which the whole pattern fits.
template <class Unit, class Fold>
std::uint64_t firstOccurrence(std::u16string_view text, std::basic_string_view<Unit> pattern,
                              const Fold& fold) noexcept {
    if (pattern.empty() || pattern.size() > text.size()) return NotFound;
    return firstOccurrence(text.data(), text.size() - pattern.size() + 1, pattern, fold);
}

}  // namespace velmo::detail
