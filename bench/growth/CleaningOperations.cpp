// Changing texts: normalisation, folding, removal, collapsing, trimming, replacing, layout.
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Folding.h>
#include <velmocore/text/Normalisation.h>
#include <velmocore/text/Reformatting.h>
#include <velmocore/text/Removal.h>
#include <velmocore/text/Replacing.h>
#include <velmocore/text/Tabs.h>
#include <velmocore/text/Trimming.h>

#include "Growth.h"

namespace velmo::growth {

namespace {

constexpr Operation Rows[] = {
    {"normal forms",
     [](const Input& in) {
         for (const NormalizationForm form : {NormalizationForm::C, NormalizationForm::D,
                                              NormalizationForm::KC, NormalizationForm::KD})
             use(normalizedString(in.text, form));
     }},
    {"normal and in one case",
     [](const Input& in) {
         useEach<String, const String&>(in.text,
                                        {normalizedLowercaseString, normalizedUppercaseString,
                                         fixedAndNormalizedString, optimizedString});
         use(getCharactersOfNormalizedString(in.text));
     }},
    {"case and ligatures",
     [](const Input& in) {
         changeEach(in.text, {lowercase, uppercase, capitalize, convertLigaturesToCharacters});
     }},
    {"without diacritics",
     [](const Input& in) {
         useEach<String, const String&>(in.text, {nonUmlautedString, lowercaseNonUmlautedString,
                                                  asciiString, uppercaseAsciiString});
     }},
    {"normal without diacritics",
     [](const Input& in) {
         useEach<String, const String&>(
             in.text, {nonUmlautedNormalizedString, lowercaseNonUmlautedNormalizedString});
     }},
    {"removal",
     [](const Input& in) {
         useEach<String, const String&>(
             in.text, {stringByRemovingFeeds, stringByRemovingTabs, stringByRemovingSpaces,
                       stringByRemovingDigits, lowercaseStringByRemovingDigits,
                       stringByRemovingNonIPCharacters});
         use(stringByRemovingCharactersOfString(in.text, u"abe<&%/ \u0301"));
     }},
    {"removal of a text's units",
     [](const Input& in) { use(stringByRemovingCharactersOfString(in.almost, in.text)); }},
    {"collapsing",
     [](const Input& in) {
         for (const RunClass runs : {RunClass::Spaces, RunClass::WhiteSpaces, RunClass::Feeds})
             use(stringByRemovingMultipleWhiteSpaces(in.text, runs));
     }},
    {"trimming",
     [](const Input& in) {
         useEach<String, const String&>(
             in.text, {stringByTrimmingWhiteSpaces, stringByTrimmingQuotes, stringByTrimmingDigits,
                       stringByTrimmingEllipsis, stringByTrimmingFeeds});
         use(stringByTrimmingSpacesAndFeeds(in.text, true));
         use(stringByTrimmingEnclosingCharacter(in.text, u'a'));
         use(stringByTrimmingCharacter(in.text, u'a'));
     }},
    {"trimming in place",
     [](const Input& in) {
         changeEach(in.text, {trimWhiteSpaces, trimFeeds, removeWhiteSpaces, removeFeeds});
     }},
    {"replacing units",
     [](const Input& in) {
         use(stringByReplacingCharacter(in.text, u'a', u'b', Case::Insensitive));
         use(stringByRotating13(in.text));
     }},
    {"replacing by longer",
     [](const Input& in) {
         for (const Case letterCase : {Case::Sensitive, Case::Insensitive}) {
             use(stringByReplacingString(in.text, in.text.view().substr(0, 1), u"longer",
                                         letterCase));
             use(stringByReplacingString(in.text, in.text.view().substr(0, 3), u"longer",
                                         letterCase));
         }
     }},
    {"replacing by nothing",
     [](const Input& in) {
         std::u16string units(in.text);
         use(deleteString(units, in.text.view().substr(0, 2)));
         use(replaceString(units, u"a", u""));
     }},
    {"replacing, half and another unit",
     [](const Input& in) { use(stringByReplacingString(in.text, in.almost, u"x")); }},
    {"replacing by a format",
     [](const Input& in) {
         std::u16string units(in.text);
         use(replaceStringWithFormat(units, in.text.view().substr(0, 2), u"<%d %@>", {7, u"x"}));
         units = u"a";
         use(replaceStringWithFormat(units, u"a", in.text, {7, 2.5, u"x"}));
     }},
    {"tabs",
     [](const Input& in) {
         std::u16string units(in.text);
         decodeTabs(units, 8);
         encodeTabs(units, 4);
         use(units);
     }},
    {"mail",
     [](const Input& in) {
         use(reformattedMailing(in.text));
         use(reformattedStringByRemovingCharactersOfString(in.text, u"> "));
     }},
};

}  // namespace

std::span<const Operation> cleaningOperations() { return Rows; }

}  // namespace velmo::growth
