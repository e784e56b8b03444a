#include <velmocore/text/TextAtIndex.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(TextAtIndex, Words) {
    const View text = u"one two3 a\u0308.";
    const std::pair<std::uint64_t, Range> cases[] = {
        {0, {0, 3}},
        {2, {0, 3}},
        {3, Range::none()},
        {7, {4, 4}},
        {10, {9, 2}},
        {11, Range::none()},
        {12, Range::none()},
        {~0ull, Range::none()},
        {NotFound, Range::none()},
    };
    for (const auto& [index, expected] : cases) {
        EXPECT_EQ(getWordRangeAtIndex(text, index), expected) << index;
        EXPECT_EQ(getWordAtIndex(text, index),
                  expected.isFound() ? text.substr(expected.location, expected.length) : u"");
    }
    EXPECT_EQ(firstWord(u"one two"), u"one");
    EXPECT_EQ(lastWord(u"one two"), u"two");
    EXPECT_EQ(firstWord(u" one"), u"");
    EXPECT_EQ(lastWord(u"one."), u"");
    EXPECT_EQ(lastWord(u""), u"");
    CharacterSetRep commas;
    commas.add(u',');
    EXPECT_EQ(getSubstringAtIndex(u"a,b c,d", 3, commas), u"b c");
    EXPECT_EQ(getSubstringAtIndex(u"a,b c,d", 1, commas), u"");
    EXPECT_EQ(getSubstringRangeAtIndex(u"abc", NotFound, commas), Range::none());
}

TEST(TextAtIndex, Links) {
    // The index is that of the unit behind the |, which is taken out.
    const std::pair<View, View> cases[] = {
        {u"see <http://ex|ample.com/> there", u"http://example.com/"},
        {u"see |http://example.com/a.html.", u"http://example.com/a.html"},
        {u"see http://example.com/|a.html?!\u201D ok", u"http://example.com/a.html"},
        {u"| word", u"word"},
        {u"one| ", u""},
        {u"a|(b)", u"a(b)"},
        {u"...|.", u""},
        {u"(mail joe.doe|@example.com)", u"joe.doe@example.com"},
        {u"[joe|@example.com]*|", u"joe@example.com"},
        {u"x..joe|@a.b", u"joe@a.b"},
        {u".joe|@a.b", u".joe@a.b"},
        {u"a@joe|@b@c", u"joe@b"},
        {u"|@a.b", u""},
        {u" |@a.b", u"@a.b"},
        {u"\u201Cjoe|@a.b\u201D", u"joe@a.b"},
        {u"mailto:<joe|@a.b>", u"joe@a.b"},
        {u"jo|e@a.b (x)", u"joe@a.b"},
        {u"a|", u""},
    };
    for (const auto& [marked, expected] : cases) {
        std::u16string text(marked);
        const std::size_t index = text.find(u'|');
        text.erase(index, 1);
        EXPECT_EQ(getLinkAtIndex(text, index), expected) << utf8(marked);
    }
    EXPECT_EQ(getLinkRangeAtIndex(u"a http://b.c/ d", 4), (Range{2, 11}));
    EXPECT_EQ(getLinkRangeAtIndex(u"", 0), Range::none());
}

}  // namespace
}  // namespace velmo
