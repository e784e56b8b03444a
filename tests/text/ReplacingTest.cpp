#include <velmocore/text/Replacing.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Replacing, OneUnit) {
    const String text(u"aAbB--");
    EXPECT_EQ(stringByReplacingCharacter(text, u'a', u'x'), u"xAbB--");
    EXPECT_EQ(stringByReplacingCharacter(text, u'a', u'x', Case::Insensitive),
              u"xAbB--");  // always case sensitive
    EXPECT_EQ(stringByReplacingCharacter(text, u'-', u'_', Case::Insensitive), u"aAbB__");
    EXPECT_TRUE(stringByReplacingCharacter(text, u'z', u'x').isIdenticalTo(text));
    EXPECT_TRUE(stringByReplacingCharacter(text, u'a', u'a').isIdenticalTo(text));
    EXPECT_TRUE(stringByReplacingCharacter(String(), u'a', u'b').isAbsent());

    std::u16string units = u"aAbB";
    EXPECT_EQ(replaceCharacter(units, u'a', u'x'), 1u);
    EXPECT_EQ(replaceCharacter(units, u'b', u'y', Case::Insensitive), 2u);
    EXPECT_EQ(units, u"xAyy");
    EXPECT_EQ(replaceCharacter(units, u'q', u'y'), 0u);
}

TEST(Replacing, Substrings) {
    const std::tuple<View, View, View, Case, View, std::size_t> cases[] = {
        {u"aaaa", u"aa", u"a", Case::Sensitive, u"aa", 2},
        {u"One one ONE", u"one", u"1", Case::Insensitive, u"1 1 1", 3},
        {u"abc", u"abc", u"", Case::Sensitive, u"", 1},
        {u"abc", u"", u"x", Case::Sensitive, u"abc", 0},
        {u"abc", View(), u"x", Case::Sensitive, u"abc", 0},
        {u"", u"a", u"x", Case::Sensitive, u"", 0},
        {u"abc", u"b", View(), Case::Sensitive, u"ac", 1},
    };
    for (const auto& [given, sought, replacement, letterCase, expected, count] : cases) {
        std::u16string text(given);
        EXPECT_EQ(replaceString(text, sought, replacement, letterCase), count);
        EXPECT_EQ(text, expected) << utf8(given);
        const String string(given);
        const String result = stringByReplacingString(string, sought, replacement, letterCase);
        const bool unchanged = count == 0 || !replacement.data();
        EXPECT_EQ(result, unchanged ? given : expected);
        EXPECT_EQ(result.isIdenticalTo(string), unchanged);
    }
    std::u16string text = u"xaxbx";
    EXPECT_EQ(deleteString(text, u"x"), 3u);
    EXPECT_EQ(text, u"ab");
    // Arguments may be parts of the text itself.
    text = u"ab-ab-ab";
    EXPECT_EQ(replaceString(text, View(text).substr(0, 2), View(text).substr(2, 3)), 3u);
    EXPECT_EQ(text, u"-ab--ab--ab");
}

TEST(Replacing, AgreesWithTheSlowReplacement) {
    std::mt19937 random(11);
    for (int round = 0; round < 5000; ++round) {
        const auto word = [&](unsigned most) { return test::randomText(random, u"aAb", random() % most); };
        std::u16string text = word(40), sought = word(4), expected;
        const std::u16string replacement = word(5);
        if (sought.empty()) continue;
        std::size_t count = 0;
        for (std::size_t i = 0; i < text.size();) {
            if (text.compare(i, sought.size(), sought) == 0) {
                expected += replacement, i += sought.size(), ++count;
            } else {
                expected += text[i++];
            }
        }
        ASSERT_EQ(replaceString(text, sought, replacement), count);
        ASSERT_EQ(text, expected);
    }
}

TEST(Replacing, Rotation) {
    const String text(u"Hello, \u00C4z");
    EXPECT_EQ(stringByRotating13(text), u"Uryyb, \u00C4m");
    EXPECT_EQ(stringByRotating(text, 39), stringByRotating13(text));
    EXPECT_EQ(stringByRotating(text, -13), stringByRotating13(text));
    EXPECT_EQ(stringByRotating(u"azAZ@[`{", 1), u"baBA@[`{");
    EXPECT_TRUE(stringByRotating(text, 26).isIdenticalTo(text));
    EXPECT_TRUE(stringByRotating(String(), 1).isAbsent());
    const String digits(u"123");
    EXPECT_FALSE(stringByRotating(digits, 1).isIdenticalTo(digits));
}

TEST(Replacing, WithAFormat) {
    const auto filled = [](View format, std::initializer_list<FormatArgument> arguments) {
        std::u16string text = u"<*>";
        replaceStringWithFormat(text, u"*", format, arguments);
        return text;
    };
    EXPECT_EQ(filled(u"%d of %d", {3, 12}), u"<3 of 12>");
    EXPECT_EQ(filled(u"%@/%@/%@", {u"\u00E4", 7, 0.5}), u"<\u00E4/7/0.5>");
    EXPECT_EQ(filled(u"%05lld|%-4d|%+.3d", {42, 7, 5}), u"<00042|7   |+005>");
    EXPECT_EQ(filled(u"%04x %X %qd", {255, 171, -1}), u"<00ff AB -1>");
    EXPECT_EQ(filled(u"%.2f %C 100%%", {1.005, u'x'}), u"<1.00 x 100%>");
    EXPECT_EQ(filled(u"[%4@][%-4s][%.1@]", {u"ab", "cd", u"ef"}), u"<[  ab][cd  ][e]>");
    // What has no argument of its kind stays as it stands.
    EXPECT_EQ(filled(u"%d %@", {u"x"}), u"<%d %@>");
    EXPECT_EQ(filled(u"50%", {}), u"<50%>");
    EXPECT_EQ(filled(u"%999999d%", {1}), u"<%999999d%>");
    std::u16string text = u"**";
    EXPECT_EQ(replaceStringWithFormat(text, u"*", View(), {}), 0u);
    EXPECT_EQ(replaceStringWithFormat(text, u"*", u"%d", {1}), 2u);
    EXPECT_EQ(text, u"11");
}

}  // namespace
}  // namespace velmo
