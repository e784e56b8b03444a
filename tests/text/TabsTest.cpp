#include <velmocore/text/Tabs.h>

#include <random>
#include <string_view>

#include <velmocore/text/CharacterSets.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Tabs, ToBlanksAndBack) {
    const struct {
        std::size_t width;
        std::u16string_view encoded, decoded, encodedAgain;
    } cases[] = {
        {4, u"a\tb", u"a   b", u"a\tb"},
        {4, u"abcd\te", u"abcd    e", u"abcd\te"},
        {4, u"\t\tx\n\ty", u"        x\n    y", u"\t\tx\n\ty"},
        {4, u"abc d", u"abc d", u"abc\td"},  // a single blank on a tab stop
        {4, u"ab  cd  e", u"ab  cd  e", u"ab\tcd\te"},
        {4, u"a  b  c", u"a  b  c", u"a  b  c"},  // runs that end elsewhere
        {8, u"a   \tb", u"a       b", u"a\tb"},
        {1, u"\ta", u" a", u"\ta"},
        {0, u"a\t ", u"a\t ", u"a\t "},
    };
    for (const auto& c : cases) {
        std::u16string text(c.encoded);
        decodeTabs(text, c.width);
        EXPECT_EQ(text, c.decoded) << c.width << utf8(c.encoded);
        encodeTabs(text, c.width);
        EXPECT_EQ(text, c.encodedAgain);
        text = c.encoded;
        encodeTabs(text, c.width);
        EXPECT_EQ(text, c.encodedAgain);
    }
}

/// Counts columns without a modulus, and edits the text as it goes.
std::u16string encodedSlowly(std::u16string text, std::size_t width) {
    std::size_t column = 0, run = text.npos;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isFeedUnit(text[i])) {
            column = 0, run = text.npos;
            continue;
        }
        if (!spaceCharacterSetRep().contains(text[i]))
            run = text.npos;
        else if (run == text.npos)
            run = i;
        column += text[i] == u'\t' ? width - column % width : 1;
        if (column % width != 0 || run == text.npos) continue;
        text.replace(run, i - run + 1, u"\t");
        i = run, run = text.npos;
    }
    return text;
}

TEST(Tabs, EncodingAgreesWithTheSlowWayAndComesBack) {
    std::mt19937 random(8);
    for (int round = 0; round < 5000; ++round) {
        std::u16string text;
        for (unsigned n = random() % 40; n > 0; --n) text += u"ab    \n\r"[random() % 8];
        const std::size_t width = 1 + random() % 9;
        std::u16string changed = text;
        encodeTabs(changed, width);
        ASSERT_EQ(changed, encodedSlowly(text, width)) << width;
        decodeTabs(changed, width);
        ASSERT_EQ(changed, text) << width;
        for (char16_t& unit : text)
            if (random() % 5 == 0) unit = u"\t\u00A0"[random() % 2];
        changed = text;
        encodeTabs(changed, width);
        ASSERT_EQ(changed, encodedSlowly(text, width)) << width;
    }
}

}  // namespace
}  // namespace velmo
