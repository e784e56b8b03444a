// One mapping routine for all operations. Its settings are template arguments: the mapping
// of a unit, and whether a text that stays as it is comes back itself.
//
// A mapping goes from unit to unit, so that the length stays and the result is written in one
// pass. What may change the length, such as the upper case of a sharp s, is the matter of
// Normalisation.
#include <velmocore/text/Folding.h>

#include <algorithm>
#include <cstring>

#include <velmocore/text/CharacterSets.h>

#include "text/Composition.h"
#include "text/Remove.h"
#include "text/UnitFold.h"
#include "text/UnitMap.h"
#include "text/UnitScan.h"

namespace velmo {
namespace {

using View = std::u16string_view;
enum class Unchanged { GivesReceiver, GivesCopy };

detail::TableFold through(const ConversionTable& table) { return {table}; }

template <class Map>
String mapped(const String& string, const Map& map, Unchanged unchanged) {
    if (string.isEmpty()) return string;
    if (unchanged == Unchanged::GivesReceiver &&
        detail::firstMapped(string.begin(), string.end(), map) == string.end())
        return string;
    return detail::mappedString(string, map);
}

template <class Map>
String normalizedAndMapped(const String& string, const Map& map) {
    if (string.isEmpty()) return string;
    return detail::withComposed(string, [&](View text) { return detail::mappedString(text, map); });
}

bool isUnchangedBy(View string, const ConversionTable& table) {
    const char16_t* const end = string.data() + string.size();
    return detail::firstMapped(string.data(), end, through(table)) == end;
}

/// Whether all bytes are ASCII; 32 at a time.
bool areAscii(const std::uint8_t* bytes, std::size_t size) {
    constexpr std::uint64_t High = 0x8080808080808080;
    // One test for four words; memcpy() as the bytes may stand at any address.
    for (; size >= 32; bytes += 32, size -= 32) {
        std::uint64_t words[4];
        std::memcpy(words, bytes, 32);
        if ((words[0] | words[1] | words[2] | words[3]) & High) return false;
    }
    return std::all_of(bytes, bytes + size, [](std::uint8_t byte) { return byte < 128; });
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

// The forms with a normalisation compose first: a letter and a mark of its own would each be
// looked up alone, and the mark would stay.
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
    return detail::withFold(table, [&](const auto& fold) {
        return detail::keptUnits(string, detail::InSet{alphaNumCharacterSetRep()}, fold);
    });
}

bool isAsciiString(View string) {
    const char16_t* const end = string.data() + string.size();
    return detail::scan::findNonAscii(string.data(), end) == end;
}

bool isAsciiString(Bytes data) { return areAscii(data.data(), data.size()); }

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
