// Ways to look at a unit before it is compared: as it is, in upper case, without regard to
// case, or through a table of the caller. They are passed as template arguments, so that a
// loop holds only the indexed load it needs.
#pragma once

#include <cstddef>
#include <string>

#include <velmocore/platform/Matching.h>
#include <velmocore/text/ConversionTables.h>

#include "platform/Ascii.h"

namespace velmo::detail {

/// A byte as a unit. The sign is kept, so that a byte above 127 becomes a unit from U+FF80
/// upward and meets no Latin-1 unit: byte arguments are ASCII keywords.
inline char16_t widened(char byte) noexcept {
    return static_cast<char16_t>(static_cast<signed char>(byte));
}
inline char16_t widened(char16_t unit) noexcept { return unit; }

// changesCase tells a search by how many variants of a unit to look for.

struct NoFold {
    static constexpr bool changesCase = false;
    char16_t operator()(char16_t unit) const noexcept { return unit; }
};

struct TableFold {
    const ConversionTable& table;
    char16_t operator()(char16_t unit) const noexcept { return table[unit]; }
};

struct UpperFold {
    static constexpr bool changesCase = true;
    const ConversionTable& upper = upperCharsTable();
    char16_t operator()(char16_t unit) const noexcept { return upper[unit]; }
};

/// Upper case first, then lower case: any two units that either table makes equal are equal.
struct CaseFold {
    static constexpr bool changesCase = true;
    const ConversionTable& upper = upperCharsTable();
    const ConversionTable& lower = lowerCharsTable();
    char16_t operator()(char16_t unit) const noexcept { return lower[upper[unit]]; }
};

/// toAscii(), toUpperAscii() and toLowerAscii() without a call for each unit.
struct AsciiFold {
    const ConversionTable& plain = umlautsCharsTable();
    char16_t operator()(char16_t unit) const noexcept {
        const char16_t c = plain[unit];
        return c < 128 ? c : u' ';
    }
};

struct UpperAsciiFold {
    AsciiFold plain;
    char16_t operator()(char16_t unit) const noexcept { return ascii::toUpper(plain(unit)); }
};

struct LowerAsciiFold {
    AsciiFold plain;
    char16_t operator()(char16_t unit) const noexcept { return ascii::toLower(plain(unit)); }
};

/// Calls the function with the folding of a table that may be absent.
template <class Function>
auto withFold(const ConversionTable* table, Function function) {
    return table ? function(TableFold{*table}) : function(NoFold{});
}

/// Calls the function with the folding of a case flag.
template <class Function>
auto withFold(Case letterCase, Function function) {
    return letterCase == Case::Sensitive ? function(NoFold{}) : function(CaseFold{});
}

template <class Fold>
bool sameUnit(char16_t a, char16_t b, const Fold& fold) noexcept {
    return a == b || fold(a) == fold(b);
}

/// Whether count units are the same after folding.
template <class Unit, class Fold>
bool sameUnits(const char16_t* a, const Unit* b, std::size_t count, const Fold& fold) noexcept {
    for (std::size_t i = 0; i < count; ++i)
        if (!sameUnit(a[i], widened(b[i]), fold)) return false;
    return true;
}

/// How many units at the start are the same after folding.
template <class Unit, class Fold>
std::size_t equalUnits(const char16_t* a, const Unit* b, std::size_t count,
                       const Fold& fold) noexcept {
    std::size_t i = 0;
    while (i < count && sameUnit(a[i], widened(b[i]), fold)) ++i;
    return i;
}

inline bool sameUnits(const char16_t* a, const char16_t* b, std::size_t count, NoFold) noexcept {
    return std::char_traits<char16_t>::compare(a, b, count) == 0;
}

}  // namespace velmo::detail
