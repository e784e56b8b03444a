#include <velmocore/platform/String.h>

#include <sstream>
#include <thread>
#include <unordered_set>

#include "TestSupport.h"
#include "platform/Utf8.h"

namespace velmo {
namespace {

TEST(String, AbsentIsNotEmpty) {
    const String absent, empty(u"");
    EXPECT_TRUE(absent.isAbsent());
    EXPECT_FALSE(empty.isAbsent());
    EXPECT_TRUE(absent.isEmpty() && empty.isEmpty());
    EXPECT_NE(absent, empty);
    EXPECT_LT(absent, empty);
    EXPECT_FALSE(absent == u"");
    EXPECT_TRUE(empty == u"");
    EXPECT_TRUE(empty.isIdenticalTo(String::empty()));
    EXPECT_TRUE(String(View()).isAbsent());
    EXPECT_TRUE(String(absent.view()).isAbsent());
    EXPECT_EQ(sizeof(String), sizeof(void*));
}

TEST(String, CopiesShareAndKeepIdentity) {
    const String first(u"abc");
    String second = first;
    EXPECT_TRUE(second.isIdenticalTo(first));
    EXPECT_EQ(second.characters(), first.characters());
    second = String(u"abc");
    EXPECT_FALSE(second.isIdenticalTo(first));
    EXPECT_EQ(second, first);
    const String moved = std::move(second);
    EXPECT_EQ(moved, u"abc");
    std::unordered_set<String> set{first, moved};
    EXPECT_EQ(set.size(), 1u);
}

TEST(String, SubstringIsCutAndKeepsTheWhole) {
    const String text(u"abcdef");
    EXPECT_EQ(text.substring({2, 3}), u"cde");
    EXPECT_EQ(text.substring({4, 99}), u"ef");
    EXPECT_TRUE(text.substring({0, 6}).isIdenticalTo(text));
    EXPECT_TRUE(text.substring({9, 1}).isIdenticalTo(String::empty()));
    EXPECT_TRUE(text.substring(Range::none()).isAbsent());
    EXPECT_TRUE(text.substring({3, NotFound}) == u"def");
}

TEST(String, OwnersAreCountedAcrossThreads) {
    const String shared(u"shared by all");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([copy = shared] {
            for (int i = 0; i < 10000; ++i) {
                String local = copy;
                ASSERT_EQ(local.length(), 13u);
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(shared, u"shared by all");
}

TEST(String, StreamsAsUtf8) {
    std::ostringstream out;
    out << String(u"\u00E4\u20AC\U0001F600") << String();
    EXPECT_EQ(out.str(), "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
}

// Broken UTF-8: one U+FFFD for each maximal part of a sequence.
TEST(String, BrokenUtf8BecomesReplacementCharacters) {
    const std::pair<const char*, const char16_t*> cases[] = {
        {"\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
        {"\xE2\x82\xE2\x82\xAC", u"\uFFFD\u20AC"},
        {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
    };
    for (const auto& [bytes, units] : cases) EXPECT_EQ(String::fromUTF8(bytes), units) << bytes;
}

void appendPoint(std::u16string& out, char32_t point) {
    if (point >= 0x10000) out += static_cast<char16_t>(0xD7C0 + (point >> 10));
    out += static_cast<char16_t>(point < 0x10000 ? point : 0xDC00 + (point & 0x3FF));
}

/// Code point by code point, straight from the table of well-formed sequences.
std::u16string decodeSlowly(const std::string& bytes) {
    static constexpr struct {
        unsigned first, last, low, high, more;  // lead bytes, second bytes, bytes after the lead
    } Rows[] = {
        {0x00, 0x7F, 0, 0, 0},       {0xC2, 0xDF, 0x80, 0xBF, 1}, {0xE0, 0xE0, 0xA0, 0xBF, 2},
        {0xE1, 0xEC, 0x80, 0xBF, 2}, {0xED, 0xED, 0x80, 0x9F, 2}, {0xEE, 0xEF, 0x80, 0xBF, 2},
        {0xF0, 0xF0, 0x90, 0xBF, 3}, {0xF1, 0xF3, 0x80, 0xBF, 3}, {0xF4, 0xF4, 0x80, 0x8F, 3},
    };
    std::u16string out;
    for (std::size_t i = 0; i < bytes.size();) {
        const auto at = [&](std::size_t k) { return k < bytes.size() ? static_cast<unsigned char>(bytes[k]) : 0u; };
        const unsigned lead = at(i++);
        unsigned taken = 0;
        char32_t point = 0xFFFD;
        for (const auto& row : Rows) {
            if (lead < row.first || lead > row.last) continue;
            point = row.more ? lead & (0x3F >> row.more) : lead;
            for (; taken < row.more && at(i) >= (taken ? 0x80 : row.low) && at(i) <= (taken ? 0xBF : row.high); ++taken)
                point = point << 6 | (at(i++) & 0x3F);
            if (taken < row.more) point = 0xFFFD;
        }
        appendPoint(out, point);
    }
    return out;
}

TEST(String, Utf8AgreesWithTheSlowDecoder) {
    std::mt19937 random(1);
    const std::string pieces[] = {"a",    "plain ascii text ", "\xC3\xA4", "\xE3\x81\x82", "\xF0\x9F\x98\x80", "\x80",
                                  "\xE0", "\xED\xA0",          "\xF4\x90", "\xC1"};
    for (int round = 0; round < 20000; ++round) {
        std::string bytes;
        for (unsigned n = random() % 12; n > 0; --n) {
            if (random() % 8 == 0)
                bytes += static_cast<char>(random());
            else
                bytes += pieces[random() % std::size(pieces)];
        }
        ASSERT_EQ(String::fromUTF8(bytes), decodeSlowly(bytes));
    }
}

TEST(String, Utf8RoundTripsAllPairedUnits) {
    std::u16string text;
    for (char32_t c = 0; c < 0x110000; c += c < 0x3000 ? 1 : 37) {
        if (c >= 0xD800 && c < 0xE000) continue;
        appendPoint(text, c);
    }
    EXPECT_EQ(String::fromUTF8(utf8(text)), text);
    EXPECT_EQ(utf8(std::u16string{u'a', char16_t(0xD800), u'b', char16_t(0xDC00)}),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD");
}

TEST(StringBuilder, BuildsInPlace) {
    StringBuilder builder;
    EXPECT_TRUE(builder.finish().isIdenticalTo(String::empty()));
    std::u16string expected;
    for (int i = 0; i < 3000; ++i) {
        builder.append(static_cast<char16_t>(i));
        builder.append(u"..");
        expected += static_cast<char16_t>(i);
        expected += u"..";
    }
    builder.truncate(8000);
    expected.resize(8000);
    EXPECT_EQ(builder.finish(), expected);
    builder.append(u'x');
    EXPECT_EQ(builder.finish(), u"x");
}

}  // namespace
}  // namespace velmo
