#include <velmocore/markup/JunkStripping.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(JunkStripping, Objects) {
    const std::tuple<String, String> cases[] = {
        {u"<object><p>x</p></object>y", u"<p></p>y"},
        {u"<object><param name=a><p>x</p></object>y</param>z", u"<p></p>z"},
        {u"<object><param name=a /></object>y", u"y"},
        {u"<video>a<video>b</video>c</video>d<audio/>e", u"cde"},
        {u"a<NOSCRIPT>b<b>c</noscript>d", u"a<b>d"},
        {u"a<!-- b --><script>c</script>d<link x><frame><frames><frameset>e", u"ad<frameset>e"},
        {u"<applet>a<embed>b</applet>c</embed>d<iframe x/>e<canvas>f", u"de"},
        {u"a<objects>b</objects><![CDATA[c]]>", u"a<objects>b</objects><![CDATA[c]]>"}};
    for (const auto& [page, stripped] : cases) EXPECT_EQ(stripObjectsAndReplaceImages(page, false), stripped) << page;
}

TEST(JunkStripping, Images) {
    const std::tuple<String, String, String> cases[] = {
        {u"t <img alt=\"a\">", u"t <img alt=\"a\">", u"t a\n"},
        {u"t<IMG title='a &amp; b' src=c>d", u"t<IMG title='a &amp; b' src=c>d", u"t a &amp; b\nd"},
        {u"<img title=a alt=b>", u"<img title=a alt=b>", u" b\n"},
        {u"a<img src=\"x\">b", u"a<img src=\"x\">b", u"ab"},
        {u"<video>a<img alt=b></video>", u"<img alt=b>", u" b\n"}};
    for (const auto& [page, kept, replaced] : cases) {
        EXPECT_EQ(stripObjectsAndReplaceImages(page, false), kept) << page;
        EXPECT_EQ(stripObjectsAndReplaceImages(page, true), replaced) << page;
    }
}

TEST(JunkStripping, Links) {
    const std::tuple<String, String, String> cases[] = {
        // Behind a file link all text is lost up to the next link of another scheme.
        {u"a<a href=\"file:///x\">b</a>c<a href=\"http://y\">d</a>", u"ac", u"a<a href=\"http://y\">d</a>"},
        {u"<a href=x>a<b>b</b></A>c", u"<b></b>c", u"<b></b>"},
        {u"<a href=FILE:x>a</a><a>b</a>c<a href=mailto:d/>d</a>", u"c", u""},
        {u"a<link x>b<area href=x>", u"ab<area href=x>", u"a<link x>b<area href=x>"},
        {u"</a>a<a/>b</a>c", u"ac", u"</a>a<a/>b</a>c"},
        {u"<a name=x href=http://y>a</a>", u"", u"<a name=x href=http://y>a</a>"}};
    for (const auto& [page, links, fileLinks] : cases) {
        EXPECT_EQ(stripLinks(page), links) << page;
        EXPECT_EQ(stripFileLinks(page), fileLinks) << page;
    }
    EXPECT_EQ(stripFileLinks(u"<a href=FILE:x>a</a><a>b</a>c<a href=d:e>d</a>"), u"<a href=d:e>d</a>");
}

TEST(JunkStripping, NothingToTakeOut) {
    for (const String& page : {String(u"a<b c>d</b>&amp; <p"), String(u""), String()}) {
        EXPECT_TRUE(stripObjectsAndReplaceImages(page, true).isIdenticalTo(page));
        EXPECT_TRUE(stripLinks(page).isIdenticalTo(page));
        EXPECT_TRUE(stripFileLinks(page).isIdenticalTo(page));
    }
}

}  // namespace
}  // namespace velmo
