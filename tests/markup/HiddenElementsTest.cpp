#include "markup/HiddenElements.h"

#include "TestSupport.h"

namespace velmo::detail {
namespace {

// A tag that is passed over hides nothing, however its attributes are spelled and wherever they stand.
TEST(HiddenElements, AreNeverPassedOver) {
    const View pieces[] = {u" class=hidden ",
                           u" style='display:none'",
                           u" STYLE=visibility:hidden",
                           u" cla\u017Fs=",
                           u"\"HIDDEN\"",
                           u" h\u0131dden",
                           u" id=a",
                           u" data-x='y'",
                           u" ",
                           u" type=d d",
                           u"\u4E00",
                           u" \u017Ftyle=width:1px"};
    std::mt19937 random(11);
    int hidden = 0, passed = 0;
    for (int round = 0; round < 20000; ++round) {
        std::u16string tag = random() % 2 ? u"<div" : u"</s";
        for (unsigned n = random() % 6; n > 0; --n) tag += pieces[random() % std::size(pieces)];
        tag += u'>';
        const std::string bytes = String(tag).utf8();
        const bool mayUnits = mayHide(View(tag)), mayBytes = mayHide(std::string_view(bytes));
        for (const WebRules& web : {WebRules(), WebRules::today()}) {
            const bool isHidden = isHiddenElement(tag, web);
            ASSERT_TRUE(!isHidden || (mayUnits && mayBytes)) << bytes;
            hidden += isHidden;
        }
        if (tag.size() > 16) {
            ASSERT_EQ(mayUnits, mayHideByUnit(View(tag))) << bytes;
            ASSERT_EQ(mayBytes, mayHideByUnit(std::string_view(bytes))) << bytes;
        }
        passed += !mayUnits;
    }
    EXPECT_GT(hidden, 1000);
    EXPECT_GT(passed, 1000);
}

}  // namespace
}  // namespace velmo::detail
