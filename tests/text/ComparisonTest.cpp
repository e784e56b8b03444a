#include <velmocore/text/Comparison.h>

#include "TestSupport.h"
#include "text/UnitFold.h"

namespace velmo {
namespace {

TEST(Comparison, ThreeWaysToLookPastADifference) {
    const std::tuple<View, View, bool, bool, bool> cases[] = {
        {u"", u"", true, true, true},
        {u"Title", u"tITLE", true, true, true},
        {u"Title", u"Titel", false, false, false},
        {u"a", u"ab", false, false, false},
        {u"stra\u00DFe", u"STRASSE", false, false, false},
        {u"\u00C4rger", u"\u00E4RGER", true, true, true},
        {u"\u00C4rger", u"arger", false, true, true},
        {u"\u0416\u0430", u"\u0414\u0430", false, true, false},  // no ASCII form: all blanks
        {u"\u0419", u"\u0438", false, true, true},
        {u"\u0416", u"\u0436", true, true, true},
        {u"\u0416", u" ", false, true, false},
        {u"\u212A", u"k", true, true, true},   // the Kelvin sign, by its lower case
        {u"\u017F", u"S", true, false, true},  // the long s, by its upper case
        {View(), u"", false, false, false},
        {View(), View(), false, false, false},
    };
    for (const auto& [a, b, noCase, ascii, nonUmlauted] : cases) {
        EXPECT_EQ(isEqualToStringNoCase(a, b), noCase) << utf8(a);
        EXPECT_EQ(isEqualToStringNoCase(b, a), noCase) << utf8(a);
        EXPECT_EQ(isAsciiEqualToStringNoCase(a, b), ascii) << utf8(a);
        EXPECT_EQ(isNonUmlautedEqualToStringNoCase(b, a), nonUmlauted) << utf8(a);
    }
}

TEST(Comparison, WhatEitherTableEquatesIsEqual) {
    const detail::CaseFold fold;
    for (unsigned u = 0; u < 65536; ++u) {
        const auto unit = static_cast<char16_t>(u);
        ASSERT_EQ(fold(unit), fold(toUpper(unit))) << u;
        ASSERT_EQ(fold(unit), fold(toLower(unit))) << u;
    }
}

TEST(Comparison, Ranges) {
    const View text = u"one TWO dr\u00C9";
    EXPECT_TRUE(rangeIsEqualTo(text, {4, 3}, u"TWO"));
    EXPECT_FALSE(rangeIsEqualTo(text, {4, 3}, u"two"));
    EXPECT_FALSE(rangeIsEqualTo(text, {4, 2}, u"TWO"));
    EXPECT_TRUE(rangeIsEqualToNoCase(text, {4, 3}, u"two"));
    EXPECT_TRUE(rangeIsAsciiEqualToNoCase(text, {8, 3}, u"DRe"));
    EXPECT_TRUE(rangeIsNonUmlautedEqualToNoCase(text, {8, 3}, u"DRe"));
    EXPECT_FALSE(rangeIsEqualToNoCase(text, {8, 3}, u"DRe"));

    // An empty range equals an absent string in two of the four.
    EXPECT_TRUE(rangeIsEqualTo(text, {5, 0}, View()));
    EXPECT_TRUE(rangeIsEqualToNoCase(text, {11, 0}, View()));
    EXPECT_FALSE(rangeIsAsciiEqualToNoCase(text, {5, 0}, View()));
    EXPECT_FALSE(rangeIsNonUmlautedEqualToNoCase(text, {5, 0}, View()));
    EXPECT_TRUE(rangeIsAsciiEqualToNoCase(text, {5, 0}, u""));

    // Ranges that do not lie in the text.
    for (const Range range : {Range{12, 0}, {10, 2}, Range::none(), {1, ~0ull}}) {
        EXPECT_FALSE(rangeIsEqualTo(text, range, u""));
        EXPECT_FALSE(rangeIsEqualToNoCase(text, range, View()));
        EXPECT_FALSE(rangeIsAsciiEqualToNoCase(text, range, u"\u00E9"));
    }
}

TEST(Comparison, PrefixAndSuffix) {
    const std::tuple<View, View, bool, bool> cases[] = {
        {u"HTTP://x", u"http:", true, false}, {u"page.HTML", u".html", false, true}, {u"abc", u"ABC", true, true},
        {u"abc", u"", false, false},          {u"abc", View(), false, false},        {u"ab", u"abc", false, false},
        {View(), u"a", false, false},
    };
    for (const auto& [string, part, prefix, suffix] : cases) {
        EXPECT_EQ(hasPrefixNoCase(string, part), prefix) << utf8(string);
        EXPECT_EQ(hasSuffixNoCase(string, part), suffix) << utf8(string);
    }
}

}  // namespace
}  // namespace velmo
