#include <velmocore/words/Ellipsizing.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Ellipsizing, AfterWordsAndCharacters) {
    const auto words = stringByEllipsizingAfterNWords;
    const auto characters = stringByEllipsizingAfterNCharacters;
    const std::tuple<decltype(words), String, std::uint64_t, const char16_t*> cases[] = {
        // null: the text itself
        {words, u"one two", 1, u"one..."},
        {words, u"one two", 2, nullptr},
        {words, u"one two", 0, nullptr},
        {words, u"one, two.", 2, nullptr},
        {words, u"  one two", 1, u"  one..."},
        {words, u"one two", 7, nullptr},
        {words, u"a b", 3, nullptr},
        {words, u"", 1, nullptr},
        {words, u"...", 1, nullptr},
        {words, u"one two ...", 1, u"one..."},
        {characters, u"incomprehensible", 5, nullptr},  // a first word is not cut
        {characters, u"one two three", 9, u"one two..."},
        {characters, u"one two three", 8, u"one two..."},
        {characters, u"one two three", 7, u"one..."},  // the word that ends there counts as cut
        {characters, u"one two three", 13, nullptr},
        {characters, u"one, (two)", 7, u"one..."},
        {characters, u" onetwo three", 5, nullptr},
        {characters, u"a bcd", 3, u"a..."},
        {characters, u"one two", 0, nullptr},
        {characters, u"", 3, nullptr},
    };
    for (const auto& [operation, text, n, expected] : cases) {
        const String result = operation(text, n);
        if (expected)
            EXPECT_EQ(result, expected) << text << n;
        else
            EXPECT_TRUE(result.isIdenticalTo(text)) << text << n;
    }
    EXPECT_EQ(stringByEllipsizingForMenu(u"a b c d e f g"), u"a b c d e f...");
    EXPECT_TRUE(stringByEllipsizingForMenu(String()).isAbsent());
}

TEST(Ellipsizing, Lines) {
    const std::tuple<String, std::uint64_t, std::uint64_t, String> cases[] = {
        {u"one\r\n\r\ntwo\nthree", 2, 99, u"one\ntwo"},
        {u"one\ntwo", 9, 99, u"one\ntwo"},
        {u"one two three\nfour five six", 2, 9, u"one two...\nfour..."},
        {u"ab\nc", 9, 99, u"ab"},  // a last line of one unit goes
        {u"ab\nc\n", 9, 99, u"ab\nc"},
        {u"\n\n", 9, 99, u""},
        {u"c", 9, 99, u""},
        {u"", 3, 5, u""},
    };
    for (const auto& [text, lines, n, expected] : cases)
        EXPECT_EQ(stringByEllipsizingNLines(text, lines, n), expected) << text;
    const String text(u"one line"), two(u"one\ntwo");
    EXPECT_TRUE(stringByEllipsizingNLines(text, 3, 99).isIdenticalTo(text));
    EXPECT_TRUE(stringByEllipsizingNLines(two, 0, 1).isIdenticalTo(two));
}

}  // namespace
}  // namespace velmo
