// Classes of units that trimming, removal and collapsing work on. Each is a predicate that
// stays inline, and finds its first member in [from, to), or to. isSparse tells that members
// are found many units at a time and are mostly far apart.
#pragma once

#include <algorithm>

#include <velmocore/text/CharacterSets.h>

#include "text/UnitScan.h"

namespace velmo::detail {

struct InSet {
    static constexpr bool isSparse = false;
    const CharacterSetRep& set;
    bool operator()(char16_t unit) const noexcept { return set.contains(unit); }
    const char16_t* find(const char16_t* from, const char16_t* to) const noexcept {
        return std::find_if(from, to, *this);
    }
};

struct NotInSet {
    static constexpr bool isSparse = false;
    const CharacterSetRep& set;
    bool operator()(char16_t unit) const noexcept { return !set.contains(unit); }
    const char16_t* find(const char16_t* from, const char16_t* to) const noexcept {
        return std::find_if(from, to, *this);
    }
};

struct OneUnit {
    static constexpr bool isSparse = true;
    char16_t unit;
    bool operator()(char16_t c) const noexcept { return c == unit; }
    const char16_t* find(const char16_t* from, const char16_t* to) const noexcept {
        return scan::find(from, to, unit);
    }
};

struct Feeds {
    static constexpr bool isSparse = true;
    bool operator()(char16_t unit) const noexcept { return isFeedUnit(unit); }
    const char16_t* find(const char16_t* from, const char16_t* to) const noexcept {
        return scan::findAnyOf<0x0003, 0x000A, 0x000C, 0x000D, 0x2028, 0x2029, 0xFEFF, 0xFFFC>(from,
                                                                                               to);
    }
};

/// The class of the operations with an "andFeeds" argument.
inline InSet spacesAndFeeds(bool andFeeds) {
    return {andFeeds ? whiteCharacterSetRep() : spaceCharacterSetRep()};
}

}  // namespace velmo::detail
