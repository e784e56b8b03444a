// Search for a pattern of units. Candidates are found many starts at a time by two units of
// the pattern, its anchors, and then compared whole. Where that compares too much, the linear
// search of TwoWaySearch.h takes over for a while, so that no text makes the time grow with the
// length of the pattern.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>

#include "platform/Ascii.h"
#include "text/TwoWaySearch.h"
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
    if (!ascii::isLetter(unit)) return exactAnchor(offset, unit);
    const char16_t lower = ascii::toLower(unit);
    const char16_t other = lower == u'i'   ? u'\u0131'
                           : lower == u's' ? u'\u017F'
                           : lower == u'k' ? u'\u212A'
                                           : lower;
    return {offset, {lower, ascii::toUpper(unit), other}};
}

/// How well an ASCII unit tells a word from other text: letters by how rare they are in the
/// languages of Europe, but those with a third variant behind all others. Below 0 for units
/// outside ASCII, which cannot be anchors.
inline int rarityOf(char16_t unit) noexcept {
    constexpr std::string_view FromCommonToRare = "isk etaonrldchmupgfvybwzxjq";
    if (unit > 127) return -1;
    const std::size_t rank = FromCommonToRare.find(ascii::toLower(static_cast<char>(unit)));
    return rank == FromCommonToRare.npos ? 15 : static_cast<int>(rank);
}

/// The same for any unit compared without regard to case; absent if more than three units count
/// as it.
VELMO_API std::optional<Anchor> anyCaseAnchor(std::size_t offset, char16_t unit);

/// How well a unit compared without regard to case does as an anchor; below 0 if not at all.
inline int worthOfAnchor(char16_t unit) {
    if (unit <= 127) return rarityOf(unit);
    const auto anchor = anyCaseAnchor(0, unit);
    // Text outside ASCII is taken to be of one script: none of its letters is rarer.
    return !anchor ? -1 : anchor->variants[1] == anchor->variants[2] ? 15 : 1;
}

struct AnchorPair {
    Anchor first, second;
};

/// The anchors of a pattern: the two units that are rarest in text. Absent without any.
template <class Unit>
std::optional<AnchorPair> anyCaseAnchors(std::basic_string_view<Unit> pattern) {
    struct Choice {
        std::size_t index = 0;
        int worth = -1;
    } first, second;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const Choice next{i, worthOfAnchor(widened(pattern[i]))};
        if (next.worth > first.worth)
            second = std::exchange(first, next);
        else if (next.worth > second.worth)
            second = next;
    }
    if (first.worth < 0) return std::nullopt;
    if (second.worth < 0) second = first;
    const auto anchor = [&](const Choice& choice) {
        return *anyCaseAnchor(choice.index, widened(pattern[choice.index]));
    };
    return AnchorPair{anchor(first), anchor(second)};
}

template <class Unit>
AnchorPair exactAnchors(std::basic_string_view<Unit> pattern) noexcept {
    return {exactAnchor(0, widened(pattern.front())),
            exactAnchor(pattern.size() - 1, widened(pattern.back()))};
}

/// A search by anchors, with the linear one behind it for the stretches of a text in which
/// candidates stand close together and agree with much of the pattern, as runs of one unit do.
template <class Unit, class Fold>
class UnitPatternSearch {
public:
    UnitPatternSearch(const char16_t* text, std::size_t starts,
                      std::basic_string_view<Unit> pattern, const Fold& fold) noexcept
        : text_(text), starts_(starts), pattern_(pattern), fold_(fold) {}

    std::uint64_t byAnchors(const AnchorPair& anchors) noexcept {
        std::size_t phase = 0, spent = 0;  // where the search by anchors began, and its work
        for (std::size_t start = 0;; ++start) {
            start = nextCandidate(text_, start, starts_, anchors.first, anchors.second);
            if (start == starts_) return NotFound;
            const std::size_t equal =
                equalUnits(text_ + start, pattern_.data(), pattern_.size(), fold_);
            if (equal == pattern_.size()) return start;
            spent += equal + CandidateWork;
            if (spent <= 4 * (start - phase) + 16 * pattern_.size() + 256) continue;
            const std::size_t end = linearEnd(start);
            const std::uint64_t hit = linear(start, end);
            if (hit != NotFound || end == starts_) return hit;
            start = end - 1;
            phase = end;
            spent = 0;
        }
    }

    /// The first occurrence among the starts of [from, to).
    std::uint64_t linear(std::size_t from, std::size_t to) const noexcept {
        const auto textUnit = [&](std::size_t i) { return fold_(text_[from + i]); };
        const auto patternUnit = [&](std::size_t i) { return fold_(widened(pattern_[i])); };
        TwoWaySearch search(textUnit, to - from + pattern_.size() - 1, patternUnit,
                            pattern_.size());
        const std::uint64_t hit = search.next();
        return hit == NotFound ? NotFound : from + hit;
    }

private:
    static constexpr std::size_t CandidateWork = 8;

    /// Long enough to be worth the linear search's preparation.
    std::size_t linearEnd(std::size_t start) const noexcept {
        const std::size_t length = std::max<std::size_t>(4096, 16 * pattern_.size());
        return start + std::min(length, starts_ - start);
    }

    const char16_t* text_;
    std::size_t starts_;
    std::basic_string_view<Unit> pattern_;
    const Fold& fold_;
};

/// The start of the first occurrence among the given number of starts, or NotFound. The
/// pattern has at least one unit, and the text reaches behind the pattern at every start.
template <class Unit, class Fold>
std::uint64_t firstOccurrence(const char16_t* text, std::size_t starts,
                              std::basic_string_view<Unit> pattern, const Fold& fold) {
    UnitPatternSearch<Unit, Fold> search(text, starts, pattern, fold);
    if constexpr (Fold::changesCase) {
        const auto anchors = anyCaseAnchors(pattern);
        return anchors ? search.byAnchors(*anchors) : search.linear(0, starts);
    } else {
        return search.byAnchors(exactAnchors(pattern));
    }
}

/// The same with every start at which the whole pattern fits.
template <class Unit, class Fold>
std::uint64_t firstOccurrence(std::u16string_view text, std::basic_string_view<Unit> pattern,
                              const Fold& fold) {
    if (pattern.empty() || pattern.size() > text.size()) return NotFound;
    return firstOccurrence(text.data(), text.size() - pattern.size() + 1, pattern, fold);
}

/// The last occurrence, or NotFound.
template <class Fold>
std::uint64_t lastOccurrence(std::u16string_view text, std::u16string_view pattern,
                             const Fold& fold) noexcept {
    if (pattern.empty() || pattern.size() > text.size()) return NotFound;
    const auto textUnit = [&](std::size_t i) { return fold(text[text.size() - 1 - i]); };
    const auto patternUnit = [&](std::size_t i) { return fold(pattern[pattern.size() - 1 - i]); };
    const std::uint64_t hit =
        TwoWaySearch(textUnit, text.size(), patternUnit, pattern.size()).next();
    return hit == NotFound ? NotFound : text.size() - pattern.size() - hit;
}

}  // namespace velmo::detail
