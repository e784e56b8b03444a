#include <velmocore/text/Encodings.h>

#include <thread>

#include "TestSupport.h"
#include "platform/EncodingTables.h"
#include "platform/IcuConverter.h"
#include "platform/Utf8.h"

namespace velmo {
namespace {

/// What convertEncodingToUnicode makes of the bytes; the status must be success.
String decoded(TextEncoding encoding, std::string_view bytes) {
    std::vector<char16_t> units(bytes.size() + 32);
    const auto [status, count] = convertEncodingToUnicode(bytes, encoding, units);
    EXPECT_EQ(status, 1);
    return String(View(units.data(), count));
}

TEST(Encodings, NumberSpacesMapOntoEachOther) {
    EXPECT_EQ(stringEncodingOf(ISOLatin1TextEncoding), 5u);
    EXPECT_EQ(stringEncodingOf(2352), 0x80000930u);
    EXPECT_EQ(textEncodingOf(30), 0u);
    EXPECT_EQ(stringEncodingOf(KOI8CS2TextEncoding), 4294967281u);
    EXPECT_EQ(stringEncodingOf(UnknownTextEncoding), UnknownStringEncoding);
    for (StringEncoding bad : {0ull, 99ull, 0xFFFFFFFFull, 0x180000930ull, ~0ull})
        EXPECT_EQ(textEncodingOf(bad), UnknownTextEncoding) << bad;
    for (const detail::EncodingRow& row : detail::encodingRows())
        EXPECT_EQ(textEncodingOf(stringEncodingOf(row.number)), row.number);
    std::size_t available = 0;
    for (TextEncoding number = 0; number < 0x10000; ++number) available += isEncodingAvailable(number);
    EXPECT_EQ(available, 80u);  // those of Unicode, but for UTF-16, have larger numbers
    for (TextEncoding missing : {4u, 1296u, 1568u, 2569u, UnknownTextEncoding})
        EXPECT_FALSE(isEncodingAvailable(missing)) << missing;
    EXPECT_EQ(ianaName(WindowsCP1252StringEncoding), "windows-1252");
    EXPECT_EQ(ianaName(0x80000000 | 1296), "");
}

// Every row must find its converter, know ASCII, and bring back what it encoded.
TEST(Encodings, EveryRowConvertsBothWays) {
    std::string_view ascii = "<p class=\"a\">~0^|}\\ \x1A\x1C\x7F\n";
    EXPECT_EQ(detail::encodingRows().size(), 86u);
    for (const detail::EncodingRow& row : detail::encodingRows()) {
        SCOPED_TRACE(row.iana);
        if (row.number == KOI8CS2TextEncoding || row.number == KamenickyTextEncoding) continue;
        const bool isWide =
            std::string_view(row.iana).starts_with("utf-16") || std::string_view(row.iana).starts_with("utf-32");
        if (!isWide && row.number != 2565) {  // ~ escapes in HZ
            EXPECT_EQ(decoded(row.number, ascii).utf8(), ascii);
        }
        const StringEncoding encoding = stringEncodingOf(row.number);
        const String text = String::fromUTF8(ascii);
        const auto bytes = dataUsingEncoding(text, encoding);
        ASSERT_TRUE(bytes);
        EXPECT_EQ(decoded(row.number, charsOf(*bytes)), text);
    }
}

TEST(Encodings, NamesAreReadAsPagesMeanThem) {
    using namespace std::string_view_literals;
    const std::tuple<TextEncoding, std::string_view, View> readings[] = {
        // Latin 1 is exact, Windows fills its gaps.
        {513, "\x80\x9F\xA4\xFF", u"\x80\x9F\u00A4\u00FF"},
        {1280, "\x80\x81\x9F", u"\u20AC\x81\u0178"},
        {521, "\x80\xFD", u"\u20AC\u0131"},
        {523, "\x80\xA1\xDB", u"\u20AC\u0E01\uFFFD"},
        {527, "\xA4", u"\u20AC"},
        {528, "\xAA\xDE", u"\u0218\u021A"},
        {1282, "\xC0\xB8", u"\u0410\u0451"},
        {1024, "\xE6\x9C", u"\u00B5\u00A3"},
        {0, "\xDB\xF0", u"\u20AC\uF8FF"},
        {37, "\xDC", u"\u00D0"},
        {1536, "a\x80\xFFz", u"a\uFFFD\uFFFDz"},
        {2562, "\xF0\xD2\xC9", u"\u041F\u0440\u0438"},
        // Wave dash, backslash, tilde, IBM rows, half-width kana; a cut character at the end.
        {2561, "\x81\x60\x5C\x7E\xFA\x40\xB1\x82", u"\uFF5E\\~\u2170\uFF71\uFFFD"},
        {2561, "\x80\xA0\xFD\x85\x40<", u"\uFFFD\uFFFD\uFFFD\uFFFD<"},
        {1, "\x80\xFD", u"\\\u00A9"},
        {2336, "\xA1\xC1\xAD\xA1\x8E\xB1\x8F\xB0\xA1", u"\uFF5E\u2460\uFF71\u4E02"},
        {2080, "\x1B$B$\"\x1B(I1\x1B(B.", u"\u3042\uFF71."},
        {2080, "\x1B$(D0!\x1B(B", u"\u4E02"},
        // Hangul beyond the 2,350 syllables of KS X 1001.
        {2368, "\xB0\xA1\x8C\x63\xFF", u"\uAC00\uB620\uFFFD"},
        {1600, "\x8C\x63", u"\uB620"},
        // GB2312 with GBK and GB 18030 characters and the euro sign of Windows.
        {2352, "\xD2\xBB\x81\x40\x80\x81\x30\x84\x36\xFF", u"\u4E00\u4E02\u20AC\u00A5\uFFFD"},
        {2565, "~{VPND~}.", u"\u4E2D\u6587."},
        // Big5 with the Hong Kong supplement and ETEN.
        {2563, "\xA4\xA4\x88\x56\xC6\xE7\xF9\xD6", u"\u4E2D\u0100\u3041\u7881"},
        {2353, "\xC4\xE3", u"\u4E2D"},
        // Unicode. The byte order is found by the mark, else by the first byte.
        {256, "\xFE\xFF\0<"sv, u"<"},
        {256, "\0<\0p"sv, u"<p"},
        {256, "<\0p\0"sv, u"<p"},
        {256, "<\0p"sv, u"<\uFFFD"},
        {0x14000100, "\xFF\xFE\x3D\xD8\0\xDE"sv, u"\U0001F600"},
        {UTF8TextEncoding, "\xEF\xBB\xBFz\xC3\xE2\x82", u"z\uFFFD\uFFFD"},
        {KamenickyTextEncoding, "$\x9B\xE2\xFF", u"$\u0160\u0194\u00A0"},
        {KOI8CS2TextEncoding, "$\xC3\xC7\xDB", u"\u00A4\u010D\u00C7\u00DB"},
    };
    for (const auto& [encoding, bytes, text] : readings)
        EXPECT_EQ(decoded(encoding, bytes), text) << encoding << " " << testing::PrintToString(bytes);
}

TEST(Encodings, EncodingKeepsWhatItCanOrSaysSo) {
    const std::tuple<StringEncoding, View, std::string_view, bool> cases[] = {
        {ISOLatin1StringEncoding, u"\u00E9\u20AC", "\xE9?", false},
        {WindowsCP1252StringEncoding, u"\u20AC\uFFFD", "\x80?", false},
        {ASCIIStringEncoding, u"a\u00E9", "a?", false},
        {UTF8StringEncoding, u"\u20AC\U0001F600", "\xE2\x82\xAC\xF0\x9F\x98\x80", true},
        {UTF8StringEncoding, u"\xD800z", "\xEF\xBF\xBDz", false},
        {ShiftJISStringEncoding, u"\uFF5E\u3042\x7F", "\x81\x60\x82\xA0\x7F", true},
        {ISO2022JPStringEncoding, u"\u3042", "\x1B$B$\"\x1B(B", true},
        // What GBK names but does not hold is not written in GB 18030's four bytes.
        {0x80000000 | 2352, u"\u4E00\U0001F600", "\xD2\xBB?", false},
        {0x80000000 | 1586, u"\U0001F600", "\x94\x39\xFC\x36", true},
        {UTF16BigEndianStringEncoding, u"a", std::string_view("\0a", 2), true},
        {KamenickyStringEncoding, u"\u0160$", "\x9B$", true},
        {KOI8CS2StringEncoding, u"$\u00A4", "?$", false},
    };
    for (const auto& [encoding, text, kept, isWhole] : cases) {
        SCOPED_TRACE(kept);
        const auto strict = dataUsingEncoding(text, encoding);
        EXPECT_EQ(strict.has_value(), isWhole);
        const auto lossy = dataUsingEncoding(text, encoding, true);
        ASSERT_TRUE(lossy);
        EXPECT_EQ(charsOf(*lossy), kept);
        if (strict) { EXPECT_EQ(*strict, *lossy); }
    }
    EXPECT_EQ(dataUsingEncoding(String(), UTF8StringEncoding), std::nullopt);
    EXPECT_EQ(dataUsingEncoding(u"a", UnknownStringEncoding), std::nullopt);
    EXPECT_EQ(dataUsingEncoding(u"a", UTF16StringEncoding)->size(), 4u);
    const std::u16string longText(20000, u'\u3042');
    EXPECT_EQ(decoded(ShiftJISTextEncoding, charsOf(*dataUsingEncoding(longText, ShiftJISStringEncoding))), longText);
}

// Nothing is lost on the way: what was written strictly is read again as it was, units that
// converters like to pass over among it.
TEST(Encodings, StrictMeansStrict) {
    constexpr View Unseen = u"\u00AD\u034F\u061C\u115F\u180E\u200B\u200D\u2060\u3164\uFE0F\uFEFF\uFFA0";
    std::mt19937 random(3);
    std::size_t refused = 0;
    for (const detail::EncodingRow& row : detail::encodingRows()) {
        const StringEncoding encoding = stringEncodingOf(row.number);
        for (int round = 0; round < 400; ++round) {
            const unsigned kind = random() % 3;
            const char16_t unit = kind == 0   ? Unseen[random() % Unseen.size()]
                                  : kind == 1 ? static_cast<char16_t>(0xA0 + random() % 0xD700)
                                              : static_cast<char16_t>(0xE000 + random() % 0x2000);
            const String text(std::u16string{u'a', unit, u'z'});
            const auto strict = dataUsingEncoding(text, encoding);
            if (strict) {
                ASSERT_EQ(decoded(row.number, charsOf(*strict)), text) << row.iana << ' ' << unsigned{unit};
                continue;
            }
            ++refused;
            const auto lossy = dataUsingEncoding(text, encoding, true);
            ASSERT_TRUE(lossy && lossy->size() >= 3) << row.iana << ' ' << unsigned{unit};
            if (kind == 0) { EXPECT_EQ(decoded(row.number, charsOf(*lossy)), u"a?z") << row.iana; }
        }
    }
    EXPECT_GT(refused, 10000u);
    EXPECT_FALSE(dataUsingEncoding(u"a\u00ADb", JapaneseEUCStringEncoding));
}

std::string randomBytes(std::mt19937& random, std::size_t size) {
    // Mostly ASCII and the bytes that sequences are made of.
    static constexpr unsigned char Likely[] = {0x1B, 0x24, 0x42, 0x81, 0x8E, 0x8F, 0xA1, 0xB0, 0xC3, 0xE2, 0x82, 0xAC,
                                               0xF0, 0x9F, 0x98, 0x80, 0xEF, 0xBF, 0xBD, 0xFF, 0xFE, 0x00, 0x3C, 0x7E};
    std::string bytes;
    while (bytes.size() < size) {
        if (random() % 4 == 0)
            bytes += static_cast<char>(random());
        else
            bytes += static_cast<char>(Likely[random() % sizeof Likely]);
    }
    return bytes;
}

// Whatever the room, the output is the beginning of the whole and ends with no half of a pair.
TEST(Encodings, OutputStaysWithinItsRoom) {
    std::mt19937 random(11);
    for (int round = 0; round < 3000; ++round) {
        const std::string bytes = randomBytes(random, random() % 300);
        const auto rows = detail::encodingRows();
        const TextEncoding encoding = round % 2 ? UTF8TextEncoding : rows[random() % rows.size()].number;
        std::vector<char16_t> whole(bytes.size() + 64), part(random() % 330, u'#');
        const auto [wholeStatus, wholeCount] = convertEncodingToUnicode(bytes, encoding, whole);
        const auto [status, partCount] = convertEncodingToUnicode(bytes, encoding, part);
        SCOPED_TRACE(encoding);
        EXPECT_LE(wholeCount, std::max<std::size_t>(bytes.size(), 32));
        ASSERT_LE(partCount, part.size());
        ASSERT_TRUE(std::equal(part.begin(), part.begin() + partCount, whole.begin()));
        if (wholeStatus == 1) {
            EXPECT_EQ(status == 1, partCount == wholeCount);
            EXPECT_TRUE(status == 1 || partCount + 1 >= part.size());
        }
        if (encoding != UTF8TextEncoding) continue;

        // UTF-8 against the decoder that has all the room it wants, and back again.
        std::vector<char16_t> straight(bytes.size() + detail::Utf8Slack);
        const std::size_t skipped = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
        straight.resize(detail::decodeUtf8(std::string_view(bytes).substr(skipped), straight.data()));
        ASSERT_EQ(wholeCount, straight.size());
        EXPECT_TRUE(std::equal(straight.begin(), straight.end(), whole.begin()));
        const std::string back = utf8({straight.data(), straight.size()});
        std::vector<std::uint8_t> room(random() % 330);
        const auto [backStatus, count] = convertUnicodeToUTF8({straight.data(), straight.size()}, room);
        EXPECT_EQ(backStatus == 0, back.size() <= room.size());
        EXPECT_EQ(charsOf(room).substr(0, count), back.substr(0, count));
        EXPECT_GE(count + 3, std::min(room.size(), back.size()));
    }
}

// The table of pairs must give what ICU alone gives, broken bytes included.
TEST(Encodings, PairsAgreeWithTheStream) {
    std::mt19937 random(5);
    std::size_t rows = 0;
    for (const detail::EncodingRow& row : detail::encodingRows()) {
        if (row.kind != detail::EncodingKind::DoubleByte) continue;
        ++rows;
        for (int round = 0; round < 1500; ++round) {
            std::string bytes = randomBytes(random, random() % 60);
            for (char& byte : bytes)
                if (random() % 3 == 0) byte = static_cast<char>(0x80 | random());
            char16_t units[128];
            const detail::Decoding expected = detail::decodeWithIcu(row, Bytes(bytes), units);
            ASSERT_EQ(utf8(decoded(row.number, bytes)), utf8({units, expected.written}))
                << row.iana << testing::PrintToString(bytes);
        }
    }
    EXPECT_EQ(rows, 19u);
}

TEST(Encodings, StatusesAreTold) {
    char16_t units[4], room[64];
    std::uint8_t bytes[4];
    const Conversion unknown = convertEncodingToUnicode("a", 1296, units);
    EXPECT_NE(unknown.status, 0);
    EXPECT_EQ(unknown.count, 0u);
    const Conversion eightBit = convertEncodingToUnicode("<meta charset=utf-16>", 256, room);
    EXPECT_EQ(eightBit.status + static_cast<int>(eightBit.count), 0);
    EXPECT_EQ(convertUTF8ToUnicode("abcd", units).status, 0);
    EXPECT_EQ(convertUTF8ToUnicode({}, {}).status, 0);
    EXPECT_EQ(convertUnicodeToUTF8(u"\U0001F600", bytes).count, 4u);
    for (const Conversion& full :
         {convertUTF8ToUnicode("abc\xF0\x9F\x98\x80", units), convertUnicodeToUTF8(u"\u20AC\u20AC", bytes)}) {
        EXPECT_EQ(full.status, ConverterOutputBufferFull);
        EXPECT_EQ(full.count, 3u);
    }
}

TEST(Encodings, ThreadsConvertAtOnce) {
    const std::string page = test::readPage("httpd-ko-euc-kr.html");
    const String expected = decoded(2368, page);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (const detail::EncodingRow& row : detail::encodingRows()) decoded(row.number, "a");
            EXPECT_EQ(decoded(2368, page), expected);
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(defaultEncoding(), UTF8StringEncoding);
    setDefaultEncoding(99);
    EXPECT_EQ(defaultEncoding(), 99u);
    setDefaultEncoding(UTF8StringEncoding);
}

}  // namespace
}  // namespace velmo
