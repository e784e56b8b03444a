// Which two units of a pattern to look for in a text. They must stand at a fixed distance from
// each other, so they come from one stretch without a star; and the rarer they are in text, the
// fewer places need a closer look. A set or a ? holds a place and cannot be looked for itself.
#include "query/PatternAnchors.h"

#include <optional>
#include <span>

#include "query/FoldVariants.h"
#include "query/WildcardShape.h"

namespace velmo::detail {
namespace {

/// The anchor of a unit, unless too many units of a text may stand for it.
std::optional<Anchor> anchorOf(std::size_t offset, char16_t unit, const ConversionTable* table) {
    if (!table) return exactAnchor(offset, unit);
    const std::span<const char16_t> variants = unitsFoldedTo(unit, *table);
    // Three is what the kernels compare with in one step.
    if (variants.empty() || variants.size() > 3) return std::nullopt;
    return Anchor{offset, {variants[0], variants[variants.size() / 2], variants.back()}};
}

/// Elements between two stars, with the anchors found in them so far.
struct Stretch {
    std::size_t length = 0;
    std::optional<Anchor> first, second;
    int firstRarity = -1, secondRarity = -1;

    void add(char16_t element, const ConversionTable* table) {
        const std::size_t offset = length++;
        if (element == u'?' || element == u'[') return;
        const auto anchor = anchorOf(offset, element, table);
        if (!anchor) return;
        // Text outside ASCII is taken to be of one script: none of its letters is rarer.
        const int rarity = std::max(rarityOf(element), 0);
        if (rarity > firstRarity) {
            second = std::exchange(first, anchor);
            secondRarity = std::exchange(firstRarity, rarity);
        } else if (rarity > secondRarity) {
            second = anchor;
            secondRarity = rarity;
        }
    }
    int worth() const { return firstRarity + secondRarity; }
};

PatternAnchors::Place placeOf(WildcardType type, bool isFirst, bool isLast) {
    using enum WildcardType;
    switch (type) {
        case Suffix:
        case SuffixSets:
            return PatternAnchors::AtEnd;
        case Infix:
            return PatternAnchors::Inside;
        default:
            return isFirst  ? PatternAnchors::AtStart
                   : isLast ? PatternAnchors::AtEnd
                            : PatternAnchors::Inside;
    }
}

}  // namespace

PatternAnchors anchorsOf(std::u16string_view core, WildcardType type,
                         const ConversionTable* table) {
    PatternAnchors best;
    // Below what a stretch with one anchor of no worth comes to, so that any is better than none.
    int bestWorth = -2;
    Stretch stretch;
    bool isFirst = true;
    const auto close = [&](bool isLast) {
        if (stretch.first && stretch.worth() > bestWorth) {
            bestWorth = stretch.worth();
            best = {placeOf(type, isFirst, isLast), stretch.length, *stretch.first,
                    // One unit alone is sought twice at the same place, so that there is one
                    // kernel for both.
                    stretch.second.value_or(*stretch.first)};
        }
        stretch = {};
        isFirst = false;
    };
    for (std::size_t at = 0; at < core.size(); at = afterElement(core, at)) {
        if (core[at] == u'*')
            close(false);
        else
            stretch.add(core[at], table);
    }
    close(true);
    return best;
}

}  // namespace velmo::detail
