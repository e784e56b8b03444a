#include <velmocore/text/Trimming.h>

#include <functional>

#include "TestSupport.h"

namespace velmo {
namespace {

const View WithNul(u"\0 a\0", 4);

TEST(Trimming, Ends) {
    const auto spaces = [](bool feeds) {
        return [=](const String& s) { return stringByTrimmingSpacesAndFeeds(s, feeds); };
    };
    const auto character = [](auto operation) { return [=](const String& s) { return operation(s, u'"'); }; };
    const std::tuple<std::function<String(const String&)>, View, View> cases[] = {
        {spaces(true), u" \r\n\uFEFFa b\u2028\t", u"a b"},
        {spaces(true), u" \r\n ", u""},
        {spaces(true), WithNul, u"a"},
        {spaces(false), u"\t\u00A0a \n", u"a \n"},
        {spaces(false), u"\n a ", u"\n a"},
        {[](const String& s) { return stringByTrimmingSpacesOfLeftSideAndFeeds(s, true); }, u" \na \n", u"a \n"},
        {[](const String& s) { return stringByTrimmingSpacesOfRightSideAndFeeds(s, true); }, u" \na \n", u" \na"},
        {stringByTrimmingWhiteSpaces, u"\x0B\u0085 a\u2029", u"a"},
        {stringByTrimmingWhiteSpaces, u"\uFEFF a \uFFFC", u"\uFEFF a \uFFFC"},
        {stringByTrimmingWhiteSpaces, u" \n", u""},
        {character(stringByTrimmingCharacter), u"\"\"a\"b\"", u"a\"b"},
        {character(stringByTrimmingPrefixCharacter), u"\"\"a\"", u"a\""},
        {character(stringByTrimmingSuffixCharacter), u"\"a\"\"", u"\"a"},
        {character(stringByTrimmingEnclosingCharacter), u"\"\"a\"", u"\"a"},
        {character(stringByTrimmingEnclosingCharacter), u"\"a", u"\"a"},
        {character(stringByTrimmingEnclosingCharacter), u"\"\"a\"\"", u"a"},
        {character(stringByTrimmingEnclosingCharacter), u"\"", u"\""},
        {character(stringByTrimmingEnclosingCharacter), u"\"\"\"", u"\""},
        {character(stringByTrimmingEnclosingCharacter), u"\"\"\"\"", u""},
        {stringByTrimmingQuotes, u"'\"x'\"", u"x"},
        {stringByTrimmingQuotes, u"'\"\"", u""},
        {stringByTrimmingDigits, u"12a3b\u0664", u"a3b"},
        {stringByTrimmingEllipsis, u"...end.", u"...end"},
        {stringByTrimmingEllipsis, u"end.\u2026..", u"end"},
        {stringByTrimmingEllipsis, u"...", u""},
        {stringByTrimmingFeeds, u"\na\r\n\x0C", u"\na"},
        {stringByTrimmingFeeds, u"a\n ", u"a\n "},
        {[](const String& s) { return stringByTrimmingCharactersNotInRep(s, alphaNumCharacterSetRep()); }, u"--a-1;",
         u"a-1"},
    };
    for (const auto& [operation, given, expected] : cases) {
        EXPECT_EQ(operation(given), expected) << utf8(given);
        EXPECT_TRUE(operation(u"").isIdenticalTo(String::empty()));
        EXPECT_TRUE(operation(String()).isAbsent());
        // What was trimmed once stays; a pair of quotes may be left in it.
        const String clean(u"x");
        EXPECT_EQ(operation(clean), u"x");
    }
}

TEST(Trimming, CleanTextsComeBackThemselves) {
    const String text(u"clean text");
    EXPECT_TRUE(stringByTrimmingSpacesAndFeeds(text, true).isIdenticalTo(text));
    EXPECT_TRUE(stringByTrimmingFeeds(text).isIdenticalTo(text));
    EXPECT_TRUE(stringByTrimmingQuotes(text).isIdenticalTo(text));
    EXPECT_TRUE(stringByTrimmingEnclosingCharacter(text, u'c').isIdenticalTo(text));
    EXPECT_FALSE(stringByTrimmingWhiteSpaces(text).isIdenticalTo(text));
    EXPECT_TRUE(stringByTrimmingSpacesAndFeeds(u" \n", true).isIdenticalTo(String::empty()));
}

TEST(Trimming, InPlace) {
    const auto after = [](auto operation, auto... arguments) {
        std::u16string text = u"\n xx a b x\r\n";
        operation(text, arguments...);
        return text;
    };
    EXPECT_EQ(after(trimWhiteSpaces), u"xx a b x");
    EXPECT_EQ(after(trimFeeds), u"\n xx a b x");
    std::u16string text = u"xxaxx";
    trimPrefixCharacter(text, u'x');
    EXPECT_EQ(text, u"axx");
    trimSuffixCharacter(text, u'x');
    EXPECT_EQ(text, u"a");
    trimCharacter(text, u'a');
    EXPECT_EQ(text, u"");
    trimWhiteSpaces(text);
    appendTrimmedString(text, u" \uFEFFone ");
    appendTrimmedString(text, View());
    EXPECT_EQ(text, u"\uFEFFone");
}

TEST(Trimming, Ranges) {
    const String text(u"ab  cd \n ef");
    const std::tuple<Range, bool, Range> cases[] = {
        {{0, 11}, false, {0, 11}}, {{2, 5}, false, {4, 2}},
        {{4, 5}, false, {4, 4}},   {{4, 5}, true, {4, 2}},
        {{2, 2}, false, {4, 0}},   {{6, 3}, true, {9, 0}},
        {{5, 0}, true, {5, 0}},    {{6, ~0ull}, true, {9, 2}},
        {{50, 2}, true, {11, 0}},  {Range::none(), true, Range::none()},
    };
    for (const auto& [range, feeds, expected] : cases) {
        EXPECT_EQ(trimSpacesInRange(text, range, feeds), expected) << range.location;
        EXPECT_EQ(stringByTrimmingSpacesInRange(text, range, feeds), text.substring(expected));
    }
    EXPECT_EQ(trimWhiteSpacesInRange(text, {6, 4}), (Range{9, 1}));
    EXPECT_EQ(stringByTrimmingSpacesInRange(text, {2, 2}, false), u"");
}

}  // namespace
}  // namespace velmo
