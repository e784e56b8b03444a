// Nearly all text is in form C already and is proved so by a scan for units above U+02FF, many at
// a time; ICU gets only what that leaves open. Case goes through the tables where they say the
// same as Unicode's full mapping, in which a letter may become several.
#include <velmocore/text/Normalisation.h>

#include <algorithm>

#include <velmocore/text/Folding.h>

#include "platform/Surrogates.h"
#include "platform/Unicode.h"
#include "text/Composition.h"
#include "text/UnitFold.h"
#include "text/UnitMap.h"

namespace velmo {
namespace {

using namespace detail;
using View = std::u16string_view;

/// What must not be kept in stored text.
bool isUnsafe(char16_t unit) {
    // The stretch of private use is that of the word separators, with its last unit.
    return unit == 0 || isSurrogate(unit) || (unit >= 0xF400 && unit <= 0xF8FF);
}

/// Below U+0300 the table says the same as the full mapping, but for U+0130.
bool hasSimpleLowercase(View text) {
    // No early way out, so that the compiler takes many units a step.
    std::uint16_t others = 0;
    for (const char16_t unit : text) others |= unit >= 0x300 || unit == 0x130 ? 1 : 0;
    return others == 0;
}

String lowercased(View text) {
    if (hasSimpleLowercase(text)) return mappedString(text, TableFold{lowerCharsTable()});
    return unicode::lowerCase(text);
}

String uppercased(View text) {
    if (isAsciiString(text)) return mappedString(text, UpperFold{});
    return unicode::upperCase(text);
}

/// The compatibility forms of Unicode would give "st" for the long s with t; "ft" is deliberate,
/// see the header.
View lettersOf(char16_t unit) {
    switch (unit) {
        case 0xFB00:
            return u"ff";
        case 0xFB01:
            return u"fi";
        case 0xFB02:
            return u"fl";
        case 0xFB03:
            return u"ffi";
        case 0xFB04:
            return u"ffl";
        case 0xFB05:
            return u"ft";
        case 0xFB06:
            return u"st";
        case 0x0132:
            return u"IJ";
        case 0x0133:
            return u"ij";
        default:
            return {};
    }
}

}  // namespace

String normalizedString(const String& string, NormalizationForm form) {
    if (string.isEmpty()) return string;
    // A view makes a new string: callers may count on one.
    if (form == NormalizationForm::C && isComposed(string)) return string.view();
    return unicode::normalized(string, static_cast<unicode::Form>(form));
}

String normalizedLowercaseString(const String& string) {
    return string.isEmpty() ? string : withComposed(string, lowercased);
}

String normalizedUppercaseString(const String& string) {
    return string.isEmpty() ? string : withComposed(string, uppercased);
}

String fixedAndNormalizedString(const String& string) {
    if (string.isEmpty()) return string;
    std::u16string text(string);
    fixAndNormalizeString(text);
    return text;
}

std::u16string getCharactersOfNormalizedString(View string) {
    return withComposed(string, [](View units) { return std::u16string(units); });
}

void normalizeString(std::u16string& text, NormalizationForm form) {
    if (form == NormalizationForm::C && isComposed(text)) return;
    text = unicode::normalized(text, static_cast<unicode::Form>(form));
}

void normalizeLowercaseString(std::u16string& text) { text = withComposed(text, lowercased); }
void normalizeUppercaseString(std::u16string& text) { text = withComposed(text, uppercased); }

void fixAndNormalizeString(std::u16string& text) {
    std::ranges::replace_if(text, isUnsafe, u' ');
    normalizeString(text);
}

void lowercase(std::u16string& text) { text = lowercased(text); }
void uppercase(std::u16string& text) { text = uppercased(text); }
void capitalize(std::u16string& text) { text = unicode::titleCase(text); }

void convertLigaturesToCharacters(std::u16string& text) {
    const auto isLigature = [](char16_t unit) { return !lettersOf(unit).empty(); };
    // Most texts have none and are not copied.
    const auto first = std::ranges::find_if(text, isLigature);
    if (first == text.end()) return;
    std::u16string out(text.begin(), first);
    out.reserve(text.size() + text.size() / 16 + 2);
    for (const char16_t unit : View(text).substr(out.size())) {
        const View letters = lettersOf(unit);
        if (letters.empty())
            out += unit;
        else
            out += letters;
    }
    text = std::move(out);
}

String optimizedString(const String& string) { return string.view(); }

}  // namespace velmo
