#include <velmocore/text/Collapsing.h>

#include <velmocore/text/CharacterSets.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Collapsing, RunsBecomeOneUnit) {
    const std::tuple<String (*)(const String&), View, View> cases[] = {
        {stringByRemovingMultipleSpaces, u"a \t\u00A0b\n\nc", u"a b\n\nc"},
        {stringByRemovingMultipleFeeds, u"a\r\n\r\nb", u"a\nb"},
        {[](const String& s) { return stringByRemovingMultipleWhiteSpaces(s); }, u"\r\n a\uFEFF b  ", u" a b "},
    };
    for (const auto& [operation, given, expected] : cases) {
        EXPECT_EQ(operation(given), expected) << utf8(given);
        EXPECT_TRUE(operation(String()).isAbsent());
    }
    std::u16string text = u" a \n\n b";
    removeMultipleFeeds(text);
    EXPECT_EQ(text, u" a \n b");
    removeMultipleSpaces(text);
    removeMultipleWhiteSpaces(text);
    EXPECT_EQ(text, u" a b");
}

std::u16string collapsedSlowly(View text, RunClass runs, char16_t replacement) {
    std::u16string out;
    bool inRun = false;
    for (char16_t unit : text) {
        const bool member = runs == RunClass::Feeds    ? isFeedUnit(unit)
                            : runs == RunClass::Spaces ? spaceCharacterSetRep().contains(unit)
                                                       : whiteCharacterSetRep().contains(unit);
        if (!member)
            out += unit;
        else if (!inRun)
            out += replacement;
        inRun = member;
    }
    return out;
}

TEST(Collapsing, AgreesWithTheSlowLoop) {
    std::mt19937 random(7);
    std::u16string rare;
    for (unsigned unit = 0; unit < 65536; ++unit)
        if (whiteCharacterSetRep().contains(static_cast<char16_t>(unit))) rare += static_cast<char16_t>(unit);
    const View usual = u"abc\u00E9\u4E00\U0001F600 z";
    for (int round = 0; round < 40000; ++round) {
        std::u16string text;
        const unsigned often = 1 + random() % 9;
        for (unsigned n = random() % 50; n > 0; --n)
            text += random() % often ? usual[random() % usual.size()]
                    : random() % 2   ? u' '
                                     : rare[random() % rare.size()];
        const auto runs = static_cast<RunClass>(random() % 3);
        const char16_t replacement = View(u" \n_")[random() % 3];
        const std::u16string expected = collapsedSlowly(text, runs, replacement);
        const String string(text);
        const String result = stringByRemovingMultipleWhiteSpaces(string, runs, replacement);
        ASSERT_EQ(result, expected) << static_cast<int>(runs);
        ASSERT_EQ(result.isIdenticalTo(string), expected == text);
        removeMultipleWhiteSpaces(text, runs, replacement);
        ASSERT_EQ(text, expected);
    }
}

}  // namespace
}  // namespace velmo
