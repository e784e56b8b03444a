#include <velmocore/text/Paths.h>

#include <array>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(Paths, Standardized) {
    const std::pair<View, Strings> cases[] = {
        {u"/a/c", {u"/a/./b/../c"}},
        {u"/a/b", {u"//a///b//"}},
        {u"a/b", {u"a/b/"}},
        {u"a", {u"../a", u"/../a", u"./a"}},
        {u"b", {u"a/../../b"}},
        {u"/", {u"/", u"/a/.."}},
        {u"", {u"", u".", u"/..", u"a/../", u"/../"}},  // never the root
    };
    for (const auto& [expected, paths] : cases)
        for (const String& path : paths) EXPECT_EQ(standardizedPath(path), expected) << path;
    for (const auto& [expected, paths] : cases) EXPECT_EQ(standardizedPath(expected), expected);
    EXPECT_EQ(standardizedPathComponents(u"/a/b/../c/"), (Strings{u"/", u"a", u"c"}));
}

TEST(Paths, RelativeToADirectory) {
    const std::tuple<View, View, View> cases[] = {{u"/a/b", u"/a/b", u"./"},     {u"/a/b/c", u"/a", u"./b/c"},
                                                  {u"/a", u"/a/b/c", u"../../"}, {u"/a/b/c", u"/a/x/y", u"../../b/c"},
                                                  {u"/a/b", u"/", u"./a/b"},     {u"/a/./b", u"/c/../a/", u"./b"}};
    for (const auto& [path, directory, expected] : cases)
        EXPECT_EQ(relativePathToDirectory(path, directory), expected) << utf8(path);
}

TEST(Paths, RelativePathsLeadBack) {
    std::mt19937 random(6);
    const auto path = [&](View start) {
        std::u16string text(start);
        for (unsigned n = 1 + random() % 6; n > 0; --n) {
            text += std::array{u"a", u"b", u"a", u"b", u".", u"..", u"", u"a.b"}[random() % 8];
            text += random() % 5 ? u"/" : u"//";
        }
        return text;
    };
    for (int round = 0; round < 20000; ++round) {
        // Deep enough that no ".." leaves the root.
        const View start = random() % 2 ? u"/x/y/x/y/x/y/" : u"x/y/x/y/x/y/";
        const std::u16string target = path(start), directory = path(start);
        const String relative = relativePathToDirectory(target, directory);
        ASSERT_EQ(standardizedPath(directory + u"/" + std::u16string(relative)), standardizedPath(target))
            << utf8(directory) << ' ' << relative;
        ASSERT_TRUE(relative.view().starts_with(u"./") || relative.view().starts_with(u"../"));
    }
}

TEST(Paths, InsideADirectory) {
    const std::tuple<View, View, bool> cases[] = {
        {u"/ab", u"/a", false}, {u"/a/b", u"/a", true}, {u"/a", u"/a", true},
        {u"/a", u"/a//", true}, {u"/a", u"/", false},   {u"/a/", u"/a/", true},
        {u"/a", u"", false},    {u"/b", u"/a", false},  {u"", u"/a", false}};
    for (const auto& [path, directory, expected] : cases)
        EXPECT_EQ(pathIsInDirectory(path, directory), expected) << utf8(path);
    const String same = u"/a";
    EXPECT_FALSE(pathIsInDirectory(same, same));
    EXPECT_FALSE(pathIsInDirectory(u"/a", String()));
    EXPECT_TRUE(pathIsInDirectories(u"/b/c", Strings{u"/a", u"/b"}));
    EXPECT_FALSE(pathIsInDirectories(u"/c", Strings{u"/a", u"/b"}));
}

