#include <velmocore/markup/FileTypes.h>

#include <velmocore/markup/TagPredicates.h>
#include <velmocore/platform/UserDefaults.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(FileTypes, KnowsExtensions) {
    EXPECT_TRUE(isHTMLExtension(u"php4?x=y"));
    EXPECT_FALSE(isHTMLExtension(u"rss"));
    EXPECT_TRUE(isXMLExtension(u"shtm") && isHTMLExtension(u"shtm"));
    EXPECT_TRUE(isXMLExtension(u"RsS"));
    EXPECT_TRUE(isPropertyListExtension(u"scriptTERMINOLOGY"));
    EXPECT_TRUE(isMarkupFile(u"/a.b/page.HTML"));
    EXPECT_FALSE(isMarkupFile(u"/a.html/page") || isMarkupFile(u"/.html") || isMarkupFile(u""));
    EXPECT_TRUE(isHTMLFile(u"page.html///"));
    EXPECT_EQ(HTMLFileTypes().size(), 36u);
    EXPECT_EQ(HTMLFileTypes()[10], u"html");
    EXPECT_EQ(PropertyListFileTypes().size(), 10u);
}

TEST(FileTypes, AsksForCustomExtensions) {
    const std::size_t before = XMLFileTypes().size();
    EXPECT_FALSE(isXMLExtension(u"kml"));
    setUserDefaultsHook([](std::u16string_view key) {
        return key == u"AdditionalXMLExtensions" ? std::vector<String>{u"kml"} : std::vector<String>();
    });
    EXPECT_TRUE(isXMLExtension(u"KML"));
    setUserDefaultsHook(nullptr);
    EXPECT_TRUE(isXMLExtension(u"kml"));
    ASSERT_EQ(XMLFileTypes().size(), before + 2);
    EXPECT_EQ(XMLFileTypes().back(), u"KML");
    EXPECT_EQ(MarkupFileTypes().size(), before + 2 + 36 + 10);
}

TEST(TagPredicates, TellTagsApart) {
    EXPECT_TRUE(isTagOpen(u"<br/>") && isTagClosed(u"<br/>"));
    EXPECT_TRUE(isTagOpen(u"<b>") && !isTagClosed(u"<b>"));
    EXPECT_TRUE(!isTagOpen(u"<>") && !isTagClosed(u"<>") && !isTagClosed(u"</>"));
    EXPECT_TRUE(isMetaTag(u"<![x]]>") && !isMetaTag(u"<![x]>"));
    EXPECT_TRUE(isRemarkTag(u"<!---->") && !isRemarkTag(u"<!--->"));
    EXPECT_TRUE(isHTML(u" \n<!doctype HTML><p>\n") && isHTML(u"<title></title>"));
    EXPECT_FALSE(isHTML(u"<html") || isHTML(u"html>") || isHTML(u"<body></body>") || isHTML(u""));
}

}  // namespace
}  // namespace velmo
