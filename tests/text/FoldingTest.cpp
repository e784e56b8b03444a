#include <velmocore/text/Folding.h>

#include <velmocore/text/CharacterSets.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Folding, ThroughTheTables) {
    const std::tuple<String (*)(const String&), View, View> cases[] = {
        {nonUmlautedString, u"\u00C4rger \u0439\u00F8", u"Arger \u0438\u00F8"},
        {nonUmlautedString, u"a\u0308", u"a\u0308"},
        {nonUmlautedNormalizedString, u"a\u0308 \uFB01", u"a \uFB01"},
        {lowercaseNonUmlautedString, u"\u00C4RGER \u00DF", u"arger \u00DF"},
        {lowercaseNonUmlautedNormalizedString, u"A\u0308R", u"ar"},
        {uppercaseNonUmlautedString, u"\u00E4rger \u00DF", u"ARGER \u00DF"},
        {uppercaseNonUmlautedNormalizedString, u"a\u0308r", u"AR"},
        {asciiString, u"\u00C4 \u00DF \u0416 e\u0301", u"A     e"},
        {lowercaseAsciiString, u"\u00C4B\u0416", u"ab "},
        {uppercaseAsciiString, u"\u00E4b\u0436", u"AB "},
    };
    for (const auto& [operation, given, expected] : cases) {
        EXPECT_EQ(operation(given), expected) << utf8(given);
        EXPECT_TRUE(operation(String()).isAbsent());
        EXPECT_EQ(operation(u""), u"");
    }
}

TEST(Folding, ReceiverOrNewString) {
    const String ascii(u"plain"), lower(u"plain"), upper(u"PLAIN");
    EXPECT_TRUE(nonUmlautedString(ascii).isIdenticalTo(ascii));
    EXPECT_TRUE(lowercaseNonUmlautedString(lower).isIdenticalTo(lower));
    EXPECT_TRUE(uppercaseNonUmlautedString(upper).isIdenticalTo(upper));
    EXPECT_TRUE(stringByApplyingConversionTable(ascii, nullptr).isIdenticalTo(ascii));
    for (const String& copy : {asciiString(ascii), nonUmlautedNormalizedString(ascii),
                               stringByApplyingConversionTable(ascii, &lowerCharsTable()),
                               stringByRemovingNonAlphaNumericCharactersAndApplyingConversionTable(ascii, nullptr)}) {
        EXPECT_EQ(copy, ascii);
        EXPECT_FALSE(copy.isIdenticalTo(ascii));
    }
    EXPECT_EQ(stringByApplyingConversionTable(u"aB\u00E9", &upperCharsTable()), u"AB\u00C9");
    EXPECT_EQ(stringByRemovingNonAlphaNumericCharactersAndApplyingConversionTable(u"-Ab 1_\u00C9", &lowerCharsTable()),
              u"ab1\u00E9");
    EXPECT_EQ(stringByRemovingNonAlphaNumericCharactersAndApplyingConversionTable(u"-", nullptr), u"");
}

TEST(Folding, Tests) {
    const std::tuple<View, bool, bool, bool, bool> cases[] = {
        {u"", true, false, true, true},         {u"2024-7", true, false, true, true},
        {u"abc", true, false, true, false},     {u"ABC", true, false, false, true},
        {u"a\u00E9", false, true, true, false}, {u"\u00DF", false, false, true, true},
        {u"\u0416", false, false, false, true},
    };
    for (const auto& [text, ascii, umlauted, lower, upper] : cases) {
        EXPECT_EQ(isAsciiString(text), ascii) << utf8(text);
        EXPECT_EQ(isUmlautedString(text), umlauted) << utf8(text);
        EXPECT_EQ(isLowerCaseString(text), lower) << utf8(text);
        EXPECT_EQ(isUpperCaseString(text), upper) << utf8(text);
    }
    // Every place of a unit or byte that is not ASCII is seen.
    for (std::size_t length = 0; length < 70; ++length) {
        std::u16string units(length, u'\x7F');
        Data bytes(length, 0x7F);
        EXPECT_TRUE(isAsciiString(units) && isAsciiString(bytes));
        for (std::size_t i = 0; i < length; ++i) {
            units[i] = u'\x80', bytes[i] = 0x80;
            EXPECT_FALSE(isAsciiString(units) || isAsciiString(bytes)) << length << ' ' << i;
            units[i] = u'\x7F', bytes[i] = 0x7F;
        }
    }
}

TEST(Folding, Alphabet) {
    EXPECT_EQ(firstAlphaCharacter(), u'A');
    const char16_t last = lastAlphaCharacter();
    EXPECT_TRUE(alphaCharacterSetRep().contains(last));
    for (unsigned unit = last + 1u; unit < 65536; ++unit)
        EXPECT_FALSE(alphaCharacterSetRep().contains(static_cast<char16_t>(unit)));
}

}  // namespace
}  // namespace velmo