TEST(Paths, ComponentsAndExtensions) {
    const struct {
        View path, parent, appended, replaced, valid, lower;
    } cases[] = {
        {u"/tmp/x.HTML", u"/tmp", u"/tmp/x.HTML", u"/tmp/x.html", u"HTML", u"html"},
        {u"/tmp/", u"/tmp", u"/tmp.html", u"/tmp.html", u"", u"-"},
        {u"/x", u"/", u"/x.html", u"/x.html", u"", u"-"},
        {u"x", u"", u"x.html", u"x.html", u"", u"-"},
        {u"/", u"", u"/", u"/", u"", u"-"},
        {u"", u"", u"", u"", u"", u"-"},
        {u"a.tar.gz", u"", u"a.tar.gz.html", u"a.tar.html", u"gz", u"gz"},
        {u"a.b/c", u"a.b", u"a.b/c.html", u"a.b/c.html", u"", u"-"},
        {u".profile", u"", u".profile.html", u".profile.html", u"", u"profile"},
        {u"x.php?id=1.2", u"", u"x.php?id=1.2.html", u"x.php?id=1.html", u"2", u"2"},
        {u"x.php?id=1", u"", u"x.php?id=1.html", u"x.html", u"php", u"php?id=1"},
        {u"x.\u00C4", u"", u"x.\u00C4.html", u"x.html", u"\u00C4", u"\u00E4"},
        {u"x.abcdefghijklmnopqr", u"", u"x.abcdefghijklmnopqr.html", u"x.html", u"", u"abcdefghijklmnopqr"},
        {u"x.a-b", u"", u"x.a-b.html", u"x.html", u"", u"a-b"},
        {u"x.", u"", u"x..html", u"x.html", u"", u""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(stringByDeletingFileComponent(c.path), c.parent) << utf8(c.path);
        EXPECT_EQ(stringByAppendingPathExtensionIfNecessary(c.path, u"html"), c.appended) << utf8(c.path);
        EXPECT_EQ(stringByReplacingPathExtensionWith(c.path, u"html"), c.replaced) << utf8(c.path);
        EXPECT_EQ(validPathExtension(c.path), c.valid) << utf8(c.path);
        const String lower = lowercasePathExtension(c.path);
        EXPECT_EQ(lower.isAbsent() ? String(u"-") : lower, c.lower) << utf8(c.path);
    }
    const String path = u"x.html";
    EXPECT_TRUE(stringByReplacingPathExtensionWith(path, u"html").isIdenticalTo(path));
    EXPECT_TRUE(stringByAppendingPathExtensionIfNecessary(path, u"HTML").isIdenticalTo(path));
    EXPECT_TRUE(stringByAppendingPathExtensionIfNecessary(path, String()).isIdenticalTo(path));
    EXPECT_EQ(stringByReplacingPathExtensionWith(path, u""), u"x");
    const Strings extensions{u"htm", u"HTML"};
    EXPECT_TRUE(pathMatchingExtensions(u"/a/b.Html", extensions) &&
                pathMatchingExtensionsOrTypes(u"b.htm", extensions));
    EXPECT_FALSE(pathMatchingExtensions(u"/a/b.txt", extensions) || pathMatchingExtensions(u"b", extensions) ||
                 pathMatchingExtensionsOrTypes(u"", extensions));
    EXPECT_TRUE(isValidPathExtension(u"abcdefghijklmnopq") && isValidPathExtension(u"7z"));
    EXPECT_FALSE(isValidPathExtension(u"abcdefghijklmnopqr") || isValidPathExtension(u"tar.gz") ||
                 isValidPathExtension(u""));
}

TEST(Paths, NamesFitTheFileSystem) {
    const std::u16string letters(300, u'a'), umlauts(300, u'\u00E4'), ideographs(300, u'\u4E00');
    const std::u16string emoji = test::repeated(u"\U0001F600", 100), lone = {u'a', 0xD800, u'b'};
    const std::tuple<View, View, std::size_t> cases[] = {
        {letters, u"", 250}, {umlauts, u"", 125},     {ideographs, u"", 83},           {emoji, u"", 124},
        {u"", u"", 0},       {letters, u"html", 250}, {umlauts, u"txt", 127},          {u"a.txt", u"txt", 5},
        {u"a", u"txt", 5},   {lone, u"", 1},          {u"a", u"abcdefghijklmnopqr", 1}};
    for (const auto& [text, extension, units] : cases) {
        const String name = stringByCreatingFileSystemRepresentationByAppendingExtension(text, extension);
        EXPECT_EQ(name.length(), units) << name;
        EXPECT_LE(name.utf8().size(), 250u);
        EXPECT_EQ(stringByCreatingFileSystemRepresentationByAppendingExtension(name, extension), name);
        if (extension.empty()) { EXPECT_EQ(stringByCreatingFileSystemRepresentation(text), name); }
    }
    const std::pair<View, View> names[] = {{u"..What? Why/How: x", u"What- Why-How- x"},
                                           {u"._:/", u""},
                                           {u"a*b<c>d\\e|f", u"a-b-c-d-e-f"},
                                           {u"a\u0308", u"\u00E4"},
                                           {u"", u""},
                                           {{u"x\0y", 3}, u"x-y"},
                                           {u"x.txt_", u"x.txt"}};
    for (const auto& [text, expected] : names) EXPECT_EQ(stringByCreatingFilename(text), expected);
    const std::u16string late = std::u16string(249, u'a') + u"\U0001F600", half(100, u'\xD800');
    for (const auto& [text, units] : {std::pair<View, std::size_t>{letters, 250},
                                      {umlauts, 127},
                                      {ideographs, 85},
                                      {emoji, 126},
                                      {late, 249},
                                      {half, 85}}) {
        const String name = stringByCreatingFilename(text);
        EXPECT_EQ(name.length(), units) << name;
        EXPECT_LE(name.utf8().size(), 255u);
    }
}

}  // namespace
}  // namespace velmo
