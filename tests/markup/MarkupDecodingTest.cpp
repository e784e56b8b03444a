#include <velmocore/markup/MarkupDecoding.h>

#include <filesystem>
#include <map>

#include <velmocore/markup/CzechEncodings.h>

#include "TestSupport.h"

namespace velmo {
namespace {

struct Page {
    std::string_view charset;
    const char16_t* text;  ///< some text in it that no wrong reading has
};

/// The sample pages that are not UTF-8, and some of the others.
const std::map<std::string, Page>& specialPages() {
    static const std::map<std::string, Page> pages = {
        {"extruct-opengraph_test.html", {"windows-1252", u"Open Graph Protocol"}},
        {"httpd-de-iso-8859-1.html", {"iso-8859-1", u"Verf\u00FCgbare"}},
        {"httpd-pt-br-iso-8859-1.html", {"iso-8859-1", u"Descri\u00E7\u00E3o das novas"}},
        {"httpd-ja-euc-jp.html", {"euc-jp", u"\u30C9\u30AD\u30E5\u30E1\u30F3\u30C6"}},
        {"httpd-ja-iso-2022-jp.html", {"iso-2022-jp", u"\u30D0\u30A4\u30F3\u30C9"}},
        {"httpd-ko-euc-kr.html", {"euc-kr", u"\uC8FC\uC18C\uC640 \uD3EC\uD2B8 \uC9C0\uC815"}},
        {"httpd-ru-koi8-r.html", {"koi8-r", u"\u041E\u0431\u0437\u043E\u0440"}},
        {"httpd-zh-cn-utf8.html", {"utf-8", u"\u670D\u52A1\u5668"}},
        {"jsoup-bom_utf16be.html", {"utf-16", u"\uD55C\uAE00"}},
        {"jsoup-bom_utf16le.html", {"utf-16", u"\uD55C\uAE00"}},
        {"jsoup-bom_utf8.html", {"utf-8", u"There is a UTF8 BOM at the top"}},
        {"jsoup-meta-charset-1.html", {"gb2312", u"<body>\u65B0</body>"}},
        {"trafilatura-utf8.html", {"utf-8", u"\u222E E\u22C5da = Q"}},
    };
    return pages;
}

TEST(MarkupDecoding, ReadsTheSamplePages) {
    std::size_t pages = 0, special = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VELMO_PAGES)) {
        ++pages;
        const std::string name = entry.path().filename();
        SCOPED_TRACE(name);
        const std::string bytes = test::readPage(name);
        const MarkupDecoding page = decodeMarkup(Bytes(bytes));
        const auto known = specialPages().find(name);
        const bool isSpecial = known != specialPages().end();
        special += isSpecial;
        EXPECT_EQ(ianaName(page.encoding), isSpecial ? known->second.charset : "utf-8");
        if (isSpecial) { EXPECT_NE(page.text.view().find(known->second.text), std::u16string_view::npos); }
        // One page has a U+FFFD of its own.
        EXPECT_EQ(std::ranges::count(page.text, u'\uFFFD'), name == "trafilatura-utf8.html");
        EXPECT_NE(page.text[0], u'\uFEFF');
    }
    EXPECT_EQ(pages, 37u);
    EXPECT_EQ(special, specialPages().size());
}

std::string meta(std::string_view charset) { return "<meta charset=" + std::string(charset) + ">"; }

