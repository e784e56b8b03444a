#include <velmocore/text/CharacterTests.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(CharacterTests, SetsOfAText) {
    const struct {
        View text;
        std::size_t alphaNum, alpha, white, digits;
        bool isSpace, isWhite, isDigit, isAlpha, isAlphaNum;
    } cases[] = {
        {u"", 0, 0, 0, 0, true, true, false, false, false},
        {u" \t\u00A0", 0, 0, 3, 0, true, true, false, false, false},
        {u" \n\uFEFF\x0B", 0, 0, 4, 0, false, true, false, false, false},
        {u"42", 2, 0, 0, 2, false, false, true, false, true},
        {u"a\u0308b", 3, 3, 0, 0, false, false, false, true, true},
        {u"a 1\u00B2-", 3, 1, 1, 1, false, false, false, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(utf8(c.text));
        EXPECT_EQ(countAlphaNumCharacters(c.text), c.alphaNum);
        EXPECT_EQ(countAlphaCharacters(c.text), c.alpha);
        EXPECT_EQ(countWhiteCharacters(c.text), c.white);
        EXPECT_EQ(countDigitCharacters(c.text), c.digits);
        EXPECT_EQ(containsAlphaNumCharacter(c.text), c.alphaNum > 0);
        EXPECT_EQ(containsAlphaCharacter(c.text), c.alpha > 0);
        EXPECT_EQ(containsWhiteCharacter(c.text), c.white > 0);
        EXPECT_EQ(containsDigitCharacter(c.text), c.digits > 0);
        EXPECT_EQ(isSpaceString(c.text), c.isSpace);
        EXPECT_EQ(isWhiteString(c.text), c.isWhite);
        EXPECT_EQ(onlyWhiteCharacters(c.text), c.isWhite);
        EXPECT_EQ(isDigitString(c.text), c.isDigit);
        EXPECT_EQ(isAlphaString(c.text), c.isAlpha);
        EXPECT_EQ(isAlphaNumString(c.text), c.isAlphaNum);
    }
    EXPECT_FALSE(characterPartOfSet(u"a", nullptr));
    EXPECT_EQ(countCharactersPartOfSet(u"a", nullptr), 0u);
}

TEST(CharacterTests, MashedWords) {
    for (View text : {u"CamelCase", u"AaBb", u"\u00C4rgerTisch", u"CamelCAse"})
        EXPECT_EQ(isMashedWord(text), text != u"CamelCAse") << utf8(text);
    for (View text : {u"", u"Ab", u"Camel", u"CAmel", u"cAmel", u"McD", u"Mc Do", u"AaB"})
        EXPECT_FALSE(isMashedWord(text)) << utf8(text);
}

TEST(CharacterTests, EqualOverASet) {
    const std::tuple<View, View, bool, bool, bool, bool> cases[] = {
        {u"A-B", u"AB", true, true, true, true},      {u"AB", u"ABC", false, false, false, false},
        {u"AB C", u"A.b", false, false, false, true}, {u"ab", u"A B!", false, true, false, true},
        {u"...", u"", true, true, true, true},        {u"abc", u"--", false, false, true, true},
        {u"--", u"abc", false, false, false, false},  {u"", u"", true, true, true, true},
    };
    const CharacterSetRep& set = alphaNumCharacterSetRep();
    for (const auto& [a, b, equal, equalNoCase, prefix, prefixNoCase] : cases) {
        SCOPED_TRACE(utf8(a));
        EXPECT_EQ(equalStringsUsingCharacterSetRep(a, b, set), equal);
        EXPECT_EQ(equalStringsNoCaseUsingCharacterSetRep(a, b, set), equalNoCase);
        EXPECT_EQ(hasPrefixUsingCharacterSetRep(a, b, set), prefix);
        EXPECT_EQ(hasPrefixNoCaseUsingCharacterSetRep(a, b, set), prefixNoCase);
    }
}

TEST(CharacterTests, Numbers) {
    EXPECT_EQ(countNumbers(u""), 0u);
    EXPECT_EQ(countNumbers(u"1 22x333 \u0664"), 3u);
    const std::tuple<View, std::size_t, bool> runs[] = {{u"ab123c", 3, true}, {u"ab123c", 4, false},
                                                        {u"12 34", 3, false}, {u"1234", 2, true},
                                                        {u"12", 0, false},    {u"", 1, false}};
    for (const auto& [text, digits, expected] : runs) EXPECT_EQ(containsNumberWithNDigits(text, digits), expected);

    for (View text : {u"a123b", u"012", u"312", u"", u"1", u"12121"})
        EXPECT_FALSE(containsNumber(text, u"12")) << utf8(text);
    for (View text : {u"7 12 x", u"12", u"a12", u"123 12"}) EXPECT_TRUE(containsNumber(text, u"12")) << utf8(text);
    EXPECT_FALSE(containsNumber(u"12", u""));
    // The search goes on behind a hit that failed: this one overlaps it.
    EXPECT_FALSE(containsNumber(u"1a1a1 1a1", u"a1a"));
    EXPECT_TRUE(containsNumber(u"x1a1", u"1a1"));
}

TEST(CharacterTests, Removal) {
    const String text(u" a\u00A0b\uFEFF\0c"), clean(u"abc");
    EXPECT_EQ(stringByRemovingWhiteSpaces(text), u"ab");
    EXPECT_EQ(stringByRemovingWhiteSpaces(String(View(u" a\0b", 4))), u"ab");
    EXPECT_EQ(stringByRemovingWhiteSpaces(u" \n"), u"");
    EXPECT_FALSE(stringByRemovingWhiteSpaces(clean).isIdenticalTo(clean));
    EXPECT_TRUE(stringByRemovingCharactersInRep(clean, nullptr).isIdenticalTo(clean));
    EXPECT_TRUE(stringByRemovingWhiteSpaces(String()).isAbsent());
}

}  // namespace
}  // namespace velmo
