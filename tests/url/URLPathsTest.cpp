#include <velmocore/url/URLPaths.h>

#include <velmocore/text/HomeFolder.h>

#include "TestSupport.h"

namespace velmo {
namespace {

URL url(const char16_t* string) { return URL::URLWithString(string); }

TEST(URLPaths, AssemblesViews) {
    const URL u = url(u"http://me:pw@www.h.org:8/a%20b/c.d;v?q=1#x");
    EXPECT_EQ(fullPath(u), u"/a%20b/c.d");
    EXPECT_EQ(pathWithParamsAndQuery(u), u"/a%20b/c.d;v?q=1");
    EXPECT_EQ(pathWithParamsAndQueryAndFragment(u), u"/a%20b/c.d;v?q=1#x");
    EXPECT_EQ(absoluteStringOrPath(u), u.absoluteString());
    EXPECT_EQ(absoluteStringWithoutUserAndPassword(u), u"http://www.h.org/a%20b/c.d;v?q=1#x");
    EXPECT_EQ(absoluteStringWithoutUserAndPassword(url(u"http://h:8/")), u"http://h:8/");
    EXPECT_EQ(absoluteStringWithoutUserAndPassword(url(u"//me@h/a")), u"h/a");
    EXPECT_EQ(absoluteStringWithHostAndPath(u), u"www.h.org:8/a%20b/c.d;v?q=1#x");
    EXPECT_EQ(absoluteStringWithHostAndPath(url(u"http://h/a@b")), u"h/a@b");
    EXPECT_EQ(absoluteStringWithHostAndPath(url(u"mailto:a@b")), u"a@b");
    EXPECT_EQ(pathWithParamsAndQuery(url(u"http://h/a;?")), u"/a");
    const URL file = url(u"file:///a%20b;c?d#e");
    for (auto view : {fullPath, pathWithParamsAndQuery, pathWithParamsAndQueryAndFragment, absoluteStringOrPath,
                      absoluteStringWithoutUserAndPassword, absoluteStringWithHostAndPath}) {
        EXPECT_EQ(view(file), u"/a b;c");
        EXPECT_TRUE(view(URL()).isAbsent());
    }
    EXPECT_EQ(normalizedPath(url(u"http://h/a%CC%88")), u"/\u00E4");
}

TEST(URLPaths, FindsDirectories) {
    const std::tuple<const char16_t*, bool, const char16_t*, const char16_t*> cases[] = {
        {u"http://h", true, u"/", u"/"},
        {u"http://h/", true, u"/", u"/"},
        {u"http://h/a/b", true, u"/a/b", u"/a/b"},
        {u"http://h/a/b/", true, u"/a/b", u"/a/b"},
        {u"http://h/a/./b.c", false, u"/a/.", u"/a"},
        {u"http://h/b.c", false, u"/", u"/"},
        {u"http://h/a/b?q", false, u"/a", u"/a"},
        {u"http://h/a/b/?q", false, u"/a/b", u"/a/b"},
        {u"http://h/a/b;p", false, u"/a", u"/a"},
        {u"http://h/a/b?", true, u"/a/b", u"/a/b"},
        {u"http://h/a.d/", true, u"/a.d", u"/a.d"},
        {u"mailto:", true, u"/", u"/"},
        {u"file:///a/b", false, u"/a", u"/a"},
        {u"file:///a/b/", false, u"/a/b", u"/a/b"},
        {u"file:///", false, u"/", u"/"}};
    for (const auto& [string, isBase, directory, standardized] : cases) {
        EXPECT_EQ(isBaseDirectory(url(string)), isBase) << String(string);
        EXPECT_EQ(baseDirectory(url(string)), directory) << String(string);
        EXPECT_EQ(standardizedBaseDirectory(url(string)), standardized) << String(string);
    }
    EXPECT_TRUE(!isBaseDirectory(URL()) && baseDirectory(URL()).isAbsent() &&
                standardizedBaseDirectory(URL()).isAbsent());
}

TEST(URLPaths, NamesThingsForPeople) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*> cases[] = {
        {u"http://me@WWW.h.org/a%20b/", u"a b", u"h.org/a%20b"},
        {u"http://www.h.org/", u"www.h.org", u"h.org"},
        {u"http://h.org/a@b", u"a@b", u"h.org/a@b"},
        {u"mailto:a@b.org", u"a@b.org", u"a@b.org"},
        {u"data:,x/", u"data", u"data:,x/"},
        {u"x:a/b/", u"a/b", u"x:a/b/"},
        {u"http://.../a", u"a", u"http://.../a"},
        {u"file:///a/b%20c", u"b c", u"/a/b c"}};
    for (const auto& [string, name, shown] : cases) {
        EXPECT_EQ(proposedFilename(url(string)), name) << String(string);
        EXPECT_EQ(displayString(url(string)), shown) << String(string);
    }
    EXPECT_TRUE(proposedFilename(URL()).isAbsent() && displayString(URL()).isAbsent());
    const String& home = homeDirectory();
    if (home.length() > 1) {
        EXPECT_EQ(displayString(URL::fileURLWithPath(home)), u"~");
        EXPECT_EQ(displayString(URL::fileURLWithPath(std::u16string(home) + u"/x")), u"~/x");
        EXPECT_EQ(displayString(URL::fileURLWithPath(std::u16string(home) + u"x")), std::u16string(home) + u"x");
    }
}

}  // namespace
}  // namespace velmo