TEST(MarkupDecoding, TriesInOrder) {
    const std::string utf8 = "caf\xC3\xA9", latin = "caf\xE9", russian = "\xCF\xF0";
    // What is tried, the bytes, the header, the default, what won, and the text after the meta tag.
    const std::tuple<const char*, std::string, const char16_t*, StringEncoding, StringEncoding, const char16_t*>
        cases[] = {
            {"nothing is said", utf8, u"", 4, 4, u"caf\u00E9"},
            {"nothing is said, and it is not UTF-8", latin, u"", 4, 4, u"caf\uFFFD"},
            {"the default is all there is", latin, u"", 5, 5, u"caf\u00E9"},
            {"the header alone", latin, u"iso-8859-1", 4, 5, u"caf\u00E9"},
            {"an unknown header", utf8, u"auto", 4, 4, u"caf\u00E9"},
            {"the page alone", meta("latin1") + latin, u"", 4, 5, u"caf\u00E9"},
            {"the page alone, wrongly", meta("latin1") + utf8, u"", 4, 5, u"caf\u00C3\u00A9"},
            {"UTF-8 by the header is right, as Latin 1 is longer", meta("iso-8859-1") + utf8, u"utf-8", 4, 4,
             u"caf\u00E9"},
            {"the page is right, as UTF-8 has errors", meta("iso-8859-1") + latin, u"utf-8", 4, 5, u"caf\u00E9"},
            {"the header is right, as the page's reading has errors", meta("utf-8") + latin, u"windows-1252", 4, 12,
             u"caf\u00E9"},
            {"both without errors: the page", meta("windows-1252") + utf8, u"utf-8", 4, 12, u"caf\u00C3\u00A9"},
            {"an unknown declaration", meta("x-auto-x") + utf8, u"", 4, 4, u"caf\u00E9"},
            {"ASCII is no declaration", meta("us-ascii") + utf8, u"", 4, 4, u"caf\u00E9"},
            {"Windows-1251 by the page", meta("windows-1251") + russian, u"", 4, 11, u"\u041F\u0440"},
            {"Windows-1251 by the page against a header of UTF-8 that is right", meta("windows-1251") + "\xD0\x9F",
             u"utf-8", 4, 4, u"\u041F"},
            {"Windows-1251 by the page against another header", meta("windows-1251") + russian, u"koi8-r", 4, 11,
             u"\u041F\u0440"},
            {"Big5", meta("big5") + "\xA4\xA4\x88\x56", u"", 4, 0x80000A03, u"\u4E2D\u0100"},
            {"Big5, whose reading has errors, against the header", meta("big5") + "\xFF", u"latin1", 4, 0x80000A03,
             u"\uFFFD"},
            {"Kamenicky by the page", meta("x-kam-cs") + "\x9B", u"latin1", 4, KamenickyStringEncoding, u"\u0160"},
            {"KOI8-CS2 by the page", meta("koi8-cs2") + "\xC3", u"", 4, KOI8CS2StringEncoding, u"\u010D"},
            {"Kamenicky by the header", "\x9B", u"x-kam-cs", 4, KamenickyStringEncoding, u"\u0160"},
            {"UTF-16 by the page, which cannot be", "<html><head>" + meta("utf-16") + utf8, u"", 4, 4, u"caf\u00E9"},
            {"a default that does not exist", latin, u"", 99, 99, nullptr},
            {"a mark of UTF-16",
             std::string("\xFF\xFE"
                         "a\0",
                         4),
             u"", 4, UTF16LittleEndianStringEncoding, u"a"},
            {"a header that names what cannot be read", utf8, u"utf-16", 4, 10, u"\u6163\uC366\uFFFD"},
            {"a page of its mark only", "\xEF\xBB\xBF", u"", 4, 4, u""},
        };
    for (const auto& [what, bytes, header, defaultEncoding, won, text] : cases) {
        SCOPED_TRACE(what);
        const MarkupDecoding page =
            decodeMarkup(Bytes(bytes), {.encodingName = header, .defaultEncoding = defaultEncoding});
        EXPECT_EQ(page.encoding, won);
        if (!text) {
            EXPECT_TRUE(page.text.isAbsent());
            continue;
        }
        ASSERT_FALSE(page.text.isAbsent());
        const std::size_t tag = page.text.view().rfind(u'>') + 1;
        EXPECT_EQ(page.text.view().substr(tag), View(text)) << page.text;
    }
    EXPECT_TRUE(stringWithMarkupData({}).isIdenticalTo(String::empty()));
    EXPECT_EQ(stringWithMarkupData(Bytes(latin), {.contentType = u"text/html; charset=ISO-8859-1"}), u"caf\u00E9");
    EXPECT_EQ(decodeMarkup(Bytes(meta("latin1"))).declared, u"latin1");
}

class MarkupFile : public testing::Test {
protected:
    void TearDown() override { std::filesystem::remove(path_); }

    FileText read(std::string_view bytes, StringEncoding defaultEncoding = 4) {
        std::ofstream(path_, std::ios::binary) << bytes;
        return stringWithMarkupContentsOfFile(path_, defaultEncoding);
    }

