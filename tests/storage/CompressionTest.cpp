#include <velmocore/storage/Compression.h>

#include "TestSupport.h"
#include "storage/CompressionPieces.h"

namespace velmo {
namespace {

Data dataOf(const std::string& text) { return {text.begin(), text.end()}; }

TEST(Compression, BothFormatsComeBackAtEveryLevel) {
    std::mt19937 random(1);
    for (const std::size_t length : {1u, 2u, 1000u, 16384u, 16385u, 100000u}) {
        std::string text;
        while (text.size() < length) text += "abcd "[random() % 5];
        for (int level = -2; level <= 12; ++level)
            for (const bool gzip : {false, true}) {
                const auto packed = dataByCompressingBytes(Bytes(text), level, gzip);
                ASSERT_TRUE(packed);
                EXPECT_EQ((*packed)[0], gzip ? 0x1F : 0x78);
                EXPECT_EQ(dataByInflatingData(*packed), dataOf(text));
            }
    }
    const std::string text = test::readPage("httpd-de-iso-8859-1.html");
    EXPECT_EQ(dataByDeflatingData(Bytes(text), 0), dataByDeflatingData(Bytes(text), 1));
    EXPECT_EQ(dataByGzippingData(Bytes(text), 12), dataByGzippingData(Bytes(text), 9));
    EXPECT_LT(dataByGzippingData(Bytes(text), 9)->size(), dataByGzippingData(Bytes(text), 1)->size());
    EXPECT_FALSE(dataByGzippingData({}));
    EXPECT_FALSE(dataByInflatingData({}));
}

// Input beyond 32 bits goes to zlib in pieces; a small piece stands for a large input.
TEST(Compression, PiecesMakeNoDifference) {
    const std::string text = test::readPage("httpd-de-iso-8859-1.html").substr(0, 5000);
    for (const bool gzip : {false, true}) {
        const Data whole = *detail::deflated(Bytes(text), 6, gzip);
        for (const std::size_t piece : {1u, 2u, 7u, 4999u, 5000u}) {
            EXPECT_EQ(detail::deflated(Bytes(text), 6, gzip, piece), whole) << piece;
            Data data;
            EXPECT_TRUE(detail::inflateInto(data, whole, NoInflatedLimit, piece)) << piece;
            EXPECT_EQ(data, dataOf(text));
            Data longer = whole;
            longer.push_back(0);
            EXPECT_FALSE(detail::inflateInto(data, longer, NoInflatedLimit, piece)) << piece;
            EXPECT_FALSE(detail::inflateInto(data, Bytes(whole).first(whole.size() - 1), NoInflatedLimit, piece));
        }
    }
}

TEST(Compression, RealFiles) {
    const auto inflated = [](const char* name) { return dataByInflatingData(Bytes(test::readData(name))); };
    const Data page = dataOf(test::readData("compressed/gzip.html"));
    EXPECT_EQ(inflated("compressed/gzip.html.gz"), page);
    EXPECT_EQ(inflated("compressed/gzip.html.z"), page);
    EXPECT_FALSE(inflated("compressed/gzip.html"));
    EXPECT_EQ(inflated("compressed/fake-gzip.html.gz")->size(), 73u);  // gzip after all
    const auto sitemap = inflated("compressed/sitemap.xml.gz");
    ASSERT_TRUE(sitemap);
    EXPECT_TRUE(charsOf(*sitemap).starts_with("<?xml"));
}

TEST(Compression, EveryTruncationAndDamageIsSeen) {
    const std::string text = "The quick brown fox jumps over the lazy dog, and the lazy dog sleeps.";
    for (const bool gzip : {false, true}) {
        const Data packed = *dataByCompressingBytes(Bytes(text), 9, gzip);
        for (std::size_t length = 0; length < packed.size(); ++length)
            EXPECT_FALSE(dataByInflatingData(Bytes(packed).first(length))) << length;
        Data longer = packed;
        longer.push_back(0);
        EXPECT_FALSE(dataByInflatingData(longer));
        for (std::size_t i = 0; i < packed.size(); ++i)
            for (const int bit : {1, 16, 128}) {
                Data damaged = packed;
                damaged[i] ^= static_cast<std::uint8_t>(bit);
                const auto result = dataByInflatingData(damaged);
                Data streamed;
                ASSERT_EQ(detail::inflateInto(streamed, damaged, NoInflatedLimit), result.has_value()) << i;
                // Some bits have no meaning: of the header of gzip, and behind the last block.
                EXPECT_TRUE(!result || *result == dataOf(text)) << i;
            }
    }
}

TEST(Compression, LimitAndWhatIsLeftAfterFailures) {
    const Data bomb = *dataByGzippingData(Data(1000000, 0));
    EXPECT_TRUE(dataByInflatingData(bomb, 1000000));
    EXPECT_FALSE(dataByInflatingData(bomb, 999999));
    Data target = {1, 2, 3};
    EXPECT_FALSE(setDataByInflating(target, bomb, 20000));
    EXPECT_EQ(target, Data(20000, 0));
    EXPECT_FALSE(setDataByInflating(target, {}));
    EXPECT_EQ(target.size(), 20000u);
    EXPECT_TRUE(setDataByInflating(target, *dataByDeflatingData(Bytes("x"))));
    EXPECT_EQ(target, Data{'x'});
    target = bomb;
    EXPECT_TRUE(setDataByInflatingBytes(target, target));
    EXPECT_EQ(target, Data(1000000, 0));
}

}  // namespace
}  // namespace velmo
