#include <velmocore/markup/WebCharsets.h>

#include <velmocore/markup/MarkupDecoding.h>

#include "TestSupport.h"
#include "markup/CharsetLabelTables.h"

namespace velmo {
namespace {

std::string nameOf(TextEncoding encoding) {
    return encoding == UnknownTextEncoding ? "" : std::string(ianaName(stringEncodingOf(encoding)));
}

TEST(WebCharsets, LabelsAreSortedAndReadable) {
    const auto labels = detail::charsetLabels();
    EXPECT_EQ(labels.size(), 222u);
    EXPECT_TRUE(std::ranges::is_sorted(labels, {}, &detail::CharsetLabel::label));
    for (const auto& row : labels) {
        EXPECT_TRUE(isEncodingAvailable(row.encoding)) << row.label;
        EXPECT_EQ(encodingOfCharsetLabel(u"\n " + std::u16string(String::fromUTF8(row.label)) + u"\t"), row.encoding);
    }
    for (View none : {u"", u" ", u"latin-1", u"hz-gb-2312", u"utf-8\u00A0", u"iso-8859-1 x"})
        EXPECT_EQ(encodingOfCharsetLabel(none), UnknownTextEncoding) << String(none);
    EXPECT_EQ(encodingOfCharsetLabel(test::repeated(u"x", 100000)), UnknownTextEncoding);
}

TEST(WebCharsets, AreFoundAsBrowsersDo) {
    const std::tuple<std::string, View, std::string> cases[] = {
        {"", u"", "windows-1252"},
        {"<p>caf\xC3\xA9", u"", "utf-8"},
        {"<p>caf\xE9", u"", "windows-1252"},
        {"<meta charset=latin1>", u"", "windows-1252"},
        {"<meta charset=latin1>", u"koi8-r", "koi8-r"},
        {"<meta charset=latin1>", u"nonsense", "windows-1252"},
        {"\xEF\xBB\xBF<meta charset=latin1>", u"koi8-r", "utf-8"},
        {std::string("\xFF\xFE<\0", 4), u"", "utf-16le"},
        {"<META  CharSet = ' EUC-JP ' >", u"", "euc-jp"},
        {"<meta/charset='x-sjis'/>", u"", "shift_jis"},
        {"<metacharset=koi8-r><meta charset=tis-620>", u"", "windows-874"},
        {"<meta charset=tis-620", u"", "windows-1252"},
        {"<meta charset='tis-620>", u"", "windows-1252"},
        {std::string("<\0?\0x\0", 6), u"", "utf-16le"},
        {std::string("\0<\0?\0x", 6), u"gbk", "gbk"},
        {"<meta charset='utf-8' charset=gbk http-equiv=refresh>", u"", "utf-8"},
        {"<meta charset=nonsense http-equiv=content-type content='charset=gbk'>", u"", "windows-1252"},
        {"<meta charset=utf-16>", u"", "utf-8"},
        {"<meta charset=x-user-defined>", u"", "windows-1252"},
        {"<meta charset=nonsense><meta charset=gbk>", u"", "gbk"},
        {"<meta http-equiv=Content-Type content='text/html; charset = koi8-u'>", u"", "koi8-u"},
        {"<meta content='charset=koi8-r' http-equiv=content-type>", u"", "koi8-r"},
        {"<meta content='charset=koi8-r'>", u"", "windows-1252"},
        {"<meta http-equiv=refresh content='charset=koi8-r'>", u"", "windows-1252"},
        {"<meta http-equiv=content-type content='charset charset=\"koi8-r\"'>", u"", "koi8-r"},
        {"<meta http-equiv=content-type content='charset=\"koi8-r'>", u"", "windows-1252"},
        {"<meta content='charset=koi8-r' charset=gbk>", u"", "gbk"},
        {"<meta charset=koi8-r charset=gbk>", u"", "koi8-r"},
        {"<!-- <meta charset=koi8-r> --><meta charset=gbk>", u"", "gbk"},
        {"<!--><meta charset=koi8-r>-->", u"", "koi8-r"},
        {"<a title='<meta charset=koi8-r>'><meta charset=gbk>", u"", "gbk"},
        {"<? <meta charset=koi8-r><! <meta charset=gbk></ <meta charset=big5>", u"", "windows-1252"},
        {"<1 <meta charset=koi8-r>", u"", "koi8-r"},
        {"<?xml version='1.0' encoding='koi8-r'?><p>", u"", "koi8-r"},
        {"<?xml version='1.0' encoding='koi8-r'?><meta charset=gbk>", u"", "gbk"},
    };
    for (const auto& [page, header, expected] : cases)
        EXPECT_EQ(nameOf(webCharset(page, header).encoding), expected) << page;
}

// Only the first 1024 bytes count, and a tag must end in them.
TEST(WebCharsets, AreLookedForInTheHead) {
    for (const std::size_t length : {1000, 1006, 1007, 1024}) {
        std::string page(length, ' ');
        page += "<meta charset=gbk>";
        EXPECT_EQ(nameOf(webCharset(page).encoding), length <= 1006 ? "gbk" : "windows-1252") << length;
    }
}

TEST(WebCharsets, DecodePagesWhenAsked) {
    const std::string page = "<meta charset=iso-8859-1>\x93x\x94";
    EXPECT_TRUE(decodeMarkup(page).text.view().ends_with(u"\u0093x\u0094"));
    const MarkupDecoding today = decodeMarkup(page, {.web = WebRules::today()});
    EXPECT_TRUE(today.text.view().ends_with(u"\u201Cx\u201D"));
    EXPECT_EQ(today.declared, u"iso-8859-1");
    // Every beginning of a page is one.
    const std::string whole =
        "<?xml encoding='a'?><!-- - --><meta http-equiv='x' content=\"charset='y'\" charset=z/></p a=b>";
    for (std::size_t length = 0; length <= whole.size(); ++length) (void)webCharset(whole.substr(0, length));
}

}  // namespace
}  // namespace velmo
