#include <velmocore/text/Tabs.h>

#include <velmocore/text/CharacterSets.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Tabs, ToBlanksAndBack) {
    const std::tuple<std::size_t, View, View, View> cases[] = {
        {4, u"\t\tx\n\ty", u"        x\n    y", u"\t\tx\n\ty"},
        {4, u"abc d", u"abc d", u"abc\td"},  // a single blank on a tab stop
        {8, u"a   \tb", u"a       b", u"a\tb"},
        {0, u"a\t ", u"a\t ", u"a\t "},
    };
    for (const auto& [width, encoded, decoded, encodedAgain] : cases) {
        std::u16string text(encoded);
        decodeTabs(text, width);
        EXPECT_EQ(text, decoded) << width << utf8(encoded);
        encodeTabs(text, width);
        EXPECT_EQ(text, encodedAgain);
        text = encoded;
        encodeTabs(text, width);
        EXPECT_EQ(text, encodedAgain);
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
        std::u16string text = test::randomText(random, u"ab    \n\r", random() % 40);
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
