#include <velmocore/words/Separators.h>

#include "TestSupport.h"

namespace velmo {
namespace {

std::u16string members(const CharacterSetRep& set) {
    std::u16string units;
    for (unsigned unit = 0; unit < 65536; ++unit)
        if (set.contains(static_cast<char16_t>(unit))) units += static_cast<char16_t>(unit);
    return units;
}

TEST(Separators, SmallSetsAreExact) {
    EXPECT_EQ(members(defaultComponentSeparators()), u"\x03\n\f\r!,.:;?\u2028\u2029\uFEFF\uFFFC");
    EXPECT_EQ(members(defaultSentenceSeparators()), u"\x03\n\f\r!.:?\u2028\u2029\uFEFF\uFFFC");
    EXPECT_EQ(members(defaultLineSeparators()), u"\x03\n\f\r\u2028\u2029\uFFFC");
}

TEST(Separators, WordsAreLettersMarksAndDigits) {
    const CharacterSetRep& set = defaultWordSeparators();
    EXPECT_TRUE(set.contains(0));
    for (char16_t unit : View(u" \t\n\x7F\x85'-_*?[]\u00A0\u00B2\u00BD\u2019\u20AC\u2030\u200B\u00AD"
                              u"\u3002\uFDD0\uFEFF\uFFFE\xD800\xDFFE\xF400\xF8FE"))
        EXPECT_TRUE(set.contains(unit)) << std::hex << static_cast<unsigned>(unit);
    for (char16_t unit : View(u"a7Z\u00E4\u0308\u0416\u05D0\u0661\u4E00\uAC00\u00AA\u00BE"
                              u"\xDFFF\uE000\uF3FF\uF8FF\uFFFF"))
        EXPECT_FALSE(set.contains(unit)) << std::hex << static_cast<unsigned>(unit);
}

}  // namespace
}  // namespace velmo
