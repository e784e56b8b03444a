#include <velmocore/text/Editing.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Editing, AtAndBehindTheEnds) {
    std::u16string text = u"ab";
    appendSubstring(text, u"one two", {4, 3});
    appendSubstring(text, u"one two", {4, 0});
    appendSubstring(text, u"one two", {6, ~0ull});
    appendSubstring(text, u"one", Range::none());
    appendUnichar(text, u'\u00E4');
    appendUnichars(text, {});
    EXPECT_EQ(text, u"abtwoo\u00E4");
    insertCharacter(text, u'_', 0);
    insertCharacter(text, u'!', 99);
    removeCharacterAtIndex(text, 1);
    removeCharacterAtIndex(text, 99);
    EXPECT_EQ(text, u"_btwoo\u00E4!");
}

}  // namespace
}  // namespace velmo
