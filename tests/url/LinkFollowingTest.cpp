#include <velmocore/url/LinkFollowing.h>

#include <cstdint>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(LinkFollowing, GoesAsFarAsTheModeSays) {
    const URL base = URL::URLWithString(u"http://h.org/a/b/c.html");
    const std::tuple<const char16_t*, bool, bool, bool> cases[] = {
        {u"http://H.org/a/b/d.html", true, true, true},
        {u"http://h.org/a/b", true, true, true},
        {u"http://h.org/a/x/../b/", true, true, true},
        {u"http://h.org/a/bb/", true, false, true},  // the paths are compared unit by unit
        {u"http://h.org/A/b/c", true, false, false},
        {u"http://h.org/a/", true, false, false},
        {u"http://i.org/a/b/c.html", false, false, false},
        {u"file:///a/b/c.html", false, false, false}};
    for (const auto& [given, host, folder, folders] : cases) {
        const URL link = URL::URLWithString(given);
        EXPECT_EQ(shouldFollowLink(link, FollowSameHost, 1, base), host) << link;
        EXPECT_EQ(shouldFollowLink(link, FollowSameFolder, 1, base), folder) << link;
        EXPECT_EQ(shouldFollowLink(link, FollowSameFolders, 1, base), folders) << link;
        EXPECT_TRUE(shouldFollowLink(link, FollowEverything, 99, base));
        EXPECT_FALSE(shouldFollowLink(link, FollowNothing, 0, base));
        EXPECT_FALSE(shouldFollowLink(link, FollowSameHost, 0, URL()));
    }
    for (std::int64_t mode = -2; mode < 9; ++mode)
        for (std::int64_t level = -1; level < 7; ++level) {
            EXPECT_EQ(shouldFollowLink(mode, level), mode > 4 ? level <= mode - 4 : mode > 0) << mode << ' ' << level;
            if (mode > 3) { EXPECT_EQ(shouldFollowLink(base, mode, level, base), shouldFollowLink(mode, level)); }
        }
    EXPECT_TRUE(shouldFollowLink(INT64_MAX, INT64_MAX - 4));
}

}  // namespace
}  // namespace velmo
