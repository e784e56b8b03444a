// Any units through what cleans texts and takes them and paths apart: both forms agree, what is
// clean stays, and nothing lies outside the text.
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/ConfigText.h>
#include <velmocore/text/Lines.h>
#include <velmocore/text/Normalisation.h>
#include <velmocore/text/Paths.h>
#include <velmocore/text/Reformatting.h>
#include <velmocore/text/Removal.h>
#include <velmocore/text/StringRanges.h>
#include <velmocore/text/Tabs.h>
#include <velmocore/text/TextAtIndex.h>
#include <velmocore/text/Trimming.h>

#include <algorithm>

#include "Input.h"

using namespace velmo;
using fuzz::require;

namespace {

void checkPair(const String& text, String (*operation)(const String&),
               void (*inPlace)(std::u16string&)) {
    std::u16string units(text);
    inPlace(units);
    const String once = operation(text);
    require(once == units && operation(once) == once);
}

void checkRange(const String& text, Range range) {
    require(!range.isFound() ||
            (range.location <= text.length() && range.length <= text.length() - range.location));
}

void checkTexts(const String& text, std::size_t at) {
    checkPair(text, stringByTrimmingWhiteSpaces, trimWhiteSpaces);
    checkPair(text, stringByTrimmingFeeds, trimFeeds);
    checkPair(text, stringByRemovingFeeds, removeFeeds);
    checkPair(text, stringByRemovingSpaces, removeSpaces);
    checkPair(text, stringByRemovingDigits, removeDigits);
    checkPair(text, stringByRemovingMultipleSpaces, removeMultipleSpaces);
    checkPair(text, stringByRemovingMultipleFeeds, removeMultipleFeeds);
    // Form C makes pairs of some units, as U+FACF, which would be mended again.
    const String stored = fixedAndNormalizedString(text);
    if (std::ranges::none_of(stored, [](char16_t unit) { return (unit & 0xF800) == 0xD800; }))
        checkPair(text, fixedAndNormalizedString, fixAndNormalizeString);
    std::u16string joined;
    for (const String& line : lines(text)) joined += line.view();
    require(joined == text.view());
    for (const String& line : configLines(text)) require(line.length() >= 2 && line[0] != u'#');
    require(reformattedMailing(text).length() <= text.length());
    (void)reformattedStringByRemovingCharactersOfString(text, u"> ");
    std::u16string blanks(text);
    decodeTabs(blanks, at + 1);
    std::u16string tabs = blanks;
    encodeTabs(tabs, at + 1);
    require(tabs.size() <= blanks.size());

    checkRange(text, getWordRangeAtIndex(text, at));
    checkRange(text, getLinkRangeAtIndex(text, at));
    checkRange(text, trimSpacesInRange(text, {at, at}, true));
    const String start = text.substring({at, 2}), end = text.substring({at / 2, 1});
    for (std::uint32_t options = 0; options < 512; options += options < 7 ? 1 : 31) {
        const auto search = static_cast<SearchOptions>(options);
        checkRange(text, stringRangeWithStart(text, start, end, false, search));
        checkRange(text, {findStrings(text, {end, start}, search, at), 0});
    }
}

void checkPaths(const String& path) {
    require(standardizedPath(standardizedPath(path)) == standardizedPath(path));
    relativePathToDirectory(path, stringByDeletingFileComponent(path));
    pathIsInDirectory(path, stringByDeletingFileComponent(path));
    stringByReplacingPathExtensionWith(path, validPathExtension(path));
    lowercasePathExtension(path);
    require(stringByCreatingFilename(path).length() <= 250);
    const String name = stringByCreatingFileSystemRepresentationByAppendingExtension(path, u"txt");
    require(name.utf8().size() <= 250 && name.view().ends_with(u".txt"));
    require(stringByCreatingFileSystemRepresentation(name) == name);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The searches of many options are slow, and faults show in short texts.
    const String text = fuzz::unitsOf(data, std::min<std::size_t>(size, 400));
    checkTexts(text, size > 1 ? data[1] % 64 : 0);
    checkPaths(text);
    return 0;
}
