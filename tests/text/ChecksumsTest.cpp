#include <velmocore/text/Checksums.h>

#include "TestSupport.h"

namespace velmo {
namespace {

/// Bit by bit.
std::uint32_t slowCrc(Bytes bytes) {
    std::uint32_t value = 0;
    for (std::uint8_t byte : bytes) {
        value ^= byte;
        for (int bit = 0; bit < 8; ++bit) value = value >> 1 ^ (value & 1 ? 0xEDB88320u : 0);
    }
    return value;
}

TEST(Checksums, KnownValues) {
    EXPECT_EQ(CRC32(Bytes("123456789")), 0x2DFD2D88u);
    EXPECT_EQ(CRC32(Bytes("\x01")), 0x77073096u);
    EXPECT_EQ(CRC32({}), 0u);
    EXPECT_EQ(crc32(u""), 0u);
    EXPECT_EQ(crc32(Data()), 0u);
    EXPECT_EQ(CRC32UniChars(u"1"), CRC32(std::string_view("\0"
                                                          "1",
                                                          2)));
    EXPECT_EQ(crc32(u"\u3132"), CRC32(Bytes("12")));
    // A leading zero byte does not change a register of 0.
    EXPECT_EQ(crc32(u"a"), CRC32(Bytes("a")));
    EXPECT_NE(crc32(u"aa"), CRC32(Bytes("aa")));
}

TEST(Checksums, AgreeWithTheBitwiseOne) {
    for (unsigned i = 0; i < 256; ++i) {
        const auto byte = static_cast<std::uint8_t>(i);
        ASSERT_EQ(CRC32_TAB[i], CRC32(Bytes(&byte, 1)));
        ASSERT_EQ(CRC32_TAB[i], slowCrc(Bytes(&byte, 1)));
    }
    std::mt19937 random(6);
    for (std::size_t length : {1u, 2u, 7u, 255u, 511u, 512u, 513u, 1024u, 5000u}) {
        std::u16string text;
        Data bytes, mapped;
        for (std::size_t i = 0; i < length; ++i) {
            const auto unit = static_cast<char16_t>(random() % 0x500);
            const char16_t upper = toUpper(unit);
            text += unit;
            for (int shift : {8, 0}) {
                bytes.push_back(static_cast<std::uint8_t>(unit >> shift));
                mapped.push_back(static_cast<std::uint8_t>(upper >> shift));
            }
        }
        EXPECT_EQ(CRC32(bytes), slowCrc(bytes));
        EXPECT_EQ(crc32(text), slowCrc(bytes));
        EXPECT_EQ(stringCRC32UsingConversionTable(text, &upperCharsTable()), slowCrc(mapped));
    }
}

TEST(Checksums, FingerprintsSurviveCaseAndPunctuation) {
    EXPECT_EQ(caseInsensitiveCrc32ByRemovingNonAlphaCharacters(u"The Report (2024)!"),
              caseInsensitiveCrc32ByRemovingNonAlphaCharacters(u"the-REPORT 7"));
    EXPECT_EQ(caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters(u"Part 2: \u00E4"), crc32(u"PART2\u00C4"));
    EXPECT_NE(caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters(u"Part 2"),
              caseInsensitiveCrc32ByRemovingNonAlphaNumericCharacters(u"Part 3"));
    EXPECT_EQ(caseInsensitiveCrc32UsingCharactersPartOfCharacterSetRep(u"a", nullptr), 0u);
    EXPECT_EQ(caseInsensitiveCrc32ByRemovingNonAlphaCharacters(u"123"), 0u);
}

}  // namespace
}  // namespace velmo
