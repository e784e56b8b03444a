#include <velmocore/text/Lines.h>

#include <velmocore/text/CharacterSets.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Lines, Counted) {
    const std::tuple<View, std::size_t, View, View> cases[] = {
        {u"", 0, u"", u""},
        {u"one", 1, u"one", u""},
        {u"one\r\ntwo\r\n", 2, u"one", u"\r\n"},
        {u"one\r\ntwo", 2, u"one", u""},
        {u"\n\r\r\n", 3, u"", u"\n\r\r\n"},
        {u"one\u2028two\x0B\u0085\uFFFC", 2, u"one", u"\uFFFC"},
        {u"one\x03", 1, u"one", u"\x03"},
    };
    for (const auto& [text, count, first, feed] : cases) {
        EXPECT_EQ(numberOfLines(text), count) << utf8(text);
        EXPECT_EQ(lines(text).size(), count);
        EXPECT_EQ(firstLine(text), first);
        EXPECT_EQ(feedOfLine(text), feed);
        EXPECT_EQ(hasFeedOfLine(text), !feed.empty());
    }
    const String text(u"no feed");
    EXPECT_TRUE(firstLine(text).isIdenticalTo(text));
}

TEST(Lines, JoinedTheyAreTheText) {
    std::mt19937 random(10);
    for (int round = 0; round < 5000; ++round) {
        std::u16string text, joined;
        for (unsigned n = random() % 60; n > 0; --n)
            text += random() % 3 ? u'a' : u"\n\r\r\n\u2029\uFEFF\u2027"[random() % 7];
        for (const String& line : lines(text)) {
            joined += line.view();
            // One line end each, and nowhere but at the end.
            const View inner = line.view().substr(0, line.length() - 1);
            for (std::size_t i = 0; i < inner.size(); ++i)
                ASSERT_TRUE(!isFeedUnit(inner[i]) || (i + 1 == inner.size() && line.view().ends_with(u"\r\n")));
        }
        ASSERT_EQ(joined, text);
    }
}

}  // namespace
}  // namespace velmo
