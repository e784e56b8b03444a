#include <velmocore/text/FastCompare.h>

#include "TestSupport.h"

namespace velmo {
namespace {

int sign(std::int64_t value) { return (value > 0) - (value < 0); }

TEST(FastCompare, Order) {
    const std::tuple<View, const char*, int, int> cases[] = {
        {u"", "", 0, 0},       {u"a", "", 1, 1},         {u"", "abc", -1, -1},
        {u"abc", "abc", 0, 0}, {u"abc", "ab", 1, 1},     {u"abc", "abd", -1, -1},
        {u"B", "a", -1, 1},    {u"HREF", "href", -1, 0}, {u"longer text A", "longer text a", -1, 0},
        {u"_", "a", -1, 1},  // upper case is compared, so _ comes behind the letters
    };
    for (const auto& [units, chars, exact, noCase] : cases) {
        const std::string a = utf8(units);
        const String b = String::fromUTF8(chars);
        SCOPED_TRACE(a);
        EXPECT_EQ(sign(fastCompareUnichars(units, b)), exact);
        EXPECT_EQ(sign(fastCompareUnichars(b, units)), -exact);
        EXPECT_EQ(sign(compareCharacters(units, std::string_view(chars))), exact);
        EXPECT_EQ(sign(fastCompareChars(a, chars)), exact);
        EXPECT_EQ(sign(fastCaseInsensitiveCompareUnichars(units, b)), noCase);
        EXPECT_EQ(sign(caseInsensitiveCompareCharacters(units, std::string_view(chars))), noCase);
        EXPECT_EQ(sign(fastCaseInsensitiveCompareChars(a, chars)), noCase);
        EXPECT_EQ(sign(fastCompareUnicharsUsingConversionTable(units, b, &upperCharsTable())), noCase);
        EXPECT_EQ(sign(fastCompareUnicharsUsingConversionTable(units, b, nullptr)), exact);
    }
}

TEST(FastCompare, ResultsAreDifferences) {
    EXPECT_EQ(fastCompareUnichars(u"abcdefgh", u"abc"), 5);
    EXPECT_EQ(fastCompareUnichars(u"abcdex", u"abcdea"), u'x' - u'a');
    EXPECT_EQ(fastCaseInsensitiveCompareUnichars(u"ax", u"AB"), u'X' - u'B');
}

TEST(FastCompare, BytesKeepTheirSign) {
    EXPECT_EQ(fastCompareUnicharsWithChars(u"\uFFE9", "\xE9"), 0);
    EXPECT_LT(fastCompareUnicharsWithChars(u"\u00E9", "\xE9"), 0);
    EXPECT_LT(fastCompareChars("\x80", "a"), 0);
    EXPECT_GT(fastCaseInsensitiveCompareChars("\x80", "a"), 0);  // as units U+FF80 and a
}

}  // namespace
}  // namespace velmo
