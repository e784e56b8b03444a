// Each operation is a class of units handed to the one routine of Remove.h. Tabs, feeds and single
// units are found many at a time; digits and sets are tested one by one, as they stand close.
#include <velmocore/text/Removal.h>

#include "text/Remove.h"

namespace velmo {
namespace {

using namespace detail;

constexpr OneUnit Tab{u'\t'};

InSet digits() { return {digitCharacterSetRep()}; }
NotInSet noDigits() { return {digitCharacterSetRep()}; }

CharacterSetRep setOf(std::u16string_view units) {
    CharacterSetRep set;
    set.add(units);
    return set;
}

}  // namespace

String stringByRemovingFeeds(const String& string) { return withoutUnits(string, Feeds{}); }
String stringByRemovingTabs(const String& string) { return withoutUnits(string, Tab); }
String stringByRemovingSpaces(const String& string) {
    return withoutUnits(string, spacesAndFeeds(false));
}
String stringByRemovingDigits(const String& string) { return withoutUnits(string, digits()); }
String stringByRemovingCharacters(const String& string, char16_t unit) {
    return withoutUnits(string, OneUnit{unit});
}
String stringByRemovingCharactersOfString(const String& string, std::u16string_view characters) {
    return withoutUnits(string, InSet{setOf(characters)});
}

String lowercaseStringByRemovingDigits(const String& string) {
    if (string.isEmpty()) return string;
    return keptUnits(string, noDigits(), TableFold{lowerCharsTable()});
}

String uppercaseStringByRemovingDigits(const String& string) {
    if (string.isEmpty()) return string;
    return keptUnits(string, noDigits(), UpperFold{});
}

String stringByRemovingNonIPCharacters(const String& string) {
    if (string.isEmpty()) return string;
    const InSet digit = digits();
    return keptUnits(
        string, [&](char16_t unit) { return unit == u'.' || digit(unit); }, UpperFold{});
}

void removeFeeds(std::u16string& text) { removeUnits(text, Feeds{}); }
void removeTabs(std::u16string& text) { removeUnits(text, Tab); }
void removeSpaces(std::u16string& text) { removeUnits(text, spacesAndFeeds(false)); }
void removeWhiteSpaces(std::u16string& text) { removeUnits(text, spacesAndFeeds(true)); }
void removeDigits(std::u16string& text) { removeUnits(text, digits()); }
void removeCharacters(std::u16string& text, char16_t unit) { removeUnits(text, OneUnit{unit}); }
void removeCharactersOfString(std::u16string& text, std::u16string_view characters) {
    removeUnits(text, InSet{setOf(characters)});
}

}  // namespace velmo
