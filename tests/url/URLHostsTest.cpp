#include <velmocore/url/URLHosts.h>

#include "TestSupport.h"

namespace velmo {
namespace {

using Parts = std::vector<String>;

TEST(URLHosts, InvertsHosts) {
    EXPECT_EQ(hostComponents(u"a..B"), (Parts{u"a", u"", u"B"}));
    EXPECT_FALSE(hostComponents(u"").has_value());
    EXPECT_EQ(invertedHost(u"www.Example..org"), u"org..example.www");
    EXPECT_TRUE(invertedHost(u"").isAbsent());
    const std::pair<std::uint64_t, Parts> cases[] = {
        {0, {u"d", u"c", u"b", u"a"}},        {1, {u"d.c.b.a"}}, {2, {u"d", u"c.b.a"}}, {4, {u"d", u"c", u"b", u"a"}},
        {NotFound, {u"d", u"c", u"b", u"a"}},
    };
    const URL url = URL::URLWithString(u"http://a.B..c.D./x");
    for (const auto& [maximum, parts] : cases) {
        EXPECT_EQ(invertedHostComponents(url, maximum), parts) << maximum;
        std::u16string path = u"/p";
        for (const String& part : parts) path.append(u"/").append(part);
        EXPECT_EQ(stringByAppendingInvertedHostComponents(url.host(), maximum, u"/p"), path);
    }
    EXPECT_EQ(hostComponents(url)->size(), 6u);
    EXPECT_EQ(invertedHost(url), u".d.c..b.a");
    EXPECT_TRUE(invertedHostComponents(URL()).empty());
    EXPECT_TRUE(stringByAppendingInvertedHostComponentsToPath(u"a", String()).isAbsent());
    const String path(u"/p/");
    EXPECT_TRUE(stringByAppendingInvertedHostComponentsToPath(u"", path).isIdenticalTo(path));
}

TEST(URLHosts, CutsLongParts) {
    for (const std::size_t length : {249, 250, 251, 300}) {
        const std::u16string host = std::u16string(length - 2, u'a') + u".b";
        const String part = invertedHostComponents(host, 1).at(0);
        EXPECT_EQ(part.length(), std::min<std::size_t>(length, 250));
        EXPECT_EQ(part == u"b." + std::u16string(length - 2, u'a'), length <= 250) << part;
    }
    // Nothing is cut without a limit.
    EXPECT_EQ(invertedHostComponents(std::u16string(300, u'a')).at(0).length(), 300u);
}

}  // namespace
}  // namespace velmo
