#include <velmocore/markup/PlainText.h>

#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Trimming.h>

#include "TestSupport.h"
#include "markup/TagWalk.h"

namespace velmo {
namespace {

struct Sample {
    const char16_t* page;
    const char16_t* text;
    PlainTextOptions options = {};
};

template <std::size_t N>
void expectTexts(const Sample (&cases)[N]) {
    for (const Sample& c : cases)
        EXPECT_EQ(stringByConvertingHtml2PlainText(c.page, c.options), c.text) << utf8(c.page);
}

TEST(PlainText, WritesBreaksBetweenText) {
    expectTexts({{u"plain", u"plain"},
                 {u"<p>a</p><p>b</p>", u"a\n\nb\n\n"},
                 {u"a<br><br>b", u"a\nb"},
                 {u"<br>a", u"a"},
                 {u"x<b>y</b>z", u"xyz"},
                 {u"x <b>y</b> z", u"x y z"},
                 {u"  x \n\t y\u00A0\u00A0z  ", u"x y z"},
                 {u"<a href=\"x\">a</a>b", u"a b"},
                 {u"<h1>a</h1>b<hr>c", u"a\n\nb\n\nc"},
                 {u"<h0>a</h9>b", u"a\n\nb"},
                 {u"<ul><li>a<li>b</ul>c", u"a\nb\nc"},
                 {u"<blockquote>a</blockquote><menu>b</menu>c", u"a\n\nb\n\nc"},
                 {u"a &amp; b&nbsp;&eacute;&#65;x", u"a & b \u00E9Ax"},
                 {u"<script>a</script><style>b</style>c", u"c"},
                 {u"a<!-- b -->c<![CDATA[d]]>e", u"ace"},
                 {u"<title>t</title><p>a", u"t\n\na"}});
}

TEST(PlainText, LaysOutTables) {
    expectTexts({{u"<td>a</td><td>b</td>", u"a b "},
                 {u"<td>a </td>b", u"a b"},
                 {u"<table><tr><td>a<td>b<tr><td>c</table>d", u"a b\nc\n\nd"},
                 {u"a<tr>b", u"a\nb"},
                 {u"a<td><tr>b", u"a \nb"},
                 {u"ab<table>c", u"ab\n\nc"},
                 {u"ab<br><table>c", u"ab\n\nc"},
                 {u"ab<p><table>c", u"ab\n\nc"}});
}

TEST(PlainText, KeepsOrFlattensPreformattedText) {
    expectTexts({{u"a<pre>b\n c</pre>d", u"a\n\nb cd"},
                 {u"a<pre> b\n\nc\nd\n-e\r\nf</pre>g", u"a\n\n b\n\nc d\n-e f g", {.reformat = true}},
                 {u"<pre>a\n</pre>b", u"ab", {.reformat = true}},
                 {u"a<code>b  c</code>d", u"a b c d"},
                 {u"a<plaintext>b<br>c", u"a\n\nb\nc"},
                 {u"<plaintext>b", u"\n\nb"}});
    EXPECT_EQ(stringByConvertingHtml2ReformattedPlainText(u"<pre>a\nb"), u"a b");
}

TEST(PlainText, LeavesHiddenElementsOut) {
    expectTexts({{u"<div style=\"display:none\">x</div>y", u"y"},
                 {u"<div style=\"display:none\"><div>x</div>y</div>z", u"x\n\ny\n\nz"},
                 {u"<div class=HIDDEN>x</div>y", u"y"},
                 {u"<span style='visibility: hidden'>x</span>y", u"y"},
                 {u"<span style='hidden visibility'>x</span>y", u"xy"},
                 {u"<div style='position:Absolute;left:-2000px'>x</div>y", u"y"},
                 {u"<div style='position:absolute;left:-20px'>x</div>y", u"x\n\ny"},
                 {u"<div style='width:3px'>x</div>y", u"y"},
                 {u"<div style='width:4px;height:-1px'>x</div>y", u"y"},
                 {u"<div style='width:4px;height:9px'>x</div>y", u"x\n\ny"},
                 {u"<select><option>x<option>y</select>z", u"z"},
                 {u"<textarea>a</textarea>b", u"b"},
                 {u"<textarea>a<div>b</div>", u"b\n\n"},
                 {u"<marquee>a</marquee>b", u"b"},
                 {u"<iframe>a</iframe><noframes>b</noframes><noscript>c</noscript>d", u"d"},
                 {u"<body bgcolor=\"#FFF\"><font color=\"#fff\">x</font>y", u"xy"},
                 {u"<body bgcolor=\"#FFF\"><font color=\"#fff\">x</font>y", u"y", {.removeJunk = true}},
                 {u"<font style='font-size:4pt'>x</font>y", u"y", {.removeJunk = true}},
                 {u"<font style='font-size:14pt'>x</font>y", u"xy", {.removeJunk = true}},
                 {u"<title>t</title>y", u"y", {.removeJunk = true}}});
}

TEST(PlainText, TakesImageTextsAndInputs) {
    expectTexts({{u"a<img alt=\"b &lt;c\">d", u"a b <c d"},
                 {u"a<img title=b>d", u"a b d"},
                 {u"a<img src=x.png>d", u"a d"},
                 {u"a<img alt=b>d", u"ad", {.imageAlts = false}},
                 {u"a<input>b", u"a b"},
                 {u"<input>b", u"b"}});
}

TEST(PlainText, HonoursGoogleComments) {
    expectTexts({{u"<!-- googleoff: index -->x<!-- googleon: index -->y", u"y", {.googleTags = true}},
                 {u"<!-- googleoff: index -->x<!-- googleon: all -->y", u"y", {.googleTags = true}},
                 {u"<!-- googleoff: snippet -->x", u"x", {.googleTags = true}},
                 {u"<!-- googleoff: index -->x", u"x"},
                 {u"<font class=feed_date>x</font>y", u"y", {.googleTags = true}}});
}

TEST(PlainText, TakesOnlyTheBody) {
    const PlainTextOptions onlyBody{.onlyBody = true};
    expectTexts({{u"<head><title>t</title></head><body>a</body>b", u"a", onlyBody},
                 {u"a<p>b", u"a\n\nb", onlyBody},
                 {u"<noframes>a</noframes>b", u"b", onlyBody},
                 {u"<body>a<body>b</body>c</body>d", u"abc", onlyBody},
                 {u"</body></body>a", u"a"}});
    EXPECT_EQ(stringByConvertingHtml2SimplifiedPlainText(u"<title>t</title><body>a<p>b &amp;c</body>d"), u" a b &c");
    EXPECT_EQ(stringByConvertingHtml2SimplifiedPlainText(u"a<p> b"), u" a  b");
}

TEST(PlainText, DecodesAsAsked) {
    expectTexts({{u"\u00E4&auml;&lt;", u"aa<", {.nonUmlauted = true}},
                 {u"&eacute;&lt;x&#60;", u"&eacute;<x<", {.entities = false}},
                 {u"&eacute;&lt;x", u"&eacute;&lt;x", {.entities = false, .stdEntities = false}},
                 {u"&eacute;&lt;x", u"\u00E9&lt;x", {.stdEntities = false}},
                 {u"&lt", u"&lt"}});
}

TEST(PlainText, RemovesJunk) {
    const auto removed = [](const std::u16string& page, std::size_t expectedLength) {
        const auto [text, did] = plainTextOfHtml(String(page), {.removeJunk = true});
        EXPECT_EQ(text.length(), expectedLength);
        return did;
    };
    const std::u16string word = u"abcdefg ";
    const auto words = [&](std::size_t units) {
        std::u16string text;
        while (text.size() < units) text += word;
        return text.substr(0, units - 1) + u"x";
    };
    EXPECT_FALSE(removed(words(10000), 10000));
    EXPECT_TRUE(removed(words(10001), 0));
    EXPECT_FALSE(removed(u"<a>" + words(3500) + u"</a>", 3500));
    EXPECT_TRUE(removed(u"<a>" + words(3501) + u"</a>", 0));
    EXPECT_FALSE(removed(u"<a>x</a>" + words(3501), 3503));
    // A run of 20,001 units without a break goes, with all behind the last break.
    EXPECT_FALSE(removed(u"x<br>" + words(10000) + u"<b>" + words(10000), 20002));
    EXPECT_TRUE(removed(u"x<br>" + words(10000) + u"<b>" + words(10000) + u"<b>y", 2));
    EXPECT_TRUE(removed(u"<pre>x\n\n" + words(10000) + u"<b>" + words(10001), 0));

    const String tiny = u"<font style='font-size:1pt'>", end = u"</font>y";
    const HtmlPlainText kept = plainTextOfHtml(tiny + words(200) + end, {.removeJunk = true});
    EXPECT_EQ(kept.text, u"y");
    EXPECT_TRUE(kept.didRemoveJunk);
    EXPECT_FALSE(plainTextOfHtml(tiny + u"a short text" + end, {.removeJunk = true}).didRemoveJunk);
}

TEST(PlainText, GivesTheReceiverWhereNothingIsToDo) {
    for (const String& page : {String(), String(u"")})
        EXPECT_TRUE(stringByConvertingHtml2PlainText(page).isIdenticalTo(page));
}

// Without tags, the text is what stands there with white space in runs, whether it is copied in
// one piece or decoded first.
TEST(PlainText, CollapsesWhiteSpace) {
    const char16_t* pieces[] = {u" ",      u"\n", u"\t",     u"\u00A0", u"\u2003",
                                u"\u3000", u"a",  u"\u00E4", u"\u3042", u"\uFEFF"};
    std::mt19937 random(3);
    for (int round = 0; round < 20000; ++round) {
        std::u16string text;
        const unsigned kinds = random() % std::size(pieces) + 1;
        for (unsigned n = random() % 60; n > 0; --n) text += random() % 3 ? u"x" : pieces[random() % kinds];
        const String expected = stringByTrimmingWhiteSpaces(stringByRemovingMultipleWhiteSpaces(text + u"&<>x"));
        ASSERT_EQ(stringByConvertingHtml2PlainText(text + u"&amp;&lt;&gt;x"), expected) << String(text);
        ASSERT_EQ(stringByConvertingHtml2PlainText(text + u"\u0026<b></b>&lt;<b></b>&gt;x"), expected);
    }
}

TEST(PlainText, TakesOrLeavesWhatIsAskedFor) {
    const auto text = [](View page, PlainTextOptions options) {
        return stringByConvertingHtml2PlainText(page, options);
    };
    const WebRules today = WebRules::today();
    constexpr View Hidden = u"a<noscript>b</noscript><template>c</template><textarea>d</textarea>e";
    EXPECT_EQ(text(Hidden, {}), u"ace");
    EXPECT_EQ(text(Hidden, {.web = today}), u"ae");
    EXPECT_EQ(text(Hidden, {.noScripts = true, .textareas = true, .web = today}), u"abde");
    constexpr View Ruby = u"<ruby>\u6F22<rp>(</rp><rt>kan</rt><rp>)</rp>\u5B57<rt>ji</ruby> x";
    EXPECT_EQ(text(Ruby, {}), u"\u6F22(kan)\u5B57ji x");
    EXPECT_EQ(text(Ruby, {.rubyText = false}), u"\u6F22\u5B57 x");
    EXPECT_EQ(text(u"<p>Zu\u00ADcker&shy;", {.web = today}), u"Zucker");
    constexpr View Table =
        u"<table><tr><th>a<th> b </th><tr><td></td><td>c d</td><td></td></tr></table><table><tr><td>e</table>f";
    EXPECT_EQ(text(Table, {.tabs = true}), u"a\tb\n\tc d\t\n\ne\n\nf");
}

/// Options and rules, each on or off.
PlainTextOptions optionsOf(std::mt19937& random) {
    const auto rarely = [&] { return random() % 4 == 0; };
    const auto often = [&] { return random() % 4 != 0; };
    const bool isToday = random() % 2;
    return {.entities = often(),
            .stdEntities = often(),
            .nonUmlauted = rarely(),
            .reformat = rarely(),
            .onlyBody = rarely(),
            .removeJunk = rarely(),
            .googleTags = rarely(),
            .imageAlts = often(),
            .noScripts = rarely(),
            .textareas = rarely(),
            .rubyText = often(),
            .tabs = rarely(),
            .web = isToday ? WebRules::today() : WebRules()};
}

// A page in UTF-8 gives the text of the decoded page, whatever its bytes are.
TEST(PlainText, IsTheSameOfBytes) {
    constexpr std::string_view Pieces[] = {"<p>",
                                           "</p>",
                                           "<br>",
                                           "<a href=x>",
                                           "</a>",
                                           "<td>",
                                           "<tr>",
                                           "<table>",
                                           "</table>",
                                           "<pre>",
                                           "</pre>",
                                           "<code>",
                                           "</code>",
                                           "<plaintext>",
                                           "<blockquote>",
                                           "<img alt='a &amp; \xC3\xA9' src=x>",
                                           "<img title=b>",
                                           "<input>",
                                           "<option>",
                                           "<select>",
                                           "<textarea>",
                                           "<noscript>",
                                           "<iframe>",
                                           "</iframe>",
                                           "<noframes>",
                                           "</noframes>",
                                           "<body bgcolor='#FFF'>",
                                           "</body>",
                                           "<head>",
                                           "</head>",
                                           "<title>",
                                           "</title>",
                                           "<font color='#fff'>",
                                           "<font style='font-size:1pt'>",
                                           "<font class=feed_date>",
                                           "</font>",
                                           "<marquee>",
                                           "<h1>",
                                           "</h1>",
                                           "<rt>",
                                           "<ruby>",
                                           "<template>",
                                           "<xmp>",
                                           "</xmp>",
                                           "<noembed>",
                                           "<!-- googleoff: index -->",
                                           "<!-- googleon: all -->",
                                           "<![CDATA[",
                                           "]]>",
                                           "<script>a<b",
                                           "</script>",
                                           "<style>",
                                           "</style>",
                                           "<cite>",
                                           "<div class=hidden>",
                                           "<div style=\"display:none\">",
                                           "<DIV CLA\xC5\xBF\xC5\xBF=hidden>",
                                           "<\xC5\xBFpan class=hidden>",
                                           "</div>",
                                           "<span style='visibility: hidden'>",
                                           "</span>",
                                           "<span data-x=1 id='x>y'>",
                                           "<li>",
                                           "<svg>",
                                           "</svg>",
                                           "<",
                                           ">",
                                           "=",
                                           "\"",
                                           "'",
                                           "&",
                                           ";",
                                           "&amp;",
                                           "&lt",
                                           "&nbsp;",
                                           "&nbsp",
                                           "&#32;",
                                           "&#x1F600;",
                                           "&eacute;",
                                           "&notin;",
                                           "&not",
                                           "&copy",
                                           "AT&T",
                                           "a & b",
                                           "&\xC3\xA9;",
                                           "&shy;",
                                           " ",
                                           "\n",
                                           "\t  \n",
                                           "\xC2\xA0",
                                           "\xE3\x80\x80",
                                           "\xEF\xBB\xBF",
                                           "\xC2\xAD",
                                           "\xC3\xA4\xC3\xB6",
                                           "\xE6\x97\xA5\xE6\x9C\xAC",
                                           "\xF0\x9F\x98\x80",
                                           "\xE6\x97",
                                           "\xC0\x80",
                                           "\xED\xA0\x80",
                                           "\x80",
                                           std::string_view("\0", 1),
                                           "\x03",
                                           "\x01",
                                           "word",
                                           "more words ",
                                           "a long run of plain words, and then some more of them "};
    std::mt19937 random(17);
    const std::string letters(120, 'x'), longWord(10500, 'y');
    for (int round = 0; round < 20000; ++round) {
        std::string page;
        for (unsigned n = random() % 60; n > 0; --n) {
            page += Pieces[random() % std::size(Pieces)];
            if (random() % 3 == 0) page += std::string_view(letters).substr(0, random() % 50);
            if (random() % 2000 == 0) page += longWord;
        }
        const String units = String::fromUTF8(page);
        const PlainTextOptions options = optionsOf(random);
        const HtmlPlainText expected = plainTextOfHtml(units, options);
        // Exactly as long as the page, so that nothing behind it may be read.
        const std::vector<char> bytes(page.begin(), page.end());
        const HtmlPlainText text = detail::plainTextOfUtf8({bytes.data(), bytes.size()}, options);
        ASSERT_EQ(text.text, expected.text) << page;
        ASSERT_EQ(text.didRemoveJunk, expected.didRemoveJunk) << page;
        // From the tags that a page keeps.
        const HtmlPlainText walked = detail::plainTextOf(units, detail::scanOf(units.view(), options.web), options);
        ASSERT_EQ(walked.text, expected.text) << page;
    }
}

}  // namespace
}  // namespace velmo
