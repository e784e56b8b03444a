#include <velmocore/markup/Charsets.h>

#include <velmocore/platform/Log.h>

#include "TestSupport.h"
#include "platform/EncodingTables.h"

namespace velmo {
namespace {

TEST(Charsets, NamesAreKnownHoweverTheyAreWritten) {
    const std::pair<TextEncoding, std::vector<const char16_t*>> cases[] = {
        {513,
         {u"iso-8859-1", u"ISO_8859_1", u"iso8859-1", u"8859-1", u"Latin-1", u"latin", u"iso", u"ISO 8859-1;",
          u"iso-88591", u"885231", u"885111x2", u"885391", u"iso-10059-1", u"l8859"}},
        {1280, {u"windows-1252", u"cp1252", u"windows-31j", u"windows", u"Windows-1252-x"}},
        {1282, {u"windows-1251", u"x-cp-1251"}},
        {UTF8TextEncoding,
         {u"utf-8", u"UTF8", u"uft-8", u"utf", u"utf-9", u"unicode", u"utf%2d8", u"utf-08", u"x-utf8x", u"en-us",
          u"en_GB"}},
        {1536, {u"utf-7", u"us-ascii", u"ASCII", u"none"}},
        {256, {u"utf-16", u"utf-16le"}},
        {2561, {u"x-sjis", u"shift_jis", u"Shift-JIS", u"csshiftjis"}},
        {2562, {u"koi8-r", u"koi8-u", u"koi8"}},
        {40961, {u"x-kam-cs", u"kam-cs", u"kbkam"}},
        {40962, {u"koi8-cs2", u"CSN_369103"}},
        {7, {u"x-mac-cyrillic", u"mac-cyrillic"}},
        {0, {u"macintosh", u"mac", u"x-mac", u"Mac Roman", u"mac-os-roman"}},
        {2, {u"x-mac-chinesetrad", u"mac-x-chinesetrad-y"}},
        {29, {u"x-mac-ce", u"x-mac-centraleurroman"}},
        {2564, {u"mac-roman-latin1"}},
        {2080, {u"iso-2022-jp", u"ISO-2022-KR", u"iso-2022-jp-4"}},
        {2082, {u"iso-2022-jp-1"}},
        {2081, {u"iso-2022-jp-2"}},
        {2083, {u"ISO2022JP3"}},
        {2336, {u"euc-jp", u"x-euc-japan", u"iso646", u"646-1"}},
        {2352, {u"gb2312", u"euc-cn", u"hz-gb-2312", u"x-gb2312-80"}},
        {1585, {u"gbk"}},
        {1586, {u"gb18030"}},
        {2368, {u"euc-kr", u"x-euckr"}},
        {1600, {u"ks_c_5601-1987", u"ksc-5601-87"}},
        {1601, {u"ks_c_5601-92"}},
        {2563, {u"big5", u"big5-hkscs"}},
        {514, {u"iso-8859-2", u"latin2", u"88582"}},
        {521, {u"iso-8859-9", u"latin5", u"iso-8959-9"}},
        {525, {u"iso-8859-13", u"latin7"}},
        {528, {u"iso-8859-16", u"latin10"}},
        {520, {u"visual", u"iso-8859-8-i"}},
        {1053, {u"tis874", u"cp874"}},
        {1056, {u"cp932"}},
        {UnknownTextEncoding,
         {u"", u"x", u"en", u"--8", u"latin0", u"latin-x", u"iso-8859-12", u"885392", u"88530", u"x-user-defined",
          u"mac-klingon", u"99999999999999999999", u"4294967733"}}};
    for (const auto& [encoding, names] : cases)
        for (const char16_t* name : names) EXPECT_EQ(charset2CFStringEncoding(name), encoding) << utf8(name);
}

// The names that the library gives are names that it takes, but for those that the order of
// tests reads otherwise.
TEST(Charsets, OwnNamesComeBack) {
    std::size_t others = 0;
    for (const detail::EncodingRow& row : detail::encodingRows()) {
        const String name = String::fromUTF8(row.iana);
        if (charset2CFStringEncoding(name) == row.number) continue;
        ++others;
        EXPECT_TRUE(row.number == 1584 || row.number == 2565 || row.number == 2566 || row.number == 2568 ||
                    row.number >= 0x0C000100)
            << row.iana;
    }
    EXPECT_EQ(others, 9u);
}

std::vector<std::string> lines;

TEST(Charsets, UnknownNamesAreLogged) {
    setLogHandler([](std::string_view line) { lines.emplace_back(line); });
    EXPECT_EQ(charset2NSStringEncoding(u"shift_jis"), ShiftJISStringEncoding);
    EXPECT_EQ(charset2NSStringEncoding(u"x-kam-cs"), 4294967280u);
    EXPECT_EQ(NSEncodingFromName(u"windows-1250"), 15u);
    for (const char16_t* quiet : {u"", u"%charset%", u"/x-", u"0xyz", u"<?=$c?>", u">abc", u"Auto"})
        EXPECT_EQ(charset2NSStringEncoding(quiet), UnknownStringEncoding);
    EXPECT_TRUE(lines.empty());
    EXPECT_EQ(charset2NSStringEncoding(u"x-klingon"), UnknownStringEncoding);
    EXPECT_EQ(charset2NSStringEncoding(u"x-johab1361"), UnknownStringEncoding);
    setLogHandler(nullptr);
    EXPECT_EQ(lines, (std::vector<std::string>{"Unknown/Unsupported encoding: x-klingon",
                                               "Unknown/Unsupported encoding: x-johab1361"}));
}

}  // namespace
}  // namespace velmo
