#include "text/SettledUnits.h"

#include "TestSupport.h"
#include "text/WhiteRuns.h"

namespace velmo::detail {
namespace {

bool isInPlainStretch(char16_t unit) {
    return (unit >= 0x21 && unit <= 0x7F) || (unit >= 0xA1 && unit <= 0x167F) || (unit >= 0x3001 && unit <= 0xFEFE);
}

// Unit by unit: all that is told to stay does, and the next one, if a whole step is left, does not.
TEST(SettledUnits, AreThoseThatStay) {
    if (!canSettleWide()) GTEST_SKIP();
    std::mt19937 random(9);
    for (int round = 0; round < 60000; ++round) {
        const unsigned often = 1 + random() % 40;
        std::u16string text(random() % 90, u'a');
        for (char16_t& unit : text)
            unit = random() % often ? View(u"abc d\u00E9\u4E00")[random() % 7]
                   : random() % 2   ? View(u"  &\n\u00A0\u3000\uFFFC\u1680")[random() % 8]
                                    : static_cast<char16_t>(random());
        const char16_t stop = random() % 2 ? u'&' : u'\0';
        const bool blanksStay = random() % 2;
        const auto stays = [&](std::size_t i) {
            const auto isPlain = [&](std::size_t j) {
                return j < text.size() && isInPlainStretch(text[j]) && (stop == 0 || text[j] != stop);
            };
            return isPlain(i) || (blanksStay && text[i] == u' ' && isPlain(i + 1));
        };
        std::u16string out(text.size(), u'\0');
        const auto count =
            static_cast<std::size_t>(settleWide(text.data(), text.data() + text.size(), out.data(), stop, blanksStay));
        ASSERT_LE(count, text.size());
        ASSERT_EQ(View(out).substr(0, count), View(text).substr(0, count));
        for (std::size_t i = 0; i < count; ++i) ASSERT_TRUE(stays(i)) << i;
        if (text.size() - count >= WideUnits) { ASSERT_FALSE(stays(count)) << count; }
    }
}

}  // namespace
}  // namespace velmo::detail
