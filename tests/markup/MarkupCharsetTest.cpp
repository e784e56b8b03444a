#include <velmocore/markup/MarkupCharset.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(MarkupCharset, IsReadFromTheHead) {
    const std::tuple<const char16_t*, const char16_t*, Range> cases[] = {
        {u"", u"", Range::none()},
        {u"<p>no charset</p>", u"", Range::none()},
        {u"a<meta http-equiv=x content='text/html; charset=koi8-r'>", u"koi8-r", {1, 55}},
        {u"<META CONTENT=\"text/html;CHARSET='utf-8'\"/>", u"utf-8", {0, 43}},
        {u"<meta charset=big5>", u"big5", {0, 19}},
        {u"<meta content='text/html' charset=big5>", u"big5", {0, 39}},
        {u"<meta charset='utf&#45;8'>", u"utf-8", {0, 26}},
        {u"<?xml version='1.0' encoding='EUC-JP'?>", u"EUC-JP", {0, 39}},
        {u"<?xml encoding='utf&#45;8'?>", u"utf&#45;8", {0, 28}},
        // The first that names one counts, and what stands behind the body does not.
        {u"<?xml version='1.0'?><meta charset=a1><meta charset=b2>", u"a1", {21, 17}},
        {u"<script charset=x1></script><link charset=x2><meta charset=c3>", u"c3", {45, 17}},
        {u"<body><meta charset=x>", u"", Range::none()},
        {u"</BODY><meta charset=x>", u"", Range::none()},
        {u"<base><meta charset=d4>", u"d4", {6, 17}},
        {u"</meta charset=x1><xml encoding=x2>", u"", Range::none()},
        {u"<!--<meta charset=x1>--><meta charset=e5>", u"e5", {24, 17}},
        // An empty name in a content is a name.
        {u"<meta content='charset= ;' charset=x><meta charset=f6>", u"", {0, 37}}};
    for (const auto& [page, charset, tag] : cases) {
        EXPECT_EQ(markupCharset(page), charset) << utf8(page);
        EXPECT_EQ(markupCharsetRange(page), tag) << utf8(page);
    }
    EXPECT_EQ(markupEncoding(u"<meta charset=windows-1251>"), WindowsCP1251StringEncoding);
    EXPECT_EQ(headerEncoding(u"text/html; charset=iso-8859-1"), ISOLatin1StringEncoding);
    EXPECT_EQ(headerEncoding(u"text/html"), UnknownStringEncoding);
    EXPECT_EQ(defaultURLEncoding(u"<meta charset=latin1>"), ISOLatin1StringEncoding);
    EXPECT_EQ(defaultURLEncoding(u"<meta charset=koi8-r>"), UTF8StringEncoding);
}

TEST(MarkupCharset, PagesGoBackToTheirBytes) {
    const std::tuple<const char16_t*, std::string_view, StringEncoding> cases[] = {
        {u"", "", ASCIIStringEncoding},
        {u"<meta charset=iso-8859-1>\u00E9", "<meta charset=iso-8859-1>\xE9", 5},
        {u"<meta charset=utf-8>\u20AC", "<meta charset=utf-8>\xE2\x82\xAC", 4},
        {u"<meta charset=x-kam-cs>\u0160", "<meta charset=x-kam-cs>\x9B", KamenickyStringEncoding},
        {u"<p>\u20AC &\u3042", "<p>&euro; &&#12354;", ASCIIStringEncoding}};
    for (const auto& [page, expected, used] : cases) {
        const auto [bytes, encoding] = markupData(page);
        ASSERT_TRUE(bytes);
        EXPECT_EQ(charsOf(*bytes), expected);
        EXPECT_EQ(encoding, used);
    }
    EXPECT_EQ(markupData(String()).bytes, Data());
    EXPECT_EQ(markupData(u"<meta charset=iso-8859-1>\u20AC").bytes, std::nullopt);
}

}  // namespace
}  // namespace velmo
