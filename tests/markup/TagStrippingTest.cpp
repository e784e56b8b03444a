#include <velmocore/markup/TagStripping.h>

#include <velmocore/markup/TagScanner.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(TagStripping, Tags) {
    const std::tuple<String, String> cases[] = {
        {u"<b>a</b>c", u" a c"},
        {u"a\n<b>b</b>", u" a\nb"},
        {u"a &amp; b", u" a &amp; b"},
        {u"<!-- x -->a<![CDATA[b]]>c<script>d</script>", u" a c"},
        {u"a<b", u" a<b"},
        {u"<b><i>", u""},
        {u"", u""},
        {String(), String()},
    };
    for (const auto& [text, stripped] : cases) EXPECT_EQ(stripTags(text), stripped) << text;
}

TEST(TagStripping, TagsOfOneName) {
    const std::tuple<String, String, String> cases[] = {
        {u"x<SPAN a=b>y</span >z<spans><br>", u"xyz<spans><br>", u"x<SPAN>y</SPAN>z<spans><br>"},
        {u"<span/>a<span href=x/>", u"a", u"a<SPAN HREF=\"x/\"/>"},
        {u"<span class=y src='a b'><span title=t href=c src=d>", u"", u"<SPAN SRC=\"a b\"><SPAN HREF=\"c\">"},
        {u"a<!-- <span> --><b><span", u"a<!-- <span> --><b><span", u"a<!-- <span> --><b><span"}};
    for (const auto& [text, stripped, bare] : cases) {
        EXPECT_EQ(stripTag(text, "SPAN"), stripped) << text;
        EXPECT_EQ(stripAttributesOfTag(text, "SPAN"), bare) << text;
        EXPECT_EQ(stripAttributesOfTag(bare, "SPAN"), bare) << text;
    }
    const String text(u"<a href=\"x\" class=\"y\">");
    EXPECT_EQ(stripAttributesOfTag(text, "A"), u"<A HREF=\"x\">");
    EXPECT_TRUE(stripTag(text, "SPAN").isIdenticalTo(text));
    EXPECT_TRUE(stripTag(text, "").isIdenticalTo(text));
    EXPECT_TRUE(stripAttributesOfTag(text, "B").isIdenticalTo(text));
    EXPECT_TRUE(stripAttributesOfTag(text, "").isIdenticalTo(text));
    EXPECT_EQ(stripAttributesOfTag(u"<script a src=b>x='c'</script>", "SCRIPT"), u"<SCRIPT SRC=\"b\">x='c'</script>");
}

TEST(TagStripping, Bodies) {
    const std::tuple<String, Strings, String, String> cases[] = {
        {u"<div><div>a</div>b</div>c", {u"<div"}, u"c", u"<div><div>a</div>b</div>\n"},
        {u"<p>a</p>x<p>b</p>", {u"<p"}, u"x", u"<p>a</p>\n<p>b</p>\n"},
        {u"a<P b>c<p/></p>d", {u"<B", u"<p"}, u"a</p>d", u"<P b>c<p/>\n"},
        {u"a<br/>b<br x=y/>", {u"<br", u""}, u"a<br/>b<br x=y/>", u"<br/><br x=y/>"},
        {u"a<p>b<param>c</p>d", {u"<p>"}, u"ad", u"<p>b<param>c</p>\n"},
        {u"a<p>b", {u"<p"}, u"a", u"<p>b"},
        {u"<p>a", {u"<p"}, String(), u"<p>a"},
        {u"</p>a<!-- <p> -->", {u"<p"}, u"</p>a<!-- <p> -->", String()},
        {u"a<script>b</script>c<!-- d -->e", {u"<script", u"<!--"}, u"ace", u"<script>b</script>\n<!-- d -->\n"},
        {u"<ul>a<ol>b</ul>c</ol>d", {u"<ol", u"<ul"}, u"c</ol>d", u"<ul>a<ol>b</ul>\n"}};
    for (const auto& [text, tags, stripped, left] : cases) {
        EXPECT_EQ(stripTagBodies(text, tags), stripped) << text;
        EXPECT_EQ(stripTagBodiesExcept(text, tags), left) << text;
    }
    const String text(u"<p>a</p>");
    for (const Strings& none : {Strings{}, Strings{u"", String()}}) {
        EXPECT_TRUE(stripTagBodies(text, none).isIdenticalTo(text));
        EXPECT_TRUE(stripTagBodiesExcept(text, none).isAbsent());
    }
    EXPECT_TRUE(stripTagBodies(text, Strings{u"<b"}).isIdenticalTo(text));
    EXPECT_EQ(stripTagBodies(u"", Strings{u"<b"}), u"");
    EXPECT_TRUE(stripTagBodiesExcept(u"", Strings{u"<b"}).isAbsent());
}

