#include <velmocore/text/CharacterSets.h>

#include <unicode/uchar.h>

#include <functional>

#include <velmocore/text/ConversionTables.h>

#include "TestSupport.h"
#include "platform/Unicode.h"

namespace velmo {
namespace {

bool isIn(unsigned unit, std::uint32_t categories) {
    // A surrogate has a category of its own, which is in none of these.
    return (U_GET_GC_MASK(static_cast<UChar32>(unit)) & categories) != 0;
}

bool isFeed(unsigned unit) {
    return View(u"\x03\n\f\r\u2028\u2029\uFEFF\uFFFC").find(static_cast<char16_t>(unit)) != View::npos;
}

// The standard sets, unit by unit, against Unicode's own categories.
TEST(CharacterSets, HoldTheirCategories) {
    const struct {
        const char* name;
        const CharacterSetRep& set;
        std::function<bool(unsigned)> expected;
    } cases[] = {
        {"empty", emptyCharacterSetRep(), [](unsigned) { return false; }},
        {"space", spaceCharacterSetRep(), [](unsigned c) { return isIn(c, U_GC_ZS_MASK) || c == 0 || c == '\t'; }},
        {"white", whiteCharacterSetRep(),
         [](unsigned c) { return isIn(c, U_GC_Z_MASK) || (c >= 9 && c <= 13) || c == 0x85 || c == 0 || isFeed(c); }},
        {"alpha", alphaCharacterSetRep(), [](unsigned c) { return isIn(c, U_GC_L_MASK | U_GC_M_MASK); }},
        {"alphaNum", alphaNumCharacterSetRep(),
         [](unsigned c) { return isIn(c, U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK); }},
        {"digit", digitCharacterSetRep(), [](unsigned c) { return isIn(c, U_GC_ND_MASK); }},
        {"lower", lowerCharacterSetRep(), [](unsigned c) { return isIn(c, U_GC_LL_MASK); }},
        {"upper", upperCharacterSetRep(), [](unsigned c) { return isIn(c, U_GC_LU_MASK | U_GC_LT_MASK); }},
    };
    for (const auto& c : cases)
        for (unsigned unit = 0; unit < 65536; ++unit)
            ASSERT_EQ(c.set.contains(static_cast<char16_t>(unit)), c.expected(unit)) << c.name << ' ' << unit;
    for (unsigned unit = 0; unit < 65536; ++unit)
        ASSERT_EQ(isFeedUnit(static_cast<char16_t>(unit)), isFeed(unit)) << unit;
}

// The tables change the case of letters whose mapping is one unit, and nothing else.
TEST(ConversionTables, MapLettersOneToOne) {
    for (unsigned i = 0; i < 65535; ++i) {
        const auto unit = static_cast<char16_t>(i);
        const View text(&unit, 1);
        const auto single = [&](const String& mapped) { return mapped.length() == 1 ? mapped[0] : unit; };
        const bool isUpper = isIn(i, U_GC_LU_MASK | U_GC_LT_MASK), isLower = isIn(i, U_GC_LL_MASK);
        ASSERT_EQ(lowerCharsTable()[unit], isUpper ? single(detail::unicode::lowerCase(text)) : unit) << i;
        ASSERT_EQ(upperCharsTable()[unit], isLower ? single(detail::unicode::upperCase(text)) : unit) << i;
        const char16_t plain = umlautsCharsTable()[unit];
        if (!isIn(i, U_GC_L_MASK | U_GC_M_MASK)) { ASSERT_EQ(plain, unit) << i; }
        if (plain != unit) {
            const String parts = detail::unicode::normalized(text, detail::unicode::Form::D);
            ASSERT_NE(parts.view().find(plain), View::npos) << i;
        }
        ASSERT_EQ(lowerUmlautsCharsTable()[unit], toLower(plain)) << i;
        ASSERT_EQ(upperUmlautsCharsTable()[unit], toUpper(plain)) << i;
    }
    EXPECT_EQ(umlautsCharsTable()[u'\u1EA4'], u'A');
    EXPECT_EQ(lowerCharsTable()[65535], 65535);
}

}  // namespace
}  // namespace velmo
