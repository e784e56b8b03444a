#include <velmocore/url/URLSimplification.h>

#include <velmocore/text/CharacterSets.h>

#include "TestSupport.h"

namespace velmo {
namespace {

using Units = std::u16string_view;
using Rewriter = String (*)(const String&);

/// Each word is a string and, after >, what becomes of it; what stays the same is the string itself.
void check(Rewriter rewriter, Units cases) {
    for (const std::u16string& word : test::wordsOf(cases)) {
        const std::size_t sign = word.find(u'>');
        ASSERT_NE(sign, word.npos);
        const String string(word.substr(0, sign)), expected(word.substr(sign + 1)), result = rewriter(string);
        EXPECT_EQ(result, expected) << string;
        EXPECT_EQ(result.isIdenticalTo(string), string == expected) << string;
    }
    EXPECT_TRUE(rewriter(String()).isAbsent());
    const String empty(u"");
    EXPECT_TRUE(rewriter(empty).isIdenticalTo(empty));
}

TEST(URLSimplification, Standardizes) {
    check(standardizedStringURL,
          u"http://h//a///b>http://h/a/b http:////h>http://h //h//a>/h/a http://h/a?b//c/.>http://h/a?b//c/. "
          u"http://h//a;b//c/.>http://h/a;b//c/. http://h/a/.>http://h/a http://h/a/..>http://h/a "
          u"http://h/a//./..//.>http://h/a http://h/a.>http://h/a. a..>a.. /...>/... ./..> ..> .> x:/>x:/ "
          u"http://.>http:/");
}

TEST(URLSimplification, TakesPartsOff) {
    check(stringURLWithoutAnchor, u"a#b>a a#>a #b> a#!x>a#!x a#/x#y>a#/x#y a#!>a a#/>a a#x!y>a");
    check(stringURLWithoutScheme, u"http://h/a>h/a mailto:a@b>a@b x:///> :a>a h/a:b>h/a:b h?a:b>h?a:b h>h");
    check(stringURLWithoutCredentials,
          u"http://u:p@h:8/a@b>http://h:8/a@b http://u@h>http://h http://@h>http://h http://:@h>http://h "
          u"mailto:a@b>mailto:a@b /u:p@h>/u:p@h ~u:p@h>~u:p@h");
    EXPECT_EQ(stringURLWithoutCredentials(u"http://u:p@h/a b"), u"http://u:p@h/a b");
    check(displayStringURL,
          u"https://u:p@WWW.h.org/a//>h.org/a www.h.org>h.org http://www2.h.org/?a/>www2.h.org/?a h>h");
    check(stringURLByRemovingIndexPages,
          u"http://h/a/index.html>http://h/a h/a/INDEX.PHP>h/a /index.shtml> h/index.jhtml>h h/index.jsp>h/index.jsp "
          u"h/index.html?a>h/index.html?a h/xindex.html>h/xindex.html h/index.htm/a>h/index.htm/a");
}

TEST(URLSimplification, TakesParametersOut) {
    check(stringURLByRemovingAnalytics,
          u"h/?a=1&UTM_source=x&utm_term=y&b=2>h/?a=1&b=2 h/?utm_medium=x>h/ h/?utm_id=1>h/?utm_id=1 "
          u"h/?xutm_term=1&utm_term=2>h/?xutm_term=1&utm_term=2 h/?a;utm_content=2;b?c>h/?a;b?c utm_term=1>utm_term=1");
    check(stringURLByRemovingEmptyParams,
          u"h/?aa=>h/ h/?a=&b=1&c=>h/?b=1 h/?a=1&b=;c=2>h/?a=1&c=2 h/?a=&b=&c=&d=>h/?b=&d= h/?=&a=1>h/?=&a=1 ?a=>?a= "
          u"=&>=& h/?&a=1?&&>h/?a=1?& h/?a==>h/ h/?ab=1=>h/?ab=1= a=>a=");
    const std::tuple<const char16_t*, const char16_t*, const char16_t*> cases[] = {
        {u"h/?Ab=1&c=2&aB=3", u"ab=", u"h/?c=2"},
        {u"h/?xab=1&ab=2", u"ab=", nullptr},
        {u"ab=1", u"ab=", nullptr},
        {u"h/;ab=1?c=2", u"ab=", u"h/;c=2"},
        {u"h/;ab=1&c=2", u"ab=", u"h/;c=2"},
        {u"h/?ab=1;c=2&d=3", u"ab=", u"h/?d=3"},
        {u"h/?ab=", u"", nullptr},
        {u"h/?a&b=&b=1", u"a&b=", u"h/?b=&b=1"}};
    for (const auto& [string, name, expected] : cases)
        EXPECT_EQ(stringURLByRemovingQueryParam(string, name), expected ? expected : string) << String(string);
    const String same(u"h/?a=1");
    EXPECT_TRUE(stringURLByRemovingQueryParam(same, u"b=").isIdenticalTo(same));
    EXPECT_TRUE(stringURLByRemovingQueryParam(same, Units()).isIdenticalTo(same));
}

TEST(URLSimplification, TakesSessionsOut) {
    check(stringURLByRemovingSessionIDs,
          u"h/?PHPSESSID=1&a=2>h/?a=2 h/?a=2&jsessionid=1>h/?a=2 h/p;jsessionid=1?a=2>h/p;a=2 h/?sid=12>h/?sid=12 "
          u"h/?sid=1b>h/ h/?cid=1&sid=b>h/?cid=1&sid=b h/?p_sid=12>h/ h/?xsid=1&sid=b>h/?xsid=1&sid=b "
          u"h/?random=1>h/?random=1 h/?random=1&xid=2>h/?xid=2 h/?sid=1&random=1>h/?sid=1&random=1 "
          u"h/?SESSID=1&random=1&b=2>h/?b=2 h/?nats=1&ccbill=2&_fb_noscript=3&Nats=4>h/?Nats=4 "
          u"h/a.html?pi=1&CACHE=2&CMP=3&ATT=4&lsrc=5>h/a.html?lsrc=5 h/a.php?pi=1&CMP=2&LSRC=3>h/a.php?CMP=2 "
          u"h/a.aspx?pi=1&lsrc=2>h/a.aspx?pi=1 h/a?pi=1&lsrc=2&cache=3>h/a?pi=1&lsrc=2&cache=3 "
          u"h/viewtopic.php?t=1&p=2&s=3>h/viewtopic.php?t=1&p=2 h/viewtopic.php?t=1&s=3>h/viewtopic.php?t=1&s=3 "
          u"h/viewtopic.php?hilit=1&HighLight=2&a=3>h/viewtopic.php?a=3 "
          u"http://groups.google.com/x?ei=1&a=2>http://groups.google.com/x?a=2 http://h/x?ei=1>http://h/x?ei=1 "
          u"h/login?a=b>h/login h/register?x/login?a>h/register h/a.html?widgetType=1>h/a.html sid=a>sid=a");
}

// The slow way, by search and cut on strings.

using Text = std::u16string;

char16_t folded(char16_t unit) { return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit; }
Text folded(Text text) {
    for (char16_t& unit : text) unit = folded(unit);
    return text;
}
std::size_t find(const Text& text, const char16_t* name, bool anyCase) {
    return anyCase ? folded(text).find(folded(name)) : text.find(name);
}
std::size_t parameter(const Text& text, const char16_t* name, bool anyCase) {
    const std::size_t i = find(text, name, anyCase);
    const bool isOne = i != Text::npos && i > 0 && Units(u"&;?").find(text[i - 1]) != Units::npos;
    return isOne ? i - 1 : Text::npos;
}
std::size_t endOf(const Text& text, std::size_t k) {
    return text.find_first_of(text[k] == u';' ? u";&?" : u"&?", k + 1);
}

bool passSlowly(Text& text, int kind, bool topic, bool news, bool& seen) {
    bool local = seen;
    const auto take = [&](const char16_t* name, bool anyCase) {
        const std::size_t k = parameter(text, name, anyCase);
        if (k == Text::npos) return false;
        const std::size_t e = endOf(text, k);
        text = e != Text::npos && e + 1 < text.size() ? text.substr(0, k + 1) + text.substr(e + 1) : text.substr(0, k);
        return true;
    };
    if (find(text, u"id=", true) == Text::npos) {
        if (topic && text.find(u"&p=") != Text::npos && take(u"s=", false)) return true;
    } else {
        for (const char16_t* name :
             {u"phpsessionid=", u"phpsessid=", u"jsessionid=", u"jsessid=", u"sessionid=", u"wgsessid=", u"sessid="})
            if (take(name, true)) return seen = true;
        for (const char16_t* name : {u"CFID=", u"CFTOKEN=", u"affid=", u"REFFID="})
            if (take(name, false)) return seen = true;
        bool any = false;
        for (const char16_t* name : {u"cid=", u"p_sid=", u"sid="}) {
            const std::size_t k = parameter(text, name, false);
            if (k == Text::npos) continue;
            any = true;
            for (std::size_t i = k + 4; i < std::min(endOf(text, k), text.size()); ++i)
                if (alphaCharacterSetRep().contains(text[i])) return take(name, false);
            break;
        }
        if (!any) local = true;
    }
    const bool isStatic = kind == 1, script = kind == 2, server = kind == 3;
    const bool taken = take(u"ccbill=", false) || take(u"nats=", false) || take(u"_fb_noscript=", false) ||
                       ((isStatic || script) && (take(u"pi=", false) || take(u"cache=", true))) ||
                       (isStatic && (take(u"CMP=", false) || take(u"ATT=", false))) ||
                       ((script || server) && take(u"lsrc=", true)) ||
                       (topic && (take(u"highlight=", true) || take(u"hilit=", false))) ||
                       (news && take(u"ei=", false)) || (local && take(u"random=", true));
    if (taken) seen = local;
    return taken;
}

Text withoutSessionsSlowly(Text text) {
    const auto has = [&](const char16_t* name) { return find(text, name, true) != Text::npos; };
    const int kind = has(u".html?") || has(u".htm?") ? 1 : has(u".php?") ? 2 : has(u".asp?") || has(u".aspx?") ? 3 : 0;
    const bool topic = kind == 2 && has(u"viewtopic.php"), news = has(u"//groups.google.com/");
    bool seen = false;
    while (passSlowly(text, kind, topic, news, seen)) {}
    const std::pair<const char16_t*, std::size_t> forms[] = {
        {u"/login?", 6}, {u"/register?", 9}, {u".html?widgetType=", 5}};
    for (bool cut = true; cut;) {
        cut = false;
        for (const auto& [form, length] : forms)
            if (const std::size_t i = text.find(form); !cut && i != Text::npos) {
                text.resize(i + length);
                cut = true;
            }
    }
    return text;
}

/// A URL of pieces that reductions look at.
Text randomURL(std::mt19937& random) {
    static const auto Starts = test::wordsOf(
        u"http://h/a.html h/viewtopic.php http://groups.google.com/b a.aspx "
        u"https://www.h/c h/a.php //h/../x/. ");
    static const auto Pieces = test::wordsOf(
        u"? & & ; = 1 22 b / # &p= s= sid= cid= p_sid= sessid= PHPSessID= jsessionid= CFID= reffid= nats= pi= cache= "
        u"CMP= "
        u"lsrc= highlight= ei= random= id= utm_source= utm_term= UTM_Content= _fb_noscript= /login .html widgetType= "
        u"/index.html . %26 %3F %3D %41 www. \u00C4 page=main.php");
    Text text = Starts[random() % Starts.size()];
    for (unsigned n = random() % 14; n > 0; --n) {
        text += Pieces[random() % Pieces.size()];
        if (random() % 3 == 0) text += u"?&;"[random() % 3];
    }
    return text;
}

TEST(URLSimplification, AgreesWithTheSlowWay) {
    std::mt19937 random(11);
    int changed = 0;
    for (int round = 0; round < 20000; ++round) {
        const Text url = randomURL(random);
        const String result = stringURLByRemovingSessionIDs(url);
        ASSERT_EQ(result, withoutSessionsSlowly(url)) << String(url);
        changed += result != url;
    }
    EXPECT_GT(changed, 4000);
}

TEST(URLSimplification, MakesOneKeyOfAPage) {
    check([](const String& string) { return simplifiedStringURL(string); },
          u"https://www.H.org/a//b/index.html?#x>http://h.org/a/b/index.html? "
          u"HTTPS://WWW.h.org/a/Index.HTML#x>http://h.org/a http://h.org/?PHPSESSID=1&page=main.php>http://h.org "
          u"http://h.org/?a=&utm_term=2&b=%2F%26&ved=1>http://h.org/?b=/&&ved=1 "
          u"http://www.google.com/patents/x?ved=1&a=2>http://google.com/patents/x?a=2 "
          u"http://\u00C4.org/>http://\u00E4.org http://h.org/%41%2541>http://h.org/%41%41 /> "
          u"http://h.org/a>http://h.org/a");
    const String url(u"https://www.h/?sid=a&utm_term=b&c=#d");
    const std::pair<SimplifyOptions, const char16_t*> cases[] = {
        {{}, u"http://h"},
        {{.sessionIDs = false}, u"http://h/?sid=a"},
        {{.analytics = false}, u"http://h/?utm_term=b"},
        {{.emptyParams = false}, u"http://h/?c="},
        {{.anchors = false}, u"http://h/?c=#d"},
    };
    for (const auto& [options, expected] : cases) EXPECT_EQ(simplifiedStringURL(url, options), expected);
    EXPECT_EQ(simplifiedStringURL(u"http://h/index.php", {.indexPages = false}), u"http://h/index.php");
    EXPECT_EQ(simplifiedStringURL(u"http://h/?page=main.php", {.sessionIDs = false}), u"http://h/?page=main.php");
}

TEST(URLSimplification, ComparesTexts) {
    const std::tuple<const char16_t*, const char16_t*, bool> cases[] = {
        {u"http://H/a//b#x", u"HTTP://h/a/b/", true},
        {u"http://h/a", u"https://h/a", false},
        {u"", u"", true},
        {u"#", u"/", true},
        {u"", nullptr, false},
        {nullptr, nullptr, false},
        {u"h/#!a", u"h/", false},
    };
    for (const auto& [a, b, equal] : cases) EXPECT_EQ(isEqualToStringURL(a, b), equal) << String(a) << ' ' << String(b);
}

TEST(URLSimplification, StandardizesAsTheSlowWayDoes) {
    std::mt19937 random(17);
    for (int round = 0; round < 20000; ++round) {
        Text text, slow;
        for (unsigned n = random() % 50; n > 0; --n) text += u"////:..aab?"[random() % (n < 8 ? 11 : 10)];
        bool plain = true;
        for (const char16_t unit : text) {
            plain = plain && unit != u'?';
            const bool extra = plain && unit == u'/' && slow.ends_with(u'/') && !slow.ends_with(u":/");
            if (!extra) slow += unit;
        }
        for (bool goesOn = plain; goesOn;) {
            const std::size_t cut = slow == u"." || slow.ends_with(u"/.")     ? std::min<std::size_t>(2, slow.size())
                                    : slow == u".." || slow.ends_with(u"/..") ? std::min<std::size_t>(3, slow.size())
                                                                              : 0;
            slow.resize(slow.size() - cut);
            goesOn = cut > 0;
        }
        ASSERT_EQ(standardizedStringURL(text), slow) << String(text);
    }
}

// A key is not always its own key at once, as a cut may bring together what is cut too, but soon.
TEST(URLSimplification, IsStableSoon) {
    std::mt19937 random(5);
    const auto rounds = [](Rewriter rewrite, String url) {
        int count = 0;
        for (String next; (next = rewrite(url)) != url; url = next) ++count;
        return count;
    };
    const auto simplified = [](const String& string) { return simplifiedStringURL(string); };
    for (int round = 0; round < 20000; ++round) {
        const String url = randomURL(random);
        ASSERT_LE(rounds(standardizedStringURL, url), 1) << url;
        ASSERT_LE(rounds(stringURLByRemovingAnalytics, url), 1) << url;
        ASSERT_LE(rounds(stringURLByRemovingSessionIDs, url), 2) << url;
        ASSERT_LE(rounds(simplified, url), 4) << url;
    }
    EXPECT_EQ(rounds(simplified, u"h/%252525252F"), 5);  // one level of escaped escapes a round
}

// Many cuts take no longer than one walk.
TEST(URLSimplification, TakesLongTexts) {
    Text sessions = u"h/?", campaigns = u"h/?x=1", empties = u"h/?x=1";
    for (int i = 0; i < 50000; ++i) {
        sessions += u"sid=a&nats=b&";
        campaigns += u"&utm_term=1";
        empties += u"&ab=";
    }
    EXPECT_EQ(stringURLByRemovingSessionIDs(sessions + u"x=1"), u"h/?x=1");
    EXPECT_EQ(stringURLByRemovingAnalytics(campaigns), u"h/?x=1");
    EXPECT_EQ(simplifiedStringURL(campaigns), u"h/?x=1");
    EXPECT_EQ(stringURLByRemovingQueryParam(campaigns, u"utm_term="), u"h/?x=1");
    EXPECT_LT(stringURLByRemovingEmptyParams(empties).length(), empties.size());
}

// A short text is cut by its marks, mostly into plain parameters; a long folder makes a text long.
TEST(URLSimplification, DoesTheSameWithLongTexts) {
    std::mt19937 random(12);
    const auto pieces = test::wordsOf(
        u"? & ; = /a.php id= &sid=1a ;sid=2 &PHPSESSID=x utm_source= ?utm_term=b &random=1 #c / . %26 %3D a=b ?&p=1 "
        u"s=1 /login? &cid=3 .html? /index.html & www. ");
    const auto parameters = test::wordsOf(
        u"id=1 xid=2 PHPSESSID=a phpsessid=b WGSessID=c xsessid=d CFID=1 affid=2 cid=3 cid=a p_sid=4 sid=5 sid=a "
        u"nats=1 "
        u"pi=1 Cache=2 CMP=3 lsrc=4 highlight=5 hilit=6 ei=7 random=8 utm_source=1 UTM_Term=2 xutm_term=3 utm_id=4 "
        u"ved=5 "
        u"p=6 s=7 a=b=c =d e page=main.php widgetType=1 x=/index.php \u00C4=1 %41=%26 f=");
    const auto pages =
        test::wordsOf(u"a a.html viewtopic.php b.aspx /groups.google.com/ google.com/patents/ login register a//b ");
    for (int round = 0; round < 60000; ++round) {
        Text rest;
        if (random() % 2) {
            for (unsigned n = random() % 7; n > 0; --n) rest += pieces[random() % pieces.size()];
        } else {
            rest = pages[random() % pages.size()];
            for (unsigned n = 0; n < random() % 7; ++n)
                rest += (n ? u"&" : u"?") + parameters[random() % parameters.size()];
        }
        const unsigned bits = random() % 4 ? 31 : random();
        const SimplifyOptions options{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, (bits & 8) != 0,
                                      (bits & 16) != 0};
        const Text start = random() % 2 ? u"https://h.org/" : u"h/";
        const Text name(140, u'x');
        Text expected(simplifiedStringURL(start + u"x/" + rest, options));
        if (const std::size_t x = expected.find(u"/x"); x != expected.npos) expected.replace(x + 1, 1, name);
        ASSERT_EQ(simplifiedStringURL(start + name + u"/" + rest, options), expected) << utf8(start + rest);
    }
}

}  // namespace
}  // namespace velmo
