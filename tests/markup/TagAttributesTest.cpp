#include <velmocore/markup/TagAttributes.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(TagAttributes, ReadsTags) {
    const std::tuple<const char16_t*, const char*, const char16_t*> cases[] = {
        {u"<a href=\"x\">", "HREF", u"x"},
        {u"<a HREF = 'x y '>", "HREF", u"x y"},
        {u"<a href=  x>", "HREF", u"x"},
        {u"<a href== =x>", "HREF", u"=x"},
        {u"<a href==\"x\">", "HREF", u"x"},
        {u"<a href=x/>", "HREF", u"x/"},
        {u"<a href= x", "HREF", u"x"},
        {u"<a href=>", "HREF", nullptr},
        {u"<a href=\"\">", "HREF", nullptr},
        {u"<a href=\"  \">", "HREF", nullptr},
        {u"<a href=\" x\">", "HREF", u" x"},
        {u"<a title=\"x>y\">", "TITLE", u"x"},
        {u"<a title=\"href=no\" href=yes>", "HREF", u"yes"},
        {u"<a title='it' href=yes>", "HREF", u"yes"},
        {u"<a data-href=no _href=no xhref=no href=yes>", "HREF", u"yes"},
        {u"<a href x href=y>", "HREF", u"y"},
        {u"<a it's href=x>", "HREF", nullptr},
        {u"<a href=\"", "HREF", nullptr},
        {u"<a \u017Frc=\"long s\">", "SRC", u"long s"},
        {u"<a b=x>", "HREF", nullptr},
        {u"<href>", "HREF", nullptr}};
    for (const auto& [tag, name, expected] : cases) {
        const String value = attributeOfTagCharacters(tag, name);
        EXPECT_EQ(value, expected ? String(expected) : String()) << utf8(tag);
        const Range range = rangeOfAttributeOfTagCharacters(tag, name);
        EXPECT_EQ(String(tag).substring(range), value) << utf8(tag);
    }
}

TEST(TagAttributes, ContentToleratesMarkup) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"<meta content=\"a <b>c</b> d\">", u"a <b>c</b> d"},
        {u"<meta content=\"a>b\">", u"a"},
        {u"<meta content=\">b\">", u">b"},
        {u"<meta content=\"lost <META name=x>", u"lost"},
        {u"<meta content=\"cut <\">", u"cut"},
        {u"<meta content=\"cut </\">", u"cut"},
        {u"<meta content=\"two << \">", u"two <<"},
        {u"<meta content='a", u"a"},
    };
    for (const auto& [tag, value] : cases) EXPECT_EQ(contentAttributeOfTagCharacters(tag), value) << utf8(tag);
}

TEST(TagAttributes, StringRulesDiffer) {
    EXPECT_EQ(attributeOfTagWithName(u"<a _href=x b=y>", u"href"), u"x");
    EXPECT_EQ(attributeOfTagWithName(u"<a href==x b=y>", u"HREF"), u"=x");
    EXPECT_TRUE(attributeOfTagWithName(u"<a href=x>", u"").isAbsent());
    const char16_t* style = u"width: 3px ; min-height:4px;height : '5 px';top";
    EXPECT_EQ(attributeOfStyleWithName(style, u"width"), u"3px");
    EXPECT_EQ(attributeOfStyleWithName(style, u"HEIGHT"), u"5 px");
    EXPECT_TRUE(attributeOfStyleWithName(style, u"top").isAbsent());
}

TEST(TagAttributes, ReadsHeaders) {
    EXPECT_EQ(headerCharset(u"text/html; Charset = \"utf-8\""), u"utf-8");
    EXPECT_EQ(headerCharset(u"text/html;charset=koi8-r;x"), u"koi8-r");
    EXPECT_EQ(headerCharset(u"charset='' charset=a>b"), u"a");
    EXPECT_EQ(headerCharset(u"charset=;"), u"");
    EXPECT_TRUE(headerCharset(u"charset= ").isAbsent());
    EXPECT_TRUE(headerCharset(u"text/html").isAbsent());
    EXPECT_EQ(headerRefresh(u"5; url=a;b c"), u"a;b");
    EXPECT_EQ(headerRefresh(u"0;URL='a b'"), u"a b");
    EXPECT_EQ(refreshInterval(u" 5; url=a"), 5);
    EXPECT_EQ(headerFieldNamed(u"a; xNAME=b c; d", u"NAME"), u"b c");
    EXPECT_EQ(headerFieldNamed(u"NAME= 'b;c'", u"NAME"), u" 'b");
    EXPECT_EQ(headerFieldNamed(u"NAME='b;c'", u"NAME"), u"b;c");
    EXPECT_TRUE(headerFieldNamed(u"NAME=b", u"").isAbsent());
    EXPECT_TRUE(headerFieldNamed(u"NAME=", u"NAME").isAbsent());
    EXPECT_EQ(HTTPHeaderFieldNamed(u"Digest realm=\"a,b\", nonce=c,d", u"REALM"), u"a,b");
    EXPECT_EQ(HTTPHeaderFieldNamed(u"Digest realm=\"a,b\", nonce=c,d", u"NONCE"), u"c");
}

TEST(TagAttributes, ReadsSizes) {
    const std::tuple<const char16_t*, std::int64_t, std::int64_t> cases[] = {
        {u"<img width=3 height=4>", 3, 4},
        {u"<img width=100% heigh=50px>", 100, 50},
        {u"<img style='width:7px;height:-2px'>", 7, -2},
        {u"<img style='width:7px'>", 7, 0},
        {u"<img style='height:7px'>", 0, 0},
        {u"<img height=7 a=b>", 0, 0},
        {u"<img width=99999999999999999999 >", INT64_MAX, 0},
        {u"<w width=1", 0, 0},
        {u"<width=1>", 0, 0}};
    for (const auto& [tag, width, height] : cases) {
        const TagSize size = getTagWidth(tag);
        EXPECT_EQ(size.width, width) << utf8(tag);
        EXPECT_EQ(size.height, height) << utf8(tag);
        EXPECT_EQ(static_cast<bool>(size), width > 0);
    }
}

TEST(TagAttributes, ReadsBackgroundImages) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"<p style=\"background: URL('a.png') no-repeat\">", u"a.png"},
        {u"<p style='background-image:url(a b) ; no-repeat'>", u"a b"},
        {u"<p style=\"background:url('') no-repeat\">", nullptr},
        {u"<p style=\"background:url() no-repeat\">", nullptr},
        {u"<p style=\"background:url('a) no-repeat\">", u"'a"},
        {u"<p style=\"background:url(a)\">", nullptr},
        {u"<p style=\"color:url(a) no-repeat\">", nullptr},
        {u"</p style=\"background:url(a) no-repeat\">", nullptr}};
    for (const auto& [tag, url] : cases)
        EXPECT_EQ(backgroundStyleURLOfTagCharacters(tag), url ? String(url) : String()) << utf8(tag);
}

}  // namespace
}  // namespace velmo
