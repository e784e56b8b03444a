#include <velmocore/text/Removal.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Removal, EverywhereAndInPlace) {
    const struct {
        String (*operation)(const String&);
        void (*inPlace)(std::u16string&);
        View text, expected;
    } cases[] = {
        {stringByRemovingFeeds, removeFeeds, u"\na\r\n b\u2028c\uFFFC\x0B", u"a bc\x0B"},
        {stringByRemovingTabs, removeTabs, u"\t\ta b\t", u"a b"},
        {stringByRemovingSpaces, removeSpaces, u" a\u00A0\t\nb ", u"a\nb"},
        {stringByRemovingDigits, removeDigits, u"1a2\u0663b", u"ab"},
        {[](const String& s) { return stringByRemovingCharacters(s, u'x'); },
         [](std::u16string& t) { removeCharacters(t, u'x'); }, u"xaXxxb", u"aXb"},
        {[](const String& s) { return stringByRemovingCharactersOfString(s, u"()-\u2013"); },
         [](std::u16string& t) { removeCharactersOfString(t, u"()-\u2013"); }, u"(0)30-1\u20132", u"03012"},
        {stringByRemovingTabs, removeWhiteSpaces, u"\t\t\t", u""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.operation(c.text), c.expected) << utf8(c.text);
        std::u16string text(c.text);
        c.inPlace(text);
        EXPECT_EQ(text, c.expected);
        const String clean(u"clean");
        EXPECT_TRUE(c.operation(clean).isIdenticalTo(clean));
        EXPECT_TRUE(c.operation(String()).isAbsent());
    }
    std::u16string text = u" a\n b\uFEFF";
    removeWhiteSpaces(text);
    EXPECT_EQ(text, u"ab");
    EXPECT_EQ(stringByRemovingCharactersOfString(u"abc", View()), u"abc");
}

TEST(Removal, WithMapping) {
    const String plain(u"10.0.0.1");
    EXPECT_EQ(lowercaseStringByRemovingDigits(u"A1\u00C9b"), u"a\u00E9b");
    EXPECT_EQ(uppercaseStringByRemovingDigits(u"a1\u00E9"), u"A\u00C9");
    EXPECT_EQ(stringByRemovingNonIPCharacters(u"host 10.0.0.1:80"), u"10.0.0.180");
    EXPECT_FALSE(stringByRemovingNonIPCharacters(plain).isIdenticalTo(plain));
    EXPECT_TRUE(lowercaseStringByRemovingDigits(String()).isAbsent());
}

}  // namespace
}  // namespace velmo
