#include <velmocore/text/Normalisation.h>

#include <algorithm>

#include "platform/Unicode.h"

namespace velmo {
namespace {

using View = std::u16string_view;

/// What must not be kept in stored text.
bool isUnsafe(char16_t unit) {
    return unit == 0 || (unit >= 0xD800 && unit <= 0xDFFF) || (unit >= 0xF400 && unit <= 0xF8FF);
}

/// Composes the text, if need be, and hands it on.
template <class Map>
auto withComposed(View text, Map map) {
    return unicode::isNormalizedC(text) ? map(text)
                                        : map(View(unicode::normalized(text, unicode::Form::C)));
}

std::u16string composedLowercase(View text) {
    return withComposed(text, [](View composed) { return unicode::lowerCase(composed); });
}

std::u16string composedUppercase(View text) {
    return withComposed(text, [](View composed) { return unicode::upperCase(composed); });
}

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
    if (form == NormalizationForm::C)
        return withComposed(string, [](View composed) { return String(composed); });
    return unicode::normalized(string, static_cast<unicode::Form>(form));
}

String normalizedLowercaseString(const String& string) {
    return string.isEmpty() ? string : String(composedLowercase(string));
}

String normalizedUppercaseString(const String& string) {
    return string.isEmpty() ? string : String(composedUppercase(string));
}

String fixedAndNormalizedString(const String& string) {
    if (string.isEmpty()) return string;
    std::u16string text(string);
    fixAndNormalizeString(text);
    return text;
}

void normalizeString(std::u16string& text, NormalizationForm form) {
    if (form == NormalizationForm::C && unicode::isNormalizedC(text)) return;
    text = unicode::normalized(text, static_cast<unicode::Form>(form));
}

void normalizeLowercaseString(std::u16string& text) { text = composedLowercase(text); }
void normalizeUppercaseString(std::u16string& text) { text = composedUppercase(text); }

void fixAndNormalizeString(std::u16string& text) {
    std::ranges::replace_if(text, isUnsafe, u' ');
    normalizeString(text);
}

void lowercase(std::u16string& text) { text = unicode::lowerCase(View(text)); }
void uppercase(std::u16string& text) { text = unicode::upperCase(View(text)); }
void capitalize(std::u16string& text) { text = unicode::titleCase(text); }

void convertLigaturesToCharacters(std::u16string& text) {
    const auto isLigature = [](char16_t unit) { return !lettersOf(unit).empty(); };
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
