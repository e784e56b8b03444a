// Each operation is a class of units and the ends at which it goes. There are two classes of white
// space: that of the platform, and the library's own, which also takes NUL, U+0003, U+FEFF and
// U+FFFC; what each operation uses is part of its contract.
#include <velmocore/text/Trimming.h>

#include <algorithm>

#include "platform/Unicode.h"
#include "text/Trim.h"

namespace velmo {
namespace {

using namespace detail;

constexpr auto isQuote = [](char16_t c) { return c == u'\'' || c == u'"'; };
constexpr auto isDot = [](char16_t c) { return c == u'\u2026' || c == u'.'; };

}  // namespace

String stringByTrimmingSpacesAndFeeds(const String& string, bool andFeeds) {
    return trimmedString(string, Ends::Both, spacesAndFeeds(andFeeds));
}

String stringByTrimmingSpacesOfLeftSideAndFeeds(const String& string, bool andFeeds) {
    return trimmedString(string, Ends::Left, spacesAndFeeds(andFeeds));
}

String stringByTrimmingSpacesOfRightSideAndFeeds(const String& string, bool andFeeds) {
    return trimmedString(string, Ends::Right, spacesAndFeeds(andFeeds));
}

String stringByTrimmingWhiteSpaces(const String& string) {
    // The view makes a new string, also where nothing was trimmed; see the header.
    return trimmedView(string, Ends::Both, unicode::isWhiteSpaceOrNewline);
}

String stringByTrimmingCharacter(const String& string, char16_t unit) {
    return trimmedString(string, Ends::Both, OneUnit{unit});
}

String stringByTrimmingPrefixCharacter(const String& string, char16_t unit) {
    return trimmedString(string, Ends::Left, OneUnit{unit});
}

String stringByTrimmingSuffixCharacter(const String& string, char16_t unit) {
    return trimmedString(string, Ends::Right, OneUnit{unit});
}

String stringByTrimmingCharactersNotInRep(const String& string, const CharacterSetRep& set) {
    return trimmedString(string, Ends::Both, NotInSet{set});
}

String stringByTrimmingQuotes(const String& string) {
    return trimmedString(string, Ends::Both, isQuote);
}

String stringByTrimmingDigits(const String& string) {
    return trimmedString(string, Ends::Both, InSet{digitCharacterSetRep()});
}

String stringByTrimmingEllipsis(const String& string) {
    return trimmedString(string, Ends::Right, isDot);
}

String stringByTrimmingFeeds(const String& string) {
    return trimmedString(string, Ends::Right, Feeds{});
}

String stringByTrimmingEnclosingCharacter(const String& string, char16_t unit) {
    const std::size_t length = string.length();
    std::size_t pairs = 0;
    // A unit in the middle has no partner and stays.
    while (pairs < length / 2 && string[pairs] == unit && string[length - 1 - pairs] == unit)
        ++pairs;
    return string.substring({pairs, length - 2 * pairs});
}

Range trimSpacesInRange(std::u16string_view string, Range range, bool andFeeds) {
    if (!range.isFound()) return Range::none();
    const std::size_t start = std::min<std::size_t>(range.location, string.size());
    const std::u16string_view part = string.substr(start, range.length);
    const std::u16string_view rest = trimmedView(part, Ends::Both, spacesAndFeeds(andFeeds));
    return {start + static_cast<std::size_t>(rest.data() - part.data()), rest.size()};
}

Range trimWhiteSpacesInRange(std::u16string_view string, Range range) {
    return trimSpacesInRange(string, range, true);
}

String stringByTrimmingSpacesInRange(const String& string, Range range, bool andFeeds) {
    return string.substring(trimSpacesInRange(string, range, andFeeds));
}

void trimWhiteSpaces(std::u16string& text) {
    trimInPlace(text, Ends::Both, unicode::isWhiteSpaceOrNewline);
}

void trimCharacter(std::u16string& text, char16_t unit) {
    trimInPlace(text, Ends::Both, OneUnit{unit});
}

void trimPrefixCharacter(std::u16string& text, char16_t unit) {
    trimInPlace(text, Ends::Left, OneUnit{unit});
}

void trimSuffixCharacter(std::u16string& text, char16_t unit) {
    trimInPlace(text, Ends::Right, OneUnit{unit});
}

void trimFeeds(std::u16string& text) { trimInPlace(text, Ends::Right, Feeds{}); }

void appendTrimmedString(std::u16string& text, std::u16string_view string) {
    text.append(trimmedView(string, Ends::Both, unicode::isWhiteSpaceOrNewline));
}

}  // namespace velmo
