#include "words/PackedWord.h"

#include <velmocore/text/ConversionTables.h>

#include "TestSupport.h"

namespace velmo::detail {
namespace {

TEST(PackedWord, IsThatPackedOneByOne) {
    std::mt19937 random(6);
    for (int round = 0; round < 100000; ++round) {
        std::u16string word = test::randomText(random, u"abzAZ@[`{09-\x7F", random() % 10);
        if (!word.empty() && random() % 4 == 0)
            word[random() % word.size()] = View(u"\0\u0080\u00FF\u0100\u0161\uFF61", 6)[random() % 6];
        ASSERT_EQ(packedWord(word), packedOneByOne(word)) << utf8(word);
    }
}

// A word is found by its number in place of its units, so that both must fold alike.
TEST(PackedWord, FoldsAsTheTablesDo) {
    for (char16_t unit = 1; unit < 128; ++unit)
        for (const ConversionTable* table : {&lowerCharsTable(), &lowerUmlautsCharsTable()}) {
            const char16_t folded = (*table)[unit];
            EXPECT_EQ(packedOneByOne({&unit, 1}), static_cast<std::uint64_t>(folded));
        }
}

}  // namespace
}  // namespace velmo::detail
