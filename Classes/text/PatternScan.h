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

/// How well an ASCII unit tells a word from other text: letters by how rare they are in the
/// languages of Europe, but those with a third variant behind all others. Below 0 for units
/// outside ASCII, which cannot be anchors.
inline int rarityOf(char16_t unit) noexcept {
    constexpr std::string_view FromCommonToRare = "isk etaonrldchmupgfvybwzxjq";
    if (unit > 127) return -1;
    const char letter =
        unit >= u'A' && unit <= u'Z' ? static_cast<char>(unit + 32) : static_cast<char>(unit);
    const std::size_t rank = FromCommonToRare.find(letter);
    return rank == FromCommonToRare.npos ? 15 : static_cast<int>(rank);
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
        // The anchors are the two ASCII units that are rarest in text. Without any, every
        // start is tried.
        std::size_t first = pattern.size(), second = pattern.size();
        const auto rarity = [&](std::size_t i) {
            return i < pattern.size() ? rarityOf(widened(pattern[i])) : -1;
        };
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            if (rarity(i) > rarity(first)) {
                second = first;
                first = i;
            } else if (rarity(i) > rarity(second)) {
                second = i;
            }
        }
        if (rarity(first) >= 0) {
            if (rarity(second) < 0) second = first;
            return search(caseAnchor(first, widened(pattern[first])),
                          caseAnchor(second, widened(pattern[second])));
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

/// The last occurrence, or NotFound.
template <class Fold>
std::uint64_t lastOccurrence(std::u16string_view text, std::u16string_view pattern,
                             const Fold& fold) {
    if (pattern.empty() || pattern.size() > text.size()) return NotFound;
    for (std::size_t start = text.size() - pattern.size() + 1; start-- > 0;)
        if (sameUnits(text.data() + start, pattern.data(), pattern.size(), fold)) return start;
    return NotFound;
}

}  // namespace velmo::detail
