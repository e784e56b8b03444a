#include <velmocore/markup/LinkThumbnails.h>

#include <velmocore/markup/MarkupDecoding.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/Removal.h>

#include <set>

#include "TestSupport.h"
#include "markup/ThumbnailFilter.h"
#include "markup/ThumbnailTables.h"

namespace velmo {
namespace {

using Strings = LinkThumbnails::Strings;

const URL Base = URL::URLWithString(u"http://h/d/");

/// "link=value link=value", in the order of the links; values of the base without it.
std::string textOf(const Strings& strings) {
    std::string text;
    for (const auto& [link, value] : strings) {
        std::string shown = value.utf8();
        if (shown.starts_with("http://h/d/")) shown.erase(0, 11);
        text += (text.empty() ? "" : " ") + link.utf8() + "=" + shown;
    }
    return text;
}
std::string thumbnails(View page) { return textOf(getLinkThumbnails(page, {.baseURL = Base}).thumbnails); }
std::string titles(View page) { return textOf(getLinkThumbnails(page, {.baseURL = Base}).titles); }
std::string texts(View page) { return textOf(getLinkThumbnails(page, {.baseURL = Base}).texts); }

struct PageCase {
    View page;
    std::string expected;
};

TEST(LinkThumbnails, PairsImagesWithLinksByTheRule) {
    const PageCase cases[] = {
        // inside a link
        {u"<a href=1><img src=a.jpg></a>", "1=a.jpg"},
        {u"<A HREF=1><b>x</b><p><IMG SRC=a.jpg>", "1=a.jpg"},
        {u"<a href=1><img src=a.jpg><img src=b.jpg></a><a href=1><img src=c.jpg></a>", "1=a.jpg"},
        {u"<a href=1>x<a href=2><img src=a.jpg></a><img src=b.jpg>", "2=a.jpg"},
        {u"<a href=1>x<a name=n><img src=a.jpg></a>", ""},
        {u"<a href=1><table background=a.jpg><tr><td><img src=b.jpg></td></table></a>", "1=a.jpg"},
        {u"<a href=1><figure><img src=a.jpg></figure></a><a href=2><figure><img src=b.jpg></figure></a>",
         "1=a.jpg 2=b.jpg"},
        {u"<a href=1></img src=a.jpg><img src=''><img alt=x></a>", ""},
        // beside a link
        {u"<img src=a.jpg><a href=1>x</a><img src=b.jpg>", ""},
        {u"<td><img src=a.jpg><a href=1>x</a>", "1=a.jpg"},
        {u"<td><a href=1>x</a><img src=a.jpg>", "1=a.jpg"},
        {u"<figure><div><img src=a.jpg></div><figcaption><a href=1>x</a></figcaption></figure>", "1=a.jpg"},
        {u"<li><a href=1>x</a><p>y</p><img src=a.jpg>", "1=a.jpg"},
        {u"<th background=a.jpg><a href=1>x</a>", "1=a.jpg"},
        {u"<td><img src=a.jpg><img src=b.jpg><a href=1>x</a>", "1=b.jpg"},
        {u"<td><img src=a.jpg><a href=1><img src=b.jpg></a>", "1=b.jpg"},
        {u"<td><img src=a.jpg><a name=n></a><a href=1>x</a>", "1=a.jpg"},
        {u"<td><img src=a.jpg><a href=1>x</a><img src=b.jpg><a href=2>x</a>", "1=a.jpg 2=b.jpg"},
        {u"<td><a href=1>x</a><img src=a.jpg><a href=2>x</a><img src=b.jpg>", "1=a.jpg 2=b.jpg"},
        {u"<td><a href=1>x</a><img src=a.jpg><img src=b.jpg><a href=2>x</a><a href=3>x</a>", "1=a.jpg 2=b.jpg"},
        {u"<td><img src=a.jpg><area href=1><area href=2>", "1=a.jpg"},
        {u"<td><area href=1><img src=a.jpg>", "1=a.jpg"},
        {u"<td><img src=a.jpg><a href=1>x", "1=a.jpg"},
        // where a cell ends
        {u"<td><img src=a.jpg><td><a href=1>x</a>", ""},
        {u"<td><a href=1>x</a></td><img src=a.jpg>", ""},
        {u"<td><a href=1>x</a><tr><img src=a.jpg>", ""},
        {u"<li><a href=1>x</a></ul><img src=a.jpg>", ""},
        {u"<td><a href=1>x</a><table><tr><td>y</table><img src=a.jpg>", ""},
        {u"<figure><img src=a.jpg></figure><a href=1>x</a>", ""},
        {u"<figure><img src=a.jpg><figure><a href=1>x</a></figure>", ""},
        {u"<li><figure><img src=a.jpg></figure><a href=1>x</a></li>", "1=a.jpg"},
        {u"<figure><td></figure><img src=a.jpg><a href=1>x</a>", "1=a.jpg"},
        {u"<td><a href=1>x<td><img src=a.jpg></a><img src=b.jpg>", "1=a.jpg"},
        // the link held
        {u"<td><a href=1>x</a><a href=2><img src=a.jpg></a>", "1=a.jpg 2=a.jpg"},
        {u"<td><a href=1>x</a><td><a href=2><img src=a.jpg></a>", "2=a.jpg"},
        {u"<a href=1>x</a><a href=2><img src=a.jpg></a>", "2=a.jpg"},
        {u"<td><a href=1><img src=a.gif></a><a href=2><img src=b.jpg></a>", "1=a.gif 2=b.jpg"},
        {u"<td><a href=1><img src=a.gif></a><a href=2.JPEG><img src=b.jpg></a>", "1=b.jpg 2.JPEG=b.jpg"},
        {u"<td><a href=1><img src=a.jpg></a><a href=2.jpg><img src=b.jpg></a>", "1=a.jpg 2.jpg=b.jpg"},
        {u"<td><a href=1><img src=a.gif></a><a href=2.jpg><img src=b.gif><img src=c.jpg></a>", "1=c.jpg 2.jpg=b.gif"},
        // what holds an image
        {u"<a href=1><video poster=a.jpg src=b.mov></a><a href=2><video src=b.mov></a>", "1=a.jpg 2=b.mov"},
        {u"<a href=1><div style='background:url(a.jpg) no-repeat'></a>", "1=a.jpg"},
        {u"<a href=1><div background=a.jpg style='background:url(b.jpg)'></a>", ""},
        {u"<a href=1><img src=' http://i/a&amp;b.jpg\n'></a>", "1=http://i/a&b.jpg"},
        {u"<a href=javascript:open('b.html')><img src=a.jpg></a>", "b.html=a.jpg"},
        {u"<a href=javascript:close('b.html')><img src=a.jpg></a>", ""},
        {u"<a href=' '><img src=a.jpg></a><a href=1><img src=' #x'></a>", ""},
    };
    for (const PageCase& c : cases) EXPECT_EQ(thumbnails(c.page), c.expected) << String(c.page);
    EXPECT_EQ(textOf(getLinkThumbnails(u"<a href=1><img src=http://i/a.jpg></a>").thumbnails), "");
    EXPECT_EQ(
        textOf(getLinkThumbnails(u"<meta charset=iso-8859-1><a href=1><img src='\u00E4.jpg'></a>", {.baseURL = Base})
                   .thumbnails),
        "1=%E4.jpg");
}

TEST(LinkThumbnails, GivesTitlesThatSaySomething) {
    const PageCase cases[] = {
        {u"<a href=1 title='  A &amp; \n B '>x</a>", "1=A & B"},
        {u"<a href=1 title=One alt='One two'>x</a>", "1=One two"},
        {u"<a href=1 title='One two' alt=One>x</a>", "1=One two"},
        {u"<a href=1 title='One two'>x</a><a href=1 title=Three>x</a><a href=1 title='Four five'>x</a>", "1=Four five"},
        {u"<area href=1 alt=Map>", "1=Map"},
        {u"<a href=1 title='permalink to Foo'><a href=2 title='Click to show Title: x'><a href=3 title='Title:y'>",
         "1=Foo 2=Title: x 3=y"},
        {u"<a href=1 title='GO TO fullsize image'><a href=2 title='Title:Full text'>"
         u"<a href=3 title='More info and direct link for x'>",
         ""},
        {u"<a href=tea title=TEA><a href=2 title='HTTPS://h'><a href=3 title='http://'><a href=4 title=' .-! '>", ""},
        // of the image
        {u"<a href=1 title=T><img src=a.jpg alt='A long one' title='T two'></a>", "1=T"},
        {u"<a href=1><img src=a.jpg alt='A long one' title='T two'></a>", "1=T two"},
        {u"<a href=1><img src=icon.ico alt=A><img src=b.jpg alt=B><img src=c.jpg alt='C c'></a>", "1=B"},
        {u"<td><img src=a.jpg alt=A><a href=1>x</a>", "1=A"},
        {u"<td><a href=1 title=T><img src=a.gif></a><a href=2.jpg><img src=b.jpg alt=B></a>", "1=B 2.jpg=B"},
        {u"<td><a href=1 title=T><img src=a.gif></a><a href=2.jpg><img src=b.jpg></a>", ""},
    };
    for (const PageCase& c : cases) EXPECT_EQ(titles(c.page), c.expected) << String(c.page);
}

TEST(LinkThumbnails, GivesTheTextOfClosedLinks) {
    const PageCase cases[] = {
        {u"<a href=1> A <b>b</b>&nbsp;&lt;c </a>", "1=A b <c"},
        {u"<a href=1>A<br> B  b</a>", "1=A\nB b"},
        {u"<a href=1><img src=a.ico alt=Icon> x</a>", "1=Icon x"},
        {u"<a href=1>one<a href=2>two</a>three<a href=3>four", "2=two"},
        {u"<a href=1>one two</a><a href=1>three</a><a href=1>four five</a>", "1=four five"},
        {u"<a href=tea>TEA</a><a href=2>http://h/</a><a href=3>...</a><a href=4></a>", ""},
        {u"<a href=1><table><tr><td>x</td></table>y</a>", "1=x \n\ny"},
        {u"<a href=1><script>document.write('<a href=2></a>')</script>z</a>", "1=z"},
    };
    for (const PageCase& c : cases) EXPECT_EQ(texts(c.page), c.expected) << String(c.page);
}

TEST(LinkThumbnails, ResolvesLinksAndLeavesTheEnginesOwnOut) {
    const auto found = [](View host, View page, bool resolve) {
        const URL base = URL::URLWithString(u"http://" + std::u16string(host) + u"/search?q=x");
        return textOf(getLinkThumbnails(page, {.baseURL = base, .resolve = resolve}).texts);
    };
    constexpr View Page =
        u"<a href='/url?q=http://h.org/a&sa=U'>a</a><a href='/search?q=cache:x'>b</a><a href='/x&q=related:y'>c</a>"
        u"<a href='http://translate.google.com/translate?hl=en&u=h'>d</a><a href='mailto:x@h.org'>e</a>";
    EXPECT_EQ(found(u"www.google.com", Page, true), "http://h.org/a=a mailto:x@h.org=e");
    EXPECT_EQ(found(u"h.org", u"<a href='../a#x'>a</a><a href='/x&q=related:y'>c</a>", true),
              "http://h.org/a=a http://h.org/x&q=related:y=c");
    for (View host : {u"de.search.yahoo.com", u"WWW.LexisWeb.com", u"images.google.fr"})
        EXPECT_EQ(found(host, u"<a href='http://i.org/x&q=related:y'>c</a>", true), "") << String(host);
    EXPECT_EQ(found(u"www.google.com", u"<a href='/x&q=related:y'>c</a>", false), "/x&q=related:y=c");
    EXPECT_EQ(textOf(getLinkThumbnails(u"<a href='http://h.org/'>c</a>", {.resolve = true}).texts), "");
}

TEST(LinkThumbnails, HonoursGoogleTags) {
    constexpr View Page =
        u"<!--googleoff: anchor--><a href=1 title=T><img src=a.jpg></a><!--googleon: anchor-->"
        u"<!--googleoff: index--><a href=2 title=T><img src=a.jpg></a><!--googleon: all-->"
        u"<!--googleoff: snippet--><a href=3 title=T>x</a>";
    const LinkThumbnails found = getLinkThumbnails(Page, {.baseURL = Base, .googleTags = true});
    EXPECT_EQ(textOf(found.thumbnails) + ", " + textOf(found.titles) + ", " + textOf(found.texts), "1=a.jpg, 3=T, 3=x");
    EXPECT_EQ(titles(Page), "1=T 2=T 3=T");
}

TEST(LinkThumbnails, FindsTheSameWhateverElseIsAskedFor) {
    for (const char* name : {"cc-about-en.html", "httpd-fr-utf8.html", "readability-v8-blog.html"}) {
        const String page = stringWithMarkupData(Bytes(test::readPage(name)));
        const LinkThumbnails all = getLinkThumbnails(page, {.baseURL = Base});
        for (unsigned wanted = 0; wanted < 8; ++wanted) {
            const LinkThumbnails some = getLinkThumbnails(page, {.baseURL = Base,
                                                                 .thumbnails = (wanted & 1) != 0,
                                                                 .titles = (wanted & 2) != 0,
                                                                 .texts = (wanted & 4) != 0});
            EXPECT_EQ(some.thumbnails, wanted & 1 ? all.thumbnails : Strings()) << name;
            EXPECT_EQ(some.titles, wanted & 2 ? all.titles : Strings()) << name;
            EXPECT_EQ(some.texts, wanted & 4 ? all.texts : Strings()) << name;
        }
    }
}

TEST(LinkThumbnails, ReadsRealPages) {
    const auto found = [](const char* name, View base) {
        return getLinkThumbnails(stringWithMarkupData(Bytes(test::readPage(name))),
                                 {.baseURL = URL::URLWithString(base), .resolve = true});
    };
    // 28 links around an image, as another HTML parser finds them, and eight beside one in a list.
    const LinkThumbnails about = found("cc-about-en.html", u"https://creativecommons.org/about/");
    EXPECT_EQ(about.thumbnails.size(), 36u);
    const std::tuple<View, View, View> rows[] = {
        {u"/author/ryan/", u"2016/05/ryan.png", u"Ryan Merkley, CEO"},
        {u"/about/global-affiliate-network/", u"2016/05/global_affiliates_map.png", u"global_affiliates_map"},
        {u"/2017/08/11/bassel-free-culture-fellowship/", u"2016/05/1024px-Bassel_Khartabil_Safadi.jpg", u"Bassel"},
        {u"/about/programs/arts-culture/", u"2016/05/arts_culture.png", u"arts_culture"},
        {u"/about/program-areas/technology/", u"2016/05/techno_logo.png", u"technology"},
    };
    for (const auto& [path, image, title] : rows) {
        const String link = u"https://creativecommons.org" + std::u16string(path);
        ASSERT_TRUE(about.thumbnails.contains(link)) << link;
        EXPECT_EQ(about.thumbnails.at(link),
                  u"https://creativecommons.org/wp-content/uploads/" + std::u16string(image));
        EXPECT_EQ(about.titles.at(link), title);
    }
    EXPECT_EQ(about.texts.at(u"https://creativecommons.org/about/programs/arts-culture/"), u"Arts & culture");
    // An arrow in front of a link is no part of it, and one in a link has a title without a word.
    const LinkThumbnails manual = found("httpd-fr-utf8.html", u"http://h/d/");
    EXPECT_EQ(textOf(manual.thumbnails), "http://h/d/=images/left.gif");
    EXPECT_FALSE(manual.titles.contains(u"http://h/d/"));
}

// --- which images count -------------------------------------------------------------------

bool counts(View reference, View tag = u"") { return detail::isThumbnail(reference, tag); }

TEST(LinkThumbnails, KnowsButtonsAndSpacers) {
    for (const auto& reference : test::wordsOf(
             u"/images/spacer12.gif d0wn/blank.GIF play.gif 1/d2.gif dd/3/d7.gif /favicon.ico http://h/x.ICO "
             u"http://s.ytimg.com/yt/img/pixel-a.gif 3/MGP_7.jpg ../preview.jpg ikona22.jpg images/overflow/pink.png "
             u"a_BUTTON.png player.jpg /wmv.jpg \u0130/spacer\u0661.gif \u017Fpacer.gif"))
        EXPECT_FALSE(counts(reference)) << String(reference);
    for (const auto& reference : test::wordsOf(
             u"a.jpg d.gif /d.gif a/xd.gif a/preview.jpg spacer12.png pixel-12345.gif h/a_button2.png spacer.gif?x "
             u"button.jpeg poster.webp pink.png /x/favicon.icon layer.jpg"))
        EXPECT_TRUE(counts(reference)) << String(reference);
    // A name that is a label is a picture if it is large, and no banner.
    const auto sized = [](const char* size) {
        return counts(u"player.jpg", u"<img src=player.jpg " + String::fromUTF8(size) + u">");
    };
    EXPECT_TRUE(sized("width=200 height=150") && sized("width=150 height=120") &&
                sized("style='width:300px;height:150px'"));
    for (const char* small : {"width=100 height=100", "width=149 height=120", "width=150 height=119", "width=200",
                              "width=301 height=150", "width=150 height=301", "width=-200 height=-150", "height=150"})
        EXPECT_FALSE(sized(small)) << small;
}

TEST(LinkThumbnails, TestsSuffixesAsALinearWalkDoes) {
    using detail::SuffixTable;
    std::mt19937 random(4);
    const std::span<const std::string_view> tables[] = {detail::thumbnailGifs(), detail::thumbnailJpegs1(),
                                                        detail::thumbnailJpegs2(), detail::thumbnailPngs()};
    std::size_t hits = 0;
    for (const auto& rows : tables) {
        const SuffixTable table(rows);
        for (int round = 0; round < 4000; ++round) {
            // A row, damaged and with digits strewn in, behind something or nothing.
            std::u16string text(String::fromUTF8(rows[random() % rows.size()]));
            for (int changes = static_cast<int>(random() % 4); changes > 0; --changes) {
                const std::size_t at = random() % text.size();
                if (random() % 3)
                    text.insert(at, 1, u"0\u06617"[random() % 3]);
                else if (random() % 2)
                    text[at] = u"/._SskK\u017F\u212Ai\u0131"[random() % 11];
                else
                    text.erase(0, at);
            }
            if (random() % 2) text = test::randomText(random, u"/a1_.", random() % 6) + text;
            for (const auto reading : {SuffixTable::Reading::Plain, SuffixTable::Reading::Path}) {
                String prepared = text;
                if (reading == SuffixTable::Reading::Path) {
                    prepared = stringByRemovingDigits(prepared);
                    if (prepared.view().find(u'/') == View::npos) prepared = u"/" + prepared;
                }
                const bool expected = std::any_of(rows.begin(), rows.end(), [&](std::string_view row) {
                    return hasSuffixNoCase(prepared, String::fromUTF8(row));
                });
                hits += expected;
                ASSERT_EQ(table.isAtEndOf(text, reading), expected) << String(text);
            }
        }
    }
    EXPECT_GT(hits, 4000u);
}

// --- the rule, slowly ---------------------------------------------------------------------

/// Pairs images with links by looking back and forth in the list of tags for each of them.
class SlowRule {
public:
    explicit SlowRule(std::vector<std::u16string> tags) : tags_(std::move(tags)) {}

