#include "platform/Utf8.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/Utf8Blocks.h"

namespace velmo {
namespace {

/// The standard's table of well-formed sequences: a first byte, the bounds of the second, the length.
struct Row {
    unsigned first, last, low, high;
    std::size_t length;
};
constexpr Row Rows[] = {
    {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

/// How many bytes at the start of bytes are those of the row; at least one.
std::size_t matching(const Row& row, std::string_view bytes) {
    std::size_t count = 1;
    for (; count < row.length && count < bytes.size(); ++count) {
        const unsigned byte = static_cast<unsigned char>(bytes[count]);
        if (byte < (count == 1 ? row.low : 0x80) || byte > (count == 1 ? row.high : 0xBF)) break;
    }
    return count;
}

/// One sequence after the other, by the table.
std::u16string slowlyDecoded(std::string_view bytes) {
    std::u16string units;
    while (!bytes.empty()) {
        const unsigned lead = static_cast<unsigned char>(bytes[0]);
        std::size_t count = 1;
        std::uint32_t point = 0xFFFD;
        for (const Row& row : Rows) {
            if (lead < row.first || lead > row.last) continue;
            count = matching(row, bytes);
            if (count < row.length) break;
            point = row.length == 1 ? lead : lead & (0x7Fu >> row.length);
            for (std::size_t i = 1; i < count; ++i) point = point << 6 | (static_cast<unsigned char>(bytes[i]) & 0x3F);
        }
        if (point >= 0x10000) {
            units += static_cast<char16_t>(0xD7C0 + (point >> 10));
            point = 0xDC00 | (point & 0x3FF);
        }
        units += static_cast<char16_t>(point);
        bytes.remove_prefix(count);
    }
    return units;
}

/// From a place that ends where the bytes end, so that a sanitizer sees what reads on.
std::u16string decoded(std::string_view bytes) {
    const std::vector<char> exact(bytes.begin(), bytes.end());
    std::vector<char16_t> units(bytes.size() + detail::Utf8Slack);
    units.resize(detail::decodeUtf8({exact.data(), exact.size()}, units.data()));
    return {units.begin(), units.end()};
}

/// Texts of the kinds that have a gear of their own, with some damage in every fourth.
std::string randomText(std::mt19937& random, std::size_t length) {
    static const std::vector<std::string> pieces = {
        "a",
        "plain ASCII, some of it ",
        "\xC2\x80",
        "\xD0\x96\xD1\x83\xD0\xBA",
        "\xDF\xBF",
        "\xE0\xA0\x80",
        "\xE4\xB8\xAD\xE6\x96\x87\xE5\xAD\x97",
        "\xED\x9F\xBF",
        "\xEE\x80\x80",
        "\xEF\xBF\xBF",
        "\xF0\x9F\x98\x80",
        "\xF4\x8F\xBF\xBF",
    };
    static const std::vector<std::string> broken = {
        "\x80",         "\xC0\x80",         "\xC1\xBF",     "\xC2",
        "\xE0\x9F\xBF", "\xE4\xB8",         "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
        "\xF0\x9F\x98", "\xF4\x90\x80\x80", "\xFF",         "\xD0\x96\x80",
    };
    const std::size_t kinds = 1 + random() % pieces.size();
    const bool isDamaged = random() % 4 == 0;
    std::string text;
    while (text.size() < length)
        text += isDamaged && random() % 16 == 0 ? broken[random() % broken.size()] : pieces[random() % kinds];
    text.resize(length);  // in the midst of a sequence, as it comes
    return text;
}

TEST(Utf8, DecodesAsTheTableSays) {
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        const std::string text = randomText(random, random() % 300);
        ASSERT_EQ(decoded(text), slowlyDecoded(text)) << testing::PrintToString(text);
    }
}

// One byte of each value at each place of a block, in texts of one kind each.
TEST(Utf8, DecodesAsTheTableSaysWhateverOneByteIs) {
    for (const std::string piece : {"a", "\xD0\x96", "\xE4\xB8\xAD", "\xF0\x9F\x98\x80"}) {
        std::string text;
        while (text.size() < 140) text += piece;
        for (std::size_t place = 0; place < 70; ++place)
            for (int byte = 0; byte < 256; ++byte) {
                std::string damaged = text;
                damaged[place] = static_cast<char>(byte);
                ASSERT_EQ(decoded(damaged), slowlyDecoded(damaged)) << place << " " << byte;
            }
    }
}

// The block gear alone: what it takes it decodes as the table says, and it takes as a
// whole what has no broken sequence.
TEST(Utf8, BlocksStopWhereTheyMust) {
    if (!detail::canDecodeUtf8Blocks()) GTEST_SKIP() << "this machine has none";
    std::mt19937 random(2);
    std::size_t whole = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::string text = randomText(random, random() % 300);
        const std::unique_ptr<char16_t[]> units(new char16_t[text.size()]);
        const auto* const begin = reinterpret_cast<const std::uint8_t*>(text.data());
        const std::uint8_t* in = begin;
        char16_t* out = units.get();
        detail::decodeUtf8Blocks(in, begin + text.size(), out);
        const auto taken = static_cast<std::size_t>(in - begin);
        ASSERT_EQ(std::u16string(units.get(), out), slowlyDecoded(text.substr(0, taken)));
        const std::u16string left = slowlyDecoded(text.substr(taken, detail::Utf8Block));
        ASSERT_TRUE(taken == text.size() || left.find(u'\uFFFD') != left.npos);
        whole += taken == text.size();
    }
    EXPECT_GT(whole, 5000u);
}

}  // namespace
}  // namespace velmo
