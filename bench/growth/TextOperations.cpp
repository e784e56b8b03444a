// Looking at texts: tests, counts, comparison, search, checksums, encodings and files.
#include <velmocore/text/Arrays.h>
#include <velmocore/text/CharacterFinding.h>
#include <velmocore/text/CharacterTests.h>
#include <velmocore/text/Checksums.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/ConfigText.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/FastCompare.h>
#include <velmocore/text/FastSearch.h>
#include <velmocore/text/Finding.h>
#include <velmocore/text/Lines.h>
#include <velmocore/text/Paths.h>
#include <velmocore/text/StringFiles.h>
#include <velmocore/text/StringRanges.h>
#include <velmocore/text/TextAtIndex.h>

#include "Growth.h"

namespace velmo::growth {

namespace {

constexpr Case Cases[] = {Case::Sensitive, Case::Insensitive};

std::vector<String> partsOf(const String& text, char16_t separator) {
    std::vector<String> parts;
    for (std::u16string_view rest = text; !rest.empty();) {
        const std::size_t end = std::min(rest.find(separator, 1), rest.size());
        parts.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end);
    }
    return parts;
}

void search(std::u16string_view text, std::u16string_view pattern) {
    for (const Case letterCase : Cases) use(containsSubstring(text, pattern, letterCase));
}

constexpr Operation Rows[] = {
    {"character tests",
     [](const Input& in) {
         useEach<bool, std::u16string_view>(
             in.text, {containsAlphaNumCharacter, containsAlphaCharacter, containsWhiteCharacter,
                       containsDigitCharacter, isSpaceString, isWhiteString, isDigitString,
                       isAlphaString, isAlphaNumString, isMashedWordString});
         use(containsNumberWithNDigits(in.text, 5));
         use(containsNumber(in.text, u"77777778"));
     }},
    {"character counts",
     [](const Input& in) {
         useEach<std::size_t, std::u16string_view>(
             in.text, {countAlphaNumCharacters, countAlphaCharacters, countWhiteCharacters,
                       countDigitCharacters, countNumbers, numberOfLines});
         use(countLTGT(in.text));
     }},
    {"character finding",
     [](const Input& in) {
         for (const Case letterCase : Cases) {
             use(findCharacter(in.text, u'\uE001', {.letterCase = letterCase}));
             use(findLastCharacter(in.text, u'\uE001', {.letterCase = letterCase}));
             use(countCharacter(in.text, u'a', {.letterCase = letterCase}));
             use(findOneOf(in.text, u"\uE001\uE002z", {.letterCase = letterCase}));
         }
         use(containsCharacters(in.text, 255));
     }},
    {"comparison",
     [](const Input& in) {
         const String other = in.text + u"x";
         use(hasPrefixNoCase(other, in.text));
         use(hasSuffixNoCase(other, in.text));
         use(rangeIsEqualToNoCase(other, {0, in.text.length()}, in.text));
         use(rangeIsNonUmlautedEqualToNoCase(other, {0, in.text.length()}, in.text));
         use(fastCompareUnichars(other, in.text));
         use(fastCaseInsensitiveCompareUnichars(other, in.text));
     }},
    {"comparison of members",
     [](const Input& in) {
         const CharacterSetRep& letters = alphaCharacterSetRep();
         use(equalCharsOfCharacterSetRep(in.text, in.text, letters));
         use(equalCharsNoCaseOfCharacterSetRep(in.text, in.text, letters));
         use(hasPrefixCharsOfCharacterSetRep(in.text, in.almost, letters));
         use(hasPrefixCharsNoCaseOfCharacterSetRep(in.text, in.almost, letters));
     }},
    {"search, short pattern",
     [](const Input& in) {
         for (const std::u16string_view pattern : {u"aab", u"the z", u"zzz", u"<a z"})
             search(in.text, pattern);
     }},
    {"search, half and another unit", [](const Input& in) { search(in.text, in.almost); }},
    {"search, another unit and half",
     [](const Input& in) {
         search(in.text, std::u16string(u"\uE001") + std::u16string(in.almost.view()));
     }},
    {"search, another unit within",
     [](const Input& in) {
         std::u16string pattern(in.text.view().substr(0, in.text.length() / 2));
         pattern[pattern.size() / 2] = u'\uE001';
         search(in.text, pattern);
     }},
    {"search, 40 units and another",
     [](const Input& in) {
         search(in.text, std::u16string(in.text.view().substr(0, 40)) + u"\uE001");
         search(in.text, u"\uE001" + std::u16string(in.text.view().substr(0, 40)));
     }},
    {"search, eight-bit pattern",
     [](const Input& in) {
         use(fastUnicharsContainChars(in.text, "aaaaaaaaaab"));
         use(fastCaseInsensitiveUnicharsContainChars(in.text, "baaaaaaaaaa"));
         static constexpr std::string_view Words[] = {"baaa", "zzz", "the z"};
         for (const Case letterCase : Cases) use(containsSubCStrings(in.text, Words, letterCase));
     }},
    {"count and find",
     [](const Input& in) {
         for (const Case letterCase : Cases) {
             use(countSubstring(in.text, in.text.view().substr(0, 3), letterCase));
             for (const Direction direction : {Direction::Forward, Direction::Backward})
                 use(findString(in.text, u"aab", {in.text.length() / 2, 1},
                                {.letterCase = letterCase, .direction = direction, .wrap = true}));
         }
     }},
    {"string ranges",
     [](const Input& in) {
         const std::u16string_view start = in.text.view().substr(0, 2);
         for (std::uint32_t options = 0; options < 512;
              options = options < 7 ? options + 1 : options + 127) {
             use(stringRangeWithStart(in.text, start, u"zz", true, SearchOptions(options)));
             use(stringRangeWithStart(in.text, u"a", u"\u00E9\uE001", false,
                                      SearchOptions(options)));
         }
     }},
    {"strings from several",
     [](const Input& in) {
         for (const SearchOptions options :
              {DefaultSearch, CaseInsensitiveSearch, BackwardsSearch, DiacriticInsensitiveSearch})
             use(findStrings(in.text, {u"zz", u"aab", u"e\u0301\u0300"}, options));
     }},
    {"deleted string ranges",
     [](const Input& in) {
         for (const SearchOptions options : {DefaultSearch, CaseInsensitiveSearch}) {
             std::u16string units(in.text);
             deleteCharactersInRangeWithStart(units, in.text.view().substr(0, 1),
                                              in.text.view().substr(0, 2), options);
             use(units);
         }
     }},
    {"text at an index",
     [](const Input& in) {
         const std::size_t middle = in.text.length() / 2;
         use(getWordRangeAtIndex(in.text, middle));
         use(getLinkRangeAtIndex(in.text, middle));
         use(getSubstringRangeAtIndex(in.text, middle, emptyCharacterSetRep()));
         use(firstWord(in.text));
         use(lastWord(in.text));
     }},
    {"lines",
     [](const Input& in) {
         use(lines(in.text));
         use(firstLine(in.text));
         use(configLines(in.text));
     }},
    {"settings",
     [](const Input& in) {
         use(configValueForKey(in.text, u"key"));
         use(typedValueForKeys(in.text, {u"yes", u"no"}));
         use(boolValue(in.text));
     }},
    {"checksums",
     [](const Input& in) {
         use(crc32(in.utf8));
         use(crc32(in.text));
         use(caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters(in.text));
     }},
    {"encodings, out",
     [](const Input& in) {
         for (const StringEncoding encoding :
              {UTF8StringEncoding, ISOLatin1StringEncoding, UTF16StringEncoding,
               WindowsCP1251StringEncoding, ShiftJISStringEncoding, ISO2022JPStringEncoding,
               ASCIIStringEncoding})
             for (const bool lossy : {false, true})
                 use(dataUsingEncoding(in.text, encoding, lossy));
         use(smallestEncoding(in.text));
         use(fastestEncoding(in.text));
     }},
    {"encodings, in",
     [](const Input& in) {
         for (const StringEncoding encoding :
              {UTF8StringEncoding, ISOLatin1StringEncoding, UTF16StringEncoding,
               WindowsCP1251StringEncoding, ShiftJISStringEncoding, ISO2022JPStringEncoding,
               JapaneseEUCStringEncoding, UTF32StringEncoding})
             use(stringWithData(in.utf8, encoding));
     }},
    {"paths",
     [](const Input& in) {
         useEach<String, std::u16string_view>(
             in.text, {standardizedPath, stringByDeletingFileComponent, validPathExtension,
                       lowercasePathExtension, stringByCreatingFilename,
                       stringByCreatingFileSystemRepresentation});
         use(standardizedPathComponents(in.text));
         use(stringByReplacingPathExtensionWith(in.text, u"txt"));
     }},
    {"relative paths",
     [](const Input& in) {
         use(relativePathToDirectory(in.text, in.almost));
         use(relativePathToDirectory(in.almost, in.text));
         use(pathIsInDirectory(in.text + u"x", in.text));
     }},
    {"cover of paths",
     [](const Input& in) {
         std::vector<String> paths = partsOf(in.text, u'/');
         minimumCoverOfPaths(paths);
         use(paths);
         // Each beside its folder, all under a common one.
         paths.clear();
         const String folder = u"/" + String(in.text.view().substr(0, 6));
         for (std::size_t i = 0; i < in.text.length() / 16; ++i)
             paths.push_back(folder + u"/" + String::fromUTF8(std::to_string(i)));
         minimumCoverOfPaths(paths);
         use(paths);
     },
     131072},  // a sort of the same few paths again and again is foretold by the processor
    {"arrays",
     [](const Input& in) {
         std::vector<String> all = partsOf(in.text, u' ');
         const std::vector<String> others = partsOf(in.almost, u' ');
         unionWithObjects(all, others);
         joinWithObjectsFromArray(all, others);
         quickSortUsingFunction(
             all, [](const String& a, const String& b) { return fastCompareUnichars(a, b); });
         removeObjectsFromArray(all, others);
         use(all);
     }},
};

}  // namespace

std::span<const Operation> textOperations() { return Rows; }

}  // namespace velmo::growth
