// The tables are full arrays and not sparse maps: a lookup is one indexed load in the
// innermost loops of the library. Unicode is asked only for the units that can change.
#include <velmocore/text/ConversionTables.h>

#include "platform/Ascii.h"
#include "platform/Unicode.h"

namespace velmo {
namespace {

// The tables belong to the process: they are never freed, so that threads which
// outlive main() may still use them.
template <class Map>
const ConversionTable& makeTable(Map map) {
    auto* table = new ConversionTable;
    // U+FFFF is no character, and maps to itself without being asked for.
    for (unsigned unit = 0; unit < 65535; ++unit)
        table->entries[unit] = map(static_cast<char16_t>(unit));
    table->entries[65535] = 65535;
    return *table;
}

/// Applies the mapping to the units of the categories, and leaves the others alone.
const ConversionTable& makeCategoryTable(std::uint32_t categories,
                                         char16_t (*map)(char16_t) noexcept) {
    return makeTable([=](char16_t unit) {
        return (detail::unicode::categoriesOf(unit) & categories) ? map(unit) : unit;
    });
}

const ConversionTable& makeComposedTable(const ConversionTable& outer,
                                         const ConversionTable& inner) {
    return makeTable([&](char16_t unit) { return outer[inner[unit]]; });
}

}  // namespace

const ConversionTable& lowerCharsTable() {
    static const ConversionTable& table =
        makeCategoryTable(detail::unicode::UppercaseOrTitle, &detail::unicode::lowerCase);
    return table;
}

const ConversionTable& upperCharsTable() {
    static const ConversionTable& table =
        makeCategoryTable(detail::unicode::Lowercase, &detail::unicode::upperCase);
    return table;
}

const ConversionTable& umlautsCharsTable() {
    static const ConversionTable& table = makeCategoryTable(
        detail::unicode::Letter | detail::unicode::Mark, &detail::unicode::withoutDiacritics);
    return table;
}

const ConversionTable& lowerUmlautsCharsTable() {
    static const ConversionTable& table = makeComposedTable(lowerCharsTable(), umlautsCharsTable());
    return table;
}

const ConversionTable& upperUmlautsCharsTable() {
    static const ConversionTable& table = makeComposedTable(upperCharsTable(), umlautsCharsTable());
    return table;
}

char16_t toLower(char16_t unit) { return lowerCharsTable()[unit]; }
char16_t toUpper(char16_t unit) { return upperCharsTable()[unit]; }
char16_t umlautsToAscii(char16_t unit) { return umlautsCharsTable()[unit]; }
char16_t umlautsToUpperAscii(char16_t unit) { return upperUmlautsCharsTable()[unit]; }
char16_t umlautsToLowerAscii(char16_t unit) { return lowerUmlautsCharsTable()[unit]; }

char16_t toAscii(char16_t unit) {
    const char16_t plain = umlautsCharsTable()[unit];
    return plain < 128 ? plain : u' ';
}

char16_t toUpperAscii(char16_t unit) { return detail::ascii::toUpper(toAscii(unit)); }

char16_t toLowerAscii(char16_t unit) { return detail::ascii::toLower(toAscii(unit)); }

}  // namespace velmo
