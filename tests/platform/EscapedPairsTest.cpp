#include "platform/EscapedPairs.h"

#include "TestSupport.h"
#include "platform/IcuConverter.h"

namespace velmo {
namespace {

constexpr std::uint32_t Iso2022Jp = 2080;

/// The units of a decoding by this library and by ICU, and whether either was asked.
std::pair<std::u16string, std::u16string> decodedBoth(const std::string& bytes, bool& wasOwn) {
    const detail::EncodingRow& row =
        *std::ranges::find(detail::encodingRows(), Iso2022Jp, &detail::EncodingRow::number);
    std::u16string own(bytes.size() + 32, u'\0'), icu = own;
    const auto result = detail::decodeEscapedPairs(row, Bytes(bytes), own);
    wasOwn = result.has_value();
    own.resize(result ? result->written : 0);
    icu.resize(detail::decodeWithIcu(row, Bytes(bytes), icu).written);
    return {own, icu};
}

TEST(EscapedPairs, AreWhatICUMakesOfThem) {
    static constexpr std::string_view Pieces[] = {"plain text that is longer than a block",
                                                  "a",
                                                  "\r\n",
                                                  "\n",
                                                  "\x1B$B",
                                                  "\x1B(B",
                                                  "\x1B$B%b%8%e!<%k\x1B(B",
                                                  "\x1B$BMQ8l\x1B(B",
                                                  "\x1B$B!!~~\x1B(B",
                                                  "%b",
                                                  "!",
                                                  "\x1B$B)!\x1B(B",
                                                  "\x1B(J",
                                                  "\x1B$@",
                                                  "\x1B",
                                                  "\x1B.A",
                                                  "\x1BN",
                                                  "\x0E",
                                                  "\x0F",
                                                  "\x80",
                                                  "\xE9",
                                                  {"\0", 1},
                                                  "\x7F"};
    std::mt19937 random(5);
    std::size_t read = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string bytes;
        // Mostly of what is usual, which comes first.
        const std::size_t most = random() % 2 ? 9 : std::size(Pieces);
        for (auto pieces = 1 + random() % 8; pieces > 0; --pieces) bytes += Pieces[random() % most];
        bool wasOwn = false;
        const auto [own, icu] = decodedBoth(bytes, wasOwn);
        if (!wasOwn) continue;
        ++read;
        ASSERT_EQ(own, icu) << bytes;
    }
    EXPECT_GT(read, 4'000u);
}

TEST(EscapedPairs, AreReadWithAllOfASCII) {
    std::string bytes;
    for (char byte = 1; byte > 0; ++byte)
        if (byte != 0x0E && byte != 0x0F && byte != 0x1B) bytes += byte;
    bool wasOwn = false;
    const auto [own, icu] = decodedBoth(bytes + "\x1B$B%b\x1B(B" + bytes, wasOwn);
    EXPECT_TRUE(wasOwn);
    EXPECT_EQ(own, icu);
    std::size_t pairs = 0;
    for (char first = 0x21; first < 0x7F; ++first)
        for (char second = 0x21; second < 0x7F; ++second) {
            const auto [ours, theirs] = decodedBoth(std::string("\x1B$B") + first + second + "\x1B(B", wasOwn);
            pairs += wasOwn;
            if (wasOwn) { ASSERT_EQ(ours, theirs); }
        }
    EXPECT_GT(pairs, 6'000u);
}

}  // namespace
}  // namespace velmo
