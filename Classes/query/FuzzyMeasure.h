// The resemblance of two arrays of units. It is taken where words are looked for by it,
// after cheaper tests have failed to rule them out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "text/SmallBuffer.h"

namespace velmo::detail {

/// Up to so many units on the longer side their places are looked for one by one.
inline constexpr std::size_t ShortMeasure = 512;

/// Finds the places of a unit that are still free by looking.
class LookedUpPlaces {
public:
    explicit LookedUpPlaces(std::u16string_view units)
        : units_(units), isTaken_(units.size(), false) {}

    bool isFree(std::size_t place) const { return !isTaken_[place]; }
    void take(std::size_t place) { isTaken_[place] = true; }
    /// The first free place that holds the unit, or the number of places.
    std::size_t first(char16_t unit) const {
        std::size_t place = 0;
        while (place < units_.size() && (units_[place] != unit || isTaken_[place])) ++place;
        return place;
    }

private:
    std::u16string_view units_;
    SmallBuffer<bool, ShortMeasure> isTaken_;
};

/// The same with the places of each unit in a chain, so that long arrays take linear time.
class ChainedPlaces {
public:
    explicit ChainedPlaces(std::u16string_view units)
        : heads_(65536, units.size()), next_(units.size()), isTaken_(units.size()) {
        for (std::size_t place = units.size(); place-- > 0;) {
            next_[place] = heads_[units[place]];
            heads_[units[place]] = place;
        }
    }

    bool isFree(std::size_t place) const { return !isTaken_[place]; }
    void take(std::size_t place) { isTaken_[place] = true; }
    std::size_t first(char16_t unit) {
        std::size_t& head = heads_[unit];
        while (head < next_.size() && isTaken_[head]) head = next_[head];
        return head;
    }

private:
    std::vector<std::size_t> heads_;  // by unit: its first place that may be free
    std::vector<std::size_t> next_;
    std::vector<bool> isTaken_;
};

/// For each unit of the short side the place on the long one where the last hit makes it
/// expected, or else the first free place. A hit elsewhere counts too, but it is displaced
/// and sets the place at which the next ones are expected.
template <class Places>
double fuzzyMeasure(std::u16string_view longer, std::u16string_view shorter) {
    Places places(longer);
    std::size_t matches = 0, displaced = 0;
    std::int64_t shift = 0;  // of the last hit: its place on the short side less the other
    for (std::size_t i = 0; i < shorter.size(); ++i) {
        // Out of range wraps around to a place that there is not.
        const std::size_t expected = i - static_cast<std::size_t>(shift);
        std::size_t place = expected;
        if (expected >= longer.size() || longer[expected] != shorter[i] || !places.isFree(expected))
            place = places.first(shorter[i]);
        if (place == longer.size()) continue;
        places.take(place);
        ++matches;
        if (place != expected && i != 0) ++displaced;
        shift = static_cast<std::int64_t>(i) - static_cast<std::int64_t>(place);
    }
    const auto length = static_cast<double>(longer.size());
    return static_cast<double>(matches) * (1.0 - static_cast<double>(displaced) / length) / length;
}

/// The measure as both sides stand; they are folded already.
inline double fuzzyAnalogy(std::u16string_view first, std::u16string_view second) {
    const bool firstIsLonger = first.size() > second.size();
    const std::u16string_view longer = firstIsLonger ? first : second;
    const std::u16string_view shorter = firstIsLonger ? second : first;
    return longer.size() <= ShortMeasure ? fuzzyMeasure<LookedUpPlaces>(longer, shorter)
                                         : fuzzyMeasure<ChainedPlaces>(longer, shorter);
}

}  // namespace velmo::detail