    Strings paired() {
        for (std::size_t i = 0; i < tags_.size(); ++i) {
            if (tags_[i].starts_with(u"<img")) handleImage(i);
            if (isAnchor(i) || tags_[i].starts_with(u"<area")) giveWaiting(i);
        }
        giveWaiting(tags_.size());
        return found_;
    }

private:
    using Index = std::ptrdiff_t;

    bool isAnchor(std::size_t i) const { return tags_[i].starts_with(u"<a ") || tags_[i] == u"</a>"; }
    static String valueOf(const std::u16string& tag) {
        return View(tag).substr(tag.find(u'=') + 1, tag.size() - tag.find(u'=') - 2);
    }

    /// The anchor that is open at a place, or -1.
    Index openAt(std::size_t place) const {
        for (auto i = static_cast<Index>(place) - 1; i >= 0; --i)
            if (isAnchor(static_cast<std::size_t>(i))) return tags_[static_cast<std::size_t>(i)] == u"</a>" ? -1 : i;
        return -1;
    }
    /// The tag that opened the cell of a place, or -1.
    Index cellAt(std::size_t place) const {
        static const std::set<View> opening = {u"<td>", u"<li>"}, ends = {u"</td>", u"<tr>", u"</ul>", u"</table>"};
        Index cell = -1;
        bool isFigure = false;
        for (std::size_t i = 0; i < place; ++i) {
            const bool inFigure = cell >= 0 && isFigure;
            if (opening.contains(tags_[i])) cell = static_cast<Index>(i), isFigure = false;
            if (ends.contains(tags_[i]) || (tags_[i] == u"</figure>" && inFigure)) cell = -1;
            if (tags_[i] == u"<figure>" && (cell < 0 || inFigure)) cell = static_cast<Index>(i), isFigure = true;
        }
        return cell;
    }
    /// The last link that was closed in the cell of a place; absent if none.
    String heldAt(std::size_t place) const {
        const Index cell = cellAt(place);
        for (auto i = static_cast<Index>(place) - 1; cell >= 0 && i > cell; --i) {
            const auto at = static_cast<std::size_t>(i);
            if (tags_[at].starts_with(u"<area")) return valueOf(tags_[at]);
            if (isAnchor(at) && openAt(at) >= 0) return valueOf(tags_[static_cast<std::size_t>(openAt(at))]);
        }
        return {};
    }

