#include "text/WhiteSkip.h"

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(WhiteSkip, AgreesWithTheLoopOverUnits) {
    const CharacterSetRep& white = whiteCharacterSetRep();
    std::u16string all;
    for (unsigned unit = 0; unit < 65536; ++unit)
        if (white.contains(static_cast<char16_t>(unit))) all += static_cast<char16_t>(unit);
    const View indentation = u"\n\r\t    ", others = u"a\x01\x0E\x1F!\u00A1\uFFFF\u200E";
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        const unsigned rare = 2 + random() % 30, other = 2 + random() % 60;
        std::u16string text(random() % 70, u' ');
        for (char16_t& unit : text)
            unit = random() % other == 0  ? others[random() % others.size()]
                   : random() % rare == 0 ? all[random() % all.size()]
                                          : indentation[random() % indentation.size()];
        const char16_t *const from = text.data(), *const to = from + text.size();
        ASSERT_EQ(detail::skipWhite(from, to, white) - from, detail::skipWhiteByUnit(from, to, white) - from);
    }
}

}  // namespace
}  // namespace velmo
