#include <velmocore/url/InvertedPaths.h>

#include <fmt/format.h>
#include <velmocore/text/Checksums.h>

#include "TestSupport.h"

namespace velmo {
namespace {

URL url(const std::u16string& string) { return URL::URLWithString(string); }

TEST(InvertedPaths, MapsURLs) {
    const std::tuple<const char16_t*, InvertedPathOptions, const char16_t*> cases[] = {
        {u"http://www.H.org", {}, u"/m/org/h/www/index.html"},
        {u"http://h.org/A/b.html", {}, u"/m/org/h/a/b.html"},
        {u"http://h.org/A/b.html", {.letterCase = Case::Sensitive}, u"/m/org/h/A/b.html"},
        {u"http://h.org/a", {}, u"/m/org/h/a/index.html"},
        {u"http://h.org/a/", {}, u"/m/org/h/a/index.html"},
        {u"http://h.org/a.d/", {}, u"/m/org/h/a.d/index.html"},
        {u"http://h.org/a/?page=main.php", {}, u"/m/org/h/a/index.html"},
        {u"http://h.org/a/?page=main.php", {.removeSessionIDs = false}, u"/m/org/h/a/?page=main.php"},
        {u"http://h.org/a/?sid=b", {}, u"/m/org/h/a/index.html"},
        {u"http://h.org/a?sid=b", {}, u"/m/org/h/a"},
        {u"http://h.org/a?sid=b&c=d/e", {}, u"/m/org/h/a?c=d-e"},
        {u"http://h.org/a?sid=b", {.removeSessionIDs = false}, u"/m/org/h/a?sid=b"},
        {u"http://h.org/a;p/q?r/s", {}, u"/m/org/h/a;p-q?r-s"},
        {u"http://h.org/../a/./../b.c", {}, u"/m/org/h/b.c"},
        {u"http://a.b.c.d/e/f.g", {.maxHostComponents = 2}, u"/m/d/c.b.a/e/f.g"},
        {u"http://a.b/c/d/e.f", {.maxPathComponents = 3}, u"/m/b/a/c-d-e.f"},
        {u"http://a.b/c/d/e.f", {.maxPathComponents = 5}, u"/m/b/a/c/d/e.f"},
        {u"http://a.b/c.d", {.pathExtension = u"txt"}, u"/m/b/a/c.d.txt"},
        {u"file:///A%20b/../C", {}, u"/m/c"},
        {u"http://../a.b", {}, u"/m/a.b"}};
    for (const auto& [string, options, path] : cases)
        EXPECT_EQ(invertedPathRelativeToDirectory(url(string), u"/m", options), path) << String(string);
    EXPECT_EQ(invertedPathRelativeToDirectory(url(u"http://a.b/c.d"), String()), u"b/a/c.d");
    EXPECT_TRUE(invertedPathRelativeToDirectory(URL(), u"/m").isAbsent());
}

TEST(InvertedPaths, CutsLongComponents) {
    const std::tuple<const char16_t*, std::size_t, std::size_t> cases[] = {
        {u"", 250, 0}, {u"", 251, 242}, {u"txt", 246, 0}, {u"txt", 247, 238}};
    for (const auto& [given, length, kept] : cases) {
        const std::u16string name = std::u16string(length - 2, u'n') + u".x";
        const String path =
            invertedPathRelativeToDirectory(url(u"http://h/" + name), String(), {.pathExtension = given});
        const std::string extension = *given ? "." + String(given).utf8() : "";
        const std::string cut = fmt::format("{}{:08x}", std::string(kept, 'n'), crc32(name));
        EXPECT_EQ(path.utf8(), "h/" + (kept ? cut : String(name).utf8()) + extension) << length;
    }
    // More components than there may be make one that is cut.
    std::u16string deep = u"http://h";
    for (int i = 0; i < 200; ++i) deep += u"/ab";
    EXPECT_EQ(invertedPathRelativeToDirectory(url(deep + u".c"), String(), {.maxPathComponents = 2}).length(), 252u);
    EXPECT_EQ(
        invertedPathRelativeToDirectory(url(u"http://h/a.b"), String(), {.pathExtension = std::u16string(400, u'x')})
            .length(),
        2u + 8 + 401);
}

TEST(InvertedPaths, MapsURLsDirectly) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*, const char16_t*> cases[] = {
        {u"http://h.Org", u"/m/h.Org/index.html", u"/m/h.Org/index.html", u"/m/h.Org/index.html"},
        {u"http://h/", u"/m/h/index.html", u"/m/h", u"/m/h/index.html"},
        {u"http://h/a/B", u"/m/h/a/B/index.html", u"/m/h/a/B", u"/m/h/a-B"},
        {u"http://h/a/b.c;d/e?f/g:h", u"/m/h/a/b.c;d-e?f-g:h", u"/m/h/a/b.c;d-e?f-g:h", u"/m/h/a-b.c;d-e-f-g-h"},
        {u"http://h/../../../a.b", u"/m/h/a.b", u"/m/h/a.b", u"/m/h/a.b"},
        {u"http://h/a/../..", u"/m/h/index.html", u"/m/h", u"/m/h/a"},
        {u"http://../a.b", u"/m/-/a.b", u"/m/-/a.b", u"/m/-/a.b"},
        {u"x:/h/a.b", u"/m/-/h/a.b", u"/m/-/h/a.b", u"/m/-/h-a.b"},
        {u"file:///a/./b%20c", u"/m/a/b c", u"/m/a/b c", u"/m/a/b c"}};
    for (const auto& [string, path, withoutDefault, simplified] : cases) {
        EXPECT_EQ(pathRelativeToDirectory(url(string), u"/m"), path) << String(string);
        EXPECT_EQ(pathRelativeToDirectory(url(string), u"/m", {.defaultPathComponent = false}), withoutDefault)
            << String(string);
        EXPECT_EQ(pathRelativeToDirectory(url(string), u"/m", {.simplified = true}), simplified) << String(string);
    }
    EXPECT_TRUE(pathRelativeToDirectory(URL(), u"/m").isAbsent());
}

}  // namespace
}  // namespace velmo
