#include "words/PackedWord.h"

#include <velmocore/text/ConversionTables.h>

#include "TestSupport.h"

namespace velmo::detail {
namespace {

TEST(PackedWord, IsThatPackedOneByOne) {
    std::mt19937 random(6);
    for (int round = 0; round < 100000; ++round) {
        std::u16string text = test::randomText(random, u"abzAZ@[`{09-\x7F", MostPackedUnits + 1 + random() % 4);
        if (random() % 4 == 0)
            text[random() % text.size()] = View(u"\0\u0080\u00FF\u0100\u0161\u7FFF\u8000\uFF61\uFFFF", 9)[random() % 9];
        const View word = View(text).substr(0, random() % text.size());
        const PackedWord expected = packedOneByOne(word);
        ASSERT_EQ(packedWord(word), expected) << utf8(word);
        // Whatever stands behind it.
        ASSERT_EQ(packedWord(text.data(), word.size()), expected) << utf8(text);
        const auto isLetter = [](char16_t unit) { return View(u"abzAZ").find(unit) != View::npos; };
        if (expected)
            ASSERT_EQ(expected.isEdgedByLetters(word.size()), isLetter(word.front()) && isLetter(word.back()));
    }
}

// A word is found by its number in place of its units, so that both must fold alike.
TEST(PackedWord, FoldsAsTheTablesDo) {
    for (char16_t unit = 1; unit < 128; ++unit)
        for (const ConversionTable* table : {&lowerCharsTable(), &lowerUmlautsCharsTable()})
            EXPECT_EQ(packedOneByOne({&unit, 1}).low, static_cast<std::uint64_t>((*table)[unit]));
}

}  // namespace
}  // namespace velmo::detail