    std::string path_ = testing::TempDir() + "velmo-page-" + std::to_string(::getpid());
};

TEST_F(MarkupFile, HasItsOwnOrderOfTrials) {
    const std::tuple<std::string, StringEncoding, StringEncoding, const char16_t*> cases[] = {
        {"caf\xC3\xA9", 4, 4, u"caf\u00E9"},
        {"", 4, 4, u""},
        {meta("us-ascii") + "\xE9", 5, 5, u"\u00E9"},
        {meta("utf-8") + "\xC3\xA9", 4, 4, u"\u00E9"},
        {meta("utf-8") + "\xC3\xA9", 5, 4, u"\u00E9"},
        {meta("utf-8") + "\xE9", 5, 5, u"\u00E9"},       // more errors
        {meta("latin1") + "\xC3\xA9", 4, 4, u"\u00E9"},  // longer
        {meta("latin1") + "\xE9", 4, 5, u"\u00E9"},
        {meta("koi8-r") + "\xF0", 4, 0x80000A02, u"\u041F"},
        {meta("kam-cs") + "\x9B", 4, KamenickyStringEncoding, u"\u0160"},
        {"<html><head>" + meta("utf-16") + "a", 4, 10, u"a"},  // told, but not so read
    };
    for (const auto& [bytes, defaultEncoding, expected, tail] : cases) {
        const auto [text, used] = read(bytes, defaultEncoding);
        EXPECT_EQ(used, expected) << bytes;
        ASSERT_FALSE(text.isAbsent());
        EXPECT_EQ(text.view().substr(text.view().rfind(u'>') + 1), View(tail));
    }
    EXPECT_TRUE(read("a", 99).text.isAbsent());
    EXPECT_EQ(read("a", 99).usedEncoding, 99u);
    for (const Path& none : {Path(u"/none/such"), Path()}) {
        EXPECT_TRUE(stringWithMarkupContentsOfFile(none, 4).text.isAbsent());
        EXPECT_EQ(stringWithMarkupContentsOfFile(none, 4).usedEncoding, UnknownStringEncoding);
    }
}

TEST_F(MarkupFile, PropertyListsAreGivenAsXML) {
    const FileText list = read(test::readData("locations/oldstyle.webloc"));
    EXPECT_EQ(list.text, String::fromUTF8(test::readData("locations/pliststyle.webloc")));
    EXPECT_EQ(list.usedEncoding, UnknownStringEncoding);
    const FileText broken = read("bplist00 but broken");
    EXPECT_EQ(broken.text, u"bplist00 but broken");
    EXPECT_EQ(broken.usedEncoding, 4u);
    std::filesystem::remove(path_);
    path_ += ".plist";
    const FileText named = read("<plist version='1.0'><true/></plist>");
    EXPECT_TRUE(named.text.view().ends_with(u">\n<true/>\n</plist>\n"));
    EXPECT_EQ(named.usedEncoding, UnknownStringEncoding);
    EXPECT_EQ(read("<p>no list").text, u"<p>no list");
}

TEST(CzechEncodings, ReadEveryByte) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    const std::tuple<String, std::size_t, View> cases[] = {
        {stringWithKamenickyData(Bytes(bytes)), 129, u"\u010C\u00FC\u00E9\u010F"},
        {stringWithKoi8cs2Data(Bytes(bytes)), 82, u"\x80\x81\x82\x83"},
    };
    for (const auto& [text, expected, start] : cases) {
        ASSERT_EQ(text.length(), 256u);
        std::size_t changed = 0;
        for (std::size_t i = 0; i < 256; ++i) changed += text[i] != i;
        EXPECT_EQ(changed, expected);
        EXPECT_EQ(text.view().substr(0x80, 4), start);
    }
    EXPECT_TRUE(std::get<0>(cases[0])[0xE2] == 0x0194 && std::get<0>(cases[0])[0x7F] == 0x2302);
    EXPECT_TRUE(std::get<0>(cases[1])[0x24] == 0x00A4 && std::get<0>(cases[1])[0xC7] == 0x00C7);
    EXPECT_TRUE(stringWithKamenickyData({}).isIdenticalTo(String::empty()));
}

}  // namespace
}  // namespace velmo
