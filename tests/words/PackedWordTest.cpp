#include "words/PackedWord.h"

#include <velmocore/text/CharacterSets.h>
#include <velmocore/text/ConversionTables.h>
#include <velmocore/words/Separators.h>

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
        const PackedReading expected = packedOneByOne(word);
        // Whatever stands behind it.
        for (const PackedReading& reading : {packedWord(word), packedWord(text.data(), word.size())}) {
            ASSERT_EQ(reading.hasNumber, expected.hasNumber) << utf8(text);
            ASSERT_TRUE(reading.word == expected.word || !expected.hasNumber) << utf8(text);
        }
    }
}

// A word is found by its number in place of its units, so that both must fold alike.
TEST(PackedWord, FoldsAsTheTablesDo) {
    for (char16_t unit = 1; unit < 128; ++unit) {
        if (defaultWordSeparators().contains(unit)) continue;
        const char16_t word[] = {u'a', unit, u'a'};
        for (const ConversionTable* table : {&lowerCharsTable(), &lowerUmlautsCharsTable()})
            EXPECT_EQ(packedOneByOne({word, 3}).word.low >> 8 & 0xFF, (*table)[unit]);
        EXPECT_EQ(packedOneByOne({&unit, 1}).hasNumber, alphaCharacterSetRep().contains(unit));
    }
}

}  // namespace
}  // namespace velmo::detail
