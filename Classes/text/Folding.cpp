// One mapping routine for all operations. Its settings are template arguments: the mapping
// of a unit, and whether a text that stays as it is comes back itself.
#include <velmocore/text/Folding.h>

#include <algorithm>
#include <cstring>

#include <velmocore/text/CharacterSets.h>

#include "platform/Unicode.h"
#include "text/UnitFold.h"

namespace velmo {
namespace {

using View = std::u16string_view;
enum class Unchanged { GivesReceiver, GivesCopy };

detail::TableFold through(const ConversionTable& table) { return {table}; }

template <class Map>
String mappedUnits(View units, Map map) {
    StringBuilder out;
    std::transform(units.begin(), units.end(), out.prepare(units.size()), map);
    out.commit(units.size());
    return out.finish();
}

template <class Map>
String mapped(const String& string, Map map, Unchanged unchanged) {
    if (string.isEmpty()) return string;
    if (unchanged == Unchanged::GivesReceiver &&
        std::all_of(string.begin(), string.end(), [&](char16_t c) { return map(c) == c; }))
        return string;
    return mappedUnits(string, map);
}

/// Composes the text, then maps it. Text that is composed already is not copied for it.
template <class Map>
String normalizedAndMapped(const String& string, Map map) {
    if (string.isEmpty()) return string;
    if (unicode::isNormalizedC(string)) return mappedUnits(string, map);
    return mappedUnits(unicode::normalized(string, unicode::Form::C), map);
}

bool isUnchangedBy(View string, const ConversionTable& table) {
    return std::all_of(string.begin(), string.end(), [&](char16_t c) { return table[c] == c; });
}

/// Whether no bit of the mask is set in the bytes; 32 at a time.
bool hasNoBits(const void* bytes, std::size_t size, std::uint64_t mask) {
    const auto* in = static_cast<const unsigned char*>(bytes);
    for (; size >= 32; in += 32, size -= 32) {
        std::uint64_t words[4];
        std::memcpy(words, in, 32);
        if ((words[0] | words[1] | words[2] | words[3]) & mask) return false;
    }
    std::uint64_t word = 0;
    for (; size >= 8; in += 8, size -= 8) {
        std::memcpy(&word, in, 8);
        if (word & mask) return false;
    }
    word = 0;
    if (size) std::memcpy(&word, in, size);
    return (word & mask) == 0;
}

}  // namespace

String nonUmlautedString(const String& string) {
    return mapped(string, through(umlautsCharsTable()), Unchanged::GivesReceiver);
}

String lowercaseNonUmlautedString(const String& string) {
    return mapped(string, through(lowerUmlautsCharsTable()), Unchanged::GivesReceiver);
}

String uppercaseNonUmlautedString(const String& string) {
    return mapped(string, through(upperUmlautsCharsTable()), Unchanged::GivesReceiver);
}

String nonUmlautedNormalizedString(const String& string) {
    return normalizedAndMapped(string, through(umlautsCharsTable()));
}

String lowercaseNonUmlautedNormalizedString(const String& string) {
    return normalizedAndMapped(string, through(lowerUmlautsCharsTable()));
}

String uppercaseNonUmlautedNormalizedString(const String& string) {
    return normalizedAndMapped(string, through(upperUmlautsCharsTable()));
}

String asciiString(const String& string) {
    return normalizedAndMapped(string, detail::AsciiFold{});
}

String lowercaseAsciiString(const String& string) {
    return normalizedAndMapped(string, detail::LowerAsciiFold{});
}

String uppercaseAsciiString(const String& string) {
    return normalizedAndMapped(string, detail::UpperAsciiFold{});
}

String stringByApplyingConversionTable(const String& string, const ConversionTable* table) {
    if (!table) return string;
    return mapped(string, through(*table), Unchanged::GivesCopy);
}

String stringByRemovingNonAlphaNumericCharactersAndApplyingConversionTable(
    const String& string, const ConversionTable* table) {
    if (string.isEmpty()) return string;
    const CharacterSetRep& kept = alphaNumCharacterSetRep();
    StringBuilder out;
    char16_t* const start = out.prepare(string.length());
    char16_t* write = start;
    for (char16_t unit : string)
        if (kept.contains(unit)) *write++ = table ? (*table)[unit] : unit;
    out.commit(static_cast<std::size_t>(write - start));
    return out.finish();
}

bool isAsciiString(View string) {
    return hasNoBits(string.data(), string.size() * sizeof(char16_t), 0xFF80FF80FF80FF80);
}

bool isAsciiString(Bytes data) { return hasNoBits(data.data(), data.size(), 0x8080808080808080); }

bool isUmlautedString(View string) { return !isUnchangedBy(string, umlautsCharsTable()); }
bool isLowerCaseString(View string) { return isUnchangedBy(string, lowerCharsTable()); }
bool isUpperCaseString(View string) { return isUnchangedBy(string, upperCharsTable()); }

char16_t firstAlphaCharacter() {
    static const char16_t first = [] {
        char16_t unit = 0;
        while (!alphaCharacterSetRep().contains(unit)) ++unit;
        return unit;
    }();
    return first;
}

char16_t lastAlphaCharacter() {
    static const char16_t last = [] {
        char16_t unit = 65535;
        while (!alphaCharacterSetRep().contains(unit)) --unit;
        return unit;
    }();
    return last;
}

}  // namespace velmo
