#include <velmocore/markup/TagScanner.h>

#include <new>
#include <stdexcept>

#include <velmocore/platform/Log.h>

#include "TestSupport.h"

namespace velmo {
namespace {

/// The calls of a scan, one line each: kind, name, tag, and the text before it.
std::string scanned(std::u16string_view page) {
    std::string lines;
    GetTagsOfString(page, [&](const Tag& tag) {
        if (!lines.empty()) lines += '\n';
        lines += std::to_string(static_cast<int>(tag.kind)) + " " + utf8(tag.name()) + " [" + utf8(tag.whole()) + "] " +
                 utf8(tag.text());
        return false;
    });
    return lines;
}

TEST(TagScanner, DecidesWhereATagEnds) {
    const std::pair<const char16_t*, const char*> cases[] = {
        {u"<a title=\"x>y\">z", "1 a [<a title=\"x>y\">] \n0  [] z"},
        {u"1 < 2 and 3 > 2", "1 and [< 2 and 3 >] 1 \n0  []  2"},
        {u"<>x<1>", "1  [<>] \n1  [<1>] x\n0  [] "},
        {u"</p ><?xml a?><!DOCTYPE b>", "1 p [</p >] \n1 xml [<?xml a?>] \n1 DOCTYPE [<!DOCTYPE b>] \n0  [] "},
        {u"<!-- a -> b --!>c", "2  [<!-- a -> b --!>] \n0  [] c"},
        {u"x<![CDATA[ a ]] b ]]>y", "3  [<![CDATA[ a ]] b ]]>] x\n0  [] y"},
        {u"<![CDATA[ ] > ]]>y", "3  [<![CDATA[ ] > ]]>] \n0  [] y"},
        {u"<![if a]-->y", "3  [<![if a]-->] \n0  [] y"},
        {u"<![CDATA[", "3  [<![CDATA[] \n0  [] "},
    };
    for (const auto& [page, calls] : cases) EXPECT_EQ(scanned(page), calls) << utf8(page);
    EXPECT_EQ(scanned(u""), "");
}

TEST(TagScanner, TellsNamesInAnyCase) {
    std::vector<bool> named;
    GetTagsOfString(u"<IMG><img/><Im><img2></img><\u0131mg>", [&](const Tag& tag) {
        EXPECT_EQ(tag.isNamed("Img"), tag.isNamed("IMG"));
        return named.push_back(tag.isNamed("img")), false;
    });
    EXPECT_EQ(named, (std::vector<bool>{true, true, false, false, true, true, false}));
}

TEST(TagScanner, SwallowsScriptAndStyle) {
    const std::pair<const char16_t*, const char*> cases[] = {
        {u"<SCRIPT>x</script >y", "1 SCRIPT [<SCRIPT>x</script >] \n0  [] y"},
        {u"<style a>b<c></STYLE>d", "1 style [<style a>b<c></STYLE>] \n0  [] d"},
        {u"<scripts>a</script>", "1 scripts [<scripts>] \n1 script [</script>] a\n0  [] "},
        // The element is not closed: its length reaches one unit too far.
        {u"<script>x</script", "1 script [<script>x</script] \n0  [] "}};
    for (const auto& [page, calls] : cases) EXPECT_EQ(scanned(page), calls) << utf8(page);

    std::vector<Tag> tags;
    GetTagsOfString(u"<script>x</script", [&](const Tag& tag) { return tags.push_back(tag), false; });
    ASSERT_EQ(tags.size(), 2u);
    EXPECT_EQ(tags[0].tagLength, 18u);
    EXPECT_EQ(tags[1].textLocation, 18u);
    EXPECT_EQ(tags[1].tagLocation, 17u);
}

TEST(TagScanner, StopsWhenTheHandlerSaysSo) {
    int calls = 0;
    EXPECT_TRUE(GetTagsOfString(u"<a><b><c>", [&](const Tag&) { return ++calls == 2; }));
    EXPECT_EQ(calls, 2);
    EXPECT_FALSE(GetTagsOfString(u"", [&](const Tag&) { return ++calls == 0; }));
    EXPECT_EQ(calls, 2);
}

TEST(TagScanner, LogsExceptionsUnderItsGuard) {
    static std::string logged;
    setLogHandler([](std::string_view line) { logged = line; });
    const auto fail = [](const Tag&) -> bool { throw std::runtime_error("no way"); };
    EXPECT_FALSE(parseXmlWithHandler(u"<a>", fail));
    EXPECT_TRUE(logged.starts_with("parseXmlWithHandler:context:mutable: (String): std::runtime_error\nno way\n"));
    setLogHandler(nullptr);
    EXPECT_THROW(GetTagsOfString(u"<a>", fail), std::runtime_error);
    const auto noMemory = [](const Tag&) -> bool { throw std::bad_alloc(); };
    EXPECT_THROW(parseXmlWithHandler(u"<a>", noMemory), std::bad_alloc);
}

TEST(TagScanner, FixesControlUnits) {
    const String clean(u"a\t\n\rb"), bad(u"\x01"
                                         u"a\x1F\n");
    EXPECT_TRUE(fixedXml(clean).isIdenticalTo(clean));
    EXPECT_EQ(fixedXml(bad), u" a \n");
    EXPECT_TRUE(fixedXml(String()).isAbsent());
}

// The scan again, unit by unit with its flags, as slow and plain as can be.
std::vector<Tag> scanSlowly(const std::u16string& s) {
    std::vector<Tag> tags;
    const std::size_t n = s.size();
    std::size_t i = 0, text = 0, start = 0;
    int state = 0;
    bool dq = false, sq = false, eq = false, shortComment = false;
    const auto lower = [](std::u16string t) {
        for (char16_t& c : t)
            if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
        return t;
    };
    const std::u16string low = lower(s);
    const auto isLetter = [](char16_t c) { return (c | 32) >= u'a' && (c | 32) <= u'z'; };
    const auto emit = [&](TagKind kind, std::size_t tagLength, std::uint64_t name, std::uint64_t nameLength) {
        tags.push_back({s, name, nameLength, start, tagLength, text, kind});
    };
    while (i < n) {
        const char16_t c = s[i];
        if (c == u'"' && state == 1) {
            if (eq && !dq) {
                dq = true;
                eq = false;
            } else if (!eq)
                dq = false;
        } else if (c == u'\'' && state == 1) {
            if (eq && !sq) {
                sq = true;
                eq = false;
            } else if (!eq)
                sq = false;
        } else if (c == u'=' && state == 1 && !dq && !sq)
            eq = true;
        else if (c == u'<' && state == 0) {
            start = i;
            state = 1;
            dq = sq = eq = shortComment = false;
            if (n - i > 2 && s[i + 1] == u'!' && (s[i + 2] == u'[' || s[i + 2] == u'-')) {
                state = s[i + 2] == u'[' ? 3 : 2;
                shortComment = !(i + 3 < n && s[i + 3] == u'-');
                i += 3;
                continue;
            }
        } else if (c == u'>' && state != 0 && !(state == 1 && (dq || sq))) {
            bool ends = state == 1;
            if (state == 3) ends = s[i - 1] == u']' || s.substr(i - 3, 3) == u"]--";
            if (state == 2 && shortComment) ends = s[i - 1] == u'-';
            if (state == 2 && !shortComment) ends = s.substr(i - 2, 2) == u"--" || s.substr(i - 3, 3) == u"--!";
            if (ends) {
                std::size_t length = i + 1 - start;
                std::uint64_t name = NotFound, nameLength = 0;
                if (state == 1) {
                    std::size_t k = start;
                    while (k < i && !isLetter(s[k])) ++k;
                    if (k < i) {
                        name = k;
                        while (k < i && s[k] != u' ' && s[k] != u'/' && s[k] != u'>') ++k;
                        nameLength = k - name;
                    }
                    const std::u16string tagName = name == NotFound ? u"" : low.substr(name, nameLength);
                    if ((tagName == u"script" || tagName == u"style") && s[start + 1] != u'/' && s[i - 1] != u'/') {
                        const std::u16string closing = u"</" + tagName;
                        std::size_t hit = low.find(closing, start + 1);
                        if (hit != s.npos) {
                            const std::size_t comment = low.substr(0, hit).find(u"<!-", start);
                            if (comment != s.npos) {
                                const std::size_t end = low.find(u"-->", comment);
                                if (end != s.npos && low.find(closing, end) != s.npos) hit = low.find(closing, end);
                            }
                            i = hit + closing.size();
                            while (i < n && s[i] != u'>') ++i;
                            length = i + 1 - start;
                        }
                    }
                }
                emit(static_cast<TagKind>(state), length, name, nameLength);
                state = 0;
                text = start + length;
                i = text;
                continue;
            }
        }
        ++i;
    }
    if (state >= 2) {
        emit(static_cast<TagKind>(state), n - start, NotFound, 0);
        text = n;
    }
    start = n;
    emit(TagKind::End, 0, NotFound, 0);
    return tags;
}

TEST(TagScanner, AgreesWithTheSlowScanner) {
    std::mt19937 random(7);
    const char16_t* pieces[] = {
        u"<",        u">",      u"=",        u"\"",   u"'",   u"!",       u"-",
        u"[",        u"]",      u"/",        u" ",    u"a",   u"x1",      u"<script>",
        u"</script", u"<style", u"</style>", u"<!--", u"-->", u"<b c=\"", u"some longer text without any of it "};
    for (int round = 0; round < 60000; ++round) {
        std::u16string page;
        for (unsigned k = random() % 24 + 1; k > 0; --k) page += pieces[random() % std::size(pieces)];
        std::vector<Tag> tags;
        GetTagsOfString(page, [&](const Tag& tag) { return tags.push_back(tag), false; });
        const std::vector<Tag> slow = scanSlowly(page);
        ASSERT_EQ(tags.size(), slow.size()) << utf8(page);
        for (std::size_t k = 0; k < tags.size(); ++k) {
            ASSERT_TRUE(tags[k].kind == slow[k].kind && tags[k].nameLocation == slow[k].nameLocation &&
                        tags[k].nameLength == slow[k].nameLength && tags[k].tagLocation == slow[k].tagLocation &&
                        tags[k].tagLength == slow[k].tagLength && tags[k].textLocation == slow[k].textLocation)
                << utf8(page) << " call " << k;
        }
    }
}

}  // namespace
}  // namespace velmo