    void handleImage(std::size_t i) {
        const Index open = openAt(i);
        const String held = heldAt(i), image = u"http://h/d/" + std::u16string(valueOf(tags_[i]));
        if (open >= 0) return give(image, held, valueOf(tags_[static_cast<std::size_t>(open)]));
        if (cellAt(i) < 0) return;
        if (!held.isAbsent() && !found_.contains(held)) return give(image, held, {});
        waiting_.insert_or_assign(i, image);
    }

    /// Gives a link that closes here what stood in front of it.
    void giveWaiting(std::size_t place) {
        const bool isArea = place < tags_.size() && tags_[place].starts_with(u"<area");
        const Index link = isArea ? static_cast<Index>(place) : openAt(place);
        if (link < 0) return;
        const String key = valueOf(tags_[static_cast<std::size_t>(link)]), image = waits(link);
        if (!image.isAbsent() && !found_.contains(key)) give(image, heldAt(place), key);
    }
    /// What waits for a link: the last image of its cell behind the last link that could have taken it.
    String waits(Index link) const {
        const Index cell = cellAt(static_cast<std::size_t>(link));
        for (Index i = link - 1; cell >= 0 && i > cell; --i) {
            const std::u16string& tag = tags_[static_cast<std::size_t>(i)];
            if (tag.starts_with(u"<a ") || tag.starts_with(u"<area")) return {};
            if (const auto found = waiting_.find(static_cast<std::size_t>(i)); found != waiting_.end())
                return found->second;
        }
        return {};
    }

