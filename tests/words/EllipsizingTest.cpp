#include <velmocore/words/Ellipsizing.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Ellipsizing, AfterWords) {
    const struct {
        String text;
        std::uint64_t n;
        const char16_t* expected;  // null: the text itself
    } cases[] = {
        {u"one two", 1, u"one..."},     {u"one two", 2, nullptr},
        {u"one two", 0, nullptr},       {u"one, two.", 2, nullptr},
        {u"  one two", 1, u"  one..."}, {u"one two", 7, nullptr},
        {u"a b", 3, nullptr},           {u"", 1, nullptr},
        {u"...", 1, nullptr},           {u"one two ...", 1, u"one..."},
    };
    for (const auto& c : cases) {
        const String result = stringByEllipsizingAfterNWords(c.text, c.n);
        if (c.expected)
            EXPECT_EQ(result, c.expected);
        else
            EXPECT_TRUE(result.isIdenticalTo(c.text)) << c.text << c.n;
    }
    EXPECT_EQ(stringByEllipsizingForMenu(u"a b c d e f g"), u"a b c d e f...");
    EXPECT_TRUE(stringByEllipsizingForMenu(String()).isAbsent());
}

TEST(Ellipsizing, AfterCharacters) {
    const struct {
        String text;
        std::uint64_t n;
        const char16_t* expected;
    } cases[] = {
        {u"incomprehensible", 5, nullptr},  // a first word is not cut
        {u"one two three", 9, u"one two..."},
        {u"one two three", 8, u"one two..."},
        {u"one two three", 7, u"one..."},  // the word that ends there counts as cut
        {u"one two three", 13, nullptr},
        {u"one, (two)", 7, u"one..."},
        {u" onetwo three", 5, nullptr},
        {u"a bcd", 3, u"a..."},
        {u"one two", 0, nullptr},
        {u"", 3, nullptr},
    };
    for (const auto& c : cases) {
        const String result = stringByEllipsizingAfterNCharacters(c.text, c.n);
        if (c.expected)
            EXPECT_EQ(result, c.expected) << c.text << c.n;
        else
            EXPECT_TRUE(result.isIdenticalTo(c.text)) << c.text << c.n;
    }
}

TEST(Ellipsizing, Lines) {
    const struct {
        String text;
        std::uint64_t lines, n;
        String expected;
    } cases[] = {
        {u"one\r\n\r\ntwo\nthree", 2, 99, u"one\ntwo"},
        {u"one\ntwo", 9, 99, u"one\ntwo"},
        {u"one two three\nfour five six", 2, 9, u"one two...\nfour..."},
        {u"ab\nc", 9, 99, u"ab"},  // a last line of one unit goes
        {u"ab\nc\n", 9, 99, u"ab\nc"},
        {u"\n\n", 9, 99, u""},
        {u"c", 9, 99, u""},
        {u"", 3, 5, u""},
    };
    for (const auto& c : cases) EXPECT_EQ(stringByEllipsizingNLines(c.text, c.lines, c.n), c.expected) << c.text;
    const String text(u"one line"), two(u"one\ntwo");
    EXPECT_TRUE(stringByEllipsizingNLines(text, 3, 99).isIdenticalTo(text));
    EXPECT_TRUE(stringByEllipsizingNLines(two, 0, 1).isIdenticalTo(two));
}

}  // namespace
}  // namespace velmo