TEST(TagStripping, FirstElement) {
    const std::tuple<String, String, String> cases[] = {
        {u"<b>a<b>c</b></b>d", u"ac", u"<b>a<b>c</b></b>"},
        {u"x<b>a<i>c</i></b><b>d</b>", u"a<i>c</i>", u"<b>a<i>c</i></b>"},
        {u"</b>x<B y>a", u"a", u"<B y>a"},
        {u"<b/>x<b></b>", u"", u"<b/><b></b>"},
        {u"<i>a</i>", String(), String()},
        {u"</b>", String(), String()},
        {u"", String(), String()}};
    for (const auto& [text, inner, outer] : cases) {
        EXPECT_EQ(innerTagBody(text, "B"), inner) << text;
        EXPECT_EQ(outerTagBody(text, "B"), outer) << text;
    }
    EXPECT_TRUE(innerTagBody(u"<b>a</b>", "").isAbsent());
    EXPECT_EQ(innerTagBody(u"a<style x>b</style >c", "STYLE"), u"b");
    EXPECT_EQ(outerTagBody(u"a<style x>b</style >c", "STYLE"), u"<style x>b</style >");
}

TEST(TagStripping, Dictionaries) {
    const std::map<String, String> element{{u"Tag", u"<b>"}};
    EXPECT_EQ(xmlTag(element), u"<b>");
    EXPECT_EQ(xmlContent(element), u"");
    EXPECT_EQ(xmlContent({{u"Content", u"c"}}), u"c");
    EXPECT_TRUE(xmlTag({}).isAbsent());
}

// The handlers as they are told, with a copy of each span, beside the rebuilding.
String stripTagBodiesSlowly(const String& text, View beginning, bool except) {
    std::u16string out, name;
    std::size_t depth = 0;
    const auto lower = [](View units) {
        std::u16string low(units);
        for (char16_t& unit : low)
            if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 32);
        return low;
    };
    GetTagsOfString(text, [&](const Tag& tag) {
        const std::u16string whole = lower(tag.whole());
        const bool closing = whole.starts_with(u"</"), single = whole.size() > 3 && whole.ends_with(u"/>");
        const bool opens = depth == 0 && whole.starts_with(beginning) && !closing;
        if (depth > 0 ? except : !except) out += tag.text();
        if (depth == 0 && opens && !single) {
            depth = 1;
            name = lower(tag.name());
            if (except) out += tag.whole();
        } else if (depth == 0) {
            if (opens || !except) out += except == opens || single ? tag.whole() : View();
        } else {
            if (except) out += tag.whole();
            if (lower(tag.name()) == name) depth = closing || single ? depth - 1 : depth + 1;
            if (except && depth == 0) out += u'\n';
        }
        return false;
    });
    return out.empty() ? String() : String(out);
}

TEST(TagStripping, RandomBodies) {
    std::mt19937 random(7);
    const View parts[] = {u"<p>", u"</p>", u"<P x>", u"<p/>", u"<pre>", u"</PRE>", u"<b>", u"t", u" ", u"</b>"};
    for (int round = 0; round < 20000; ++round) {
        std::u16string text;
        for (std::size_t i = random() % 12; i > 0; --i) text += parts[random() % std::size(parts)];
        if (text.empty()) continue;
        const Strings tags{u"<p"};
        ASSERT_EQ(stripTagBodies(text, tags), stripTagBodiesSlowly(text, u"<p", false)) << String(text);
        ASSERT_EQ(stripTagBodiesExcept(text, tags), stripTagBodiesSlowly(text, u"<p", true)) << String(text);
    }
}

}  // namespace
}  // namespace velmo