    void give(const String& image, const String& held, const String& link) {
        const auto isJpeg = [](const String& name) { return name.view().find(u".jp") != View::npos; };
        if (!held.isAbsent()) {
            const auto present = found_.find(held);
            if (present == found_.end())
                found_.emplace(held, image);
            else if (!link.isAbsent() && isJpeg(link) && !isJpeg(present->second))
                present->second = image;
        }
        if (!link.isAbsent()) found_.emplace(link, image);
    }

    const std::vector<std::u16string> tags_;
    std::map<std::size_t, String> waiting_;
    Strings found_;
};

TEST(LinkThumbnails, FollowsTheRuleOnAnySequenceOfTags) {
    const auto vocabulary = test::wordsOf(
        u"<td> </td> <li> <tr> </ul> </table> <figure> </figure> </a> </a> </a> <img> <img> <img> <img> <a> <a> "
        u"<area>");
    std::mt19937 random(9);
    std::size_t pairs = 0;
    for (int round = 0; round < 20000; ++round) {
        std::vector<std::u16string> tags;
        std::u16string page;
        for (std::size_t i = 0, count = random() % 24; i < count; ++i) {
            std::u16string tag = vocabulary[random() % vocabulary.size()];
            const std::u16string number(1, static_cast<char16_t>(u'0' + random() % 8));
            const View suffix = random() % 2 ? u".jpg" : u".x";
            if (tag == u"<img>") tag = u"<img src=i" + number + std::u16string(suffix) + u">";
            if (tag == u"<a>" || tag == u"<area>")
                tag = tag.substr(0, tag.size() - 1) + u" href=" + number +
                      std::u16string(random() % 4 ? u"" : u".jpg") + u">";
            page += tag;
            tags.push_back(std::move(tag));
        }
        const Strings expected = SlowRule(tags).paired();
        pairs += expected.size();
        ASSERT_EQ(textOf(getLinkThumbnails(page, {.baseURL = Base}).thumbnails), textOf(expected)) << String(page);
    }
    EXPECT_GT(pairs, 10000u);
}

TEST(LinkThumbnails, TakesTheURLOutOfAScript) {
    EXPECT_EQ(stringByExtractingJavaScriptURL(u"JavaScript:imageViewAll('http://h/a.jpg', 3)"), u"http://h/a.jpg");
    EXPECT_EQ(stringByExtractingJavaScriptURL(u"javascript:open('a')"), u"a");
    EXPECT_EQ(stringByExtractingJavaScriptURL(u"javascript:open('')"), u"");
    for (View link : {u"javascript:open('a", u"javascript:open(\"a\")", u" javascript:open('a')", u"open('a')", u""})
        EXPECT_TRUE(stringByExtractingJavaScriptURL(link).isAbsent()) << String(link);
}

}  // namespace
}  // namespace velmo
