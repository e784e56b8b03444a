#include <velmocore/url/URLConstruction.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(URLConstruction, SuppliesSchemes) {
    const std::tuple<const char16_t*, const char16_t*, const char16_t*> cases[] = {
        {u"http://h/a", u"http://h/a", u"http://h/a"},
        {u"http://h/a b#c", nullptr, u"http://h/a%20b#c"},
        {u"http://h/a%20b|c", nullptr, u"http://h/a%20b%7Cc"},
        {u"http://h/\"%22\u00E4", nullptr, u"http://h/%22%22%C3%A4"},
        {u"/tmp/a b", u"file:///tmp/a%20b", u"file:///tmp/a%20b"},
        {u".", nullptr, nullptr},
        {u"./a.b.c", nullptr, nullptr},
        {u"www.h.org", u"http://www.h.org", u"http://www.h.org"},
        {u"www.h.org/a b", u"", u"http://www.h.org/a%20b"},
        {u"www.org", nullptr, nullptr},
        {u"WWW.h.org", nullptr, nullptr},
        {u"ftp.h.org", u"ftp://ftp.h.org", u"ftp://ftp.h.org"},
        {u"wwwh..", u"http://wwwh..", u"http://wwwh.."},
        {u"h.example.org", nullptr, nullptr},
        {u"a@b.org", u"mailto:a@b.org", u"mailto:a@b.org"},
        {u"mailto:a@b.org?subject=x y", u"mailto:a@b.org?subject=x%20y", u"mailto:a@b.org?subject=x%20y"},
        {u"Message:\"<a%22@b>", u"Message:%22%3Ca%22@b%3E", u"Message:%22%3Ca%22@b%3E"},
        {u"mailto:\xD800", nullptr, nullptr},
        {u"1x://www.h.org", nullptr, nullptr},
        {u"localhost:8080/x", u"localhost:8080/x", u"localhost:8080/x"},
        {u"http://h:70000/", nullptr, nullptr},
        {u"", nullptr, nullptr}};
    for (const auto& [string, strict, normalized] : cases) {
        if (!strict || *strict) {
            EXPECT_EQ(URLWithStringOrPath(string).absoluteString(), String(strict)) << String(string);
        }
        EXPECT_EQ(URLWithNormalizedStringURL(string).absoluteString(), String(normalized)) << String(string);
        EXPECT_EQ(URLWithUserTypedString(string), URLWithNormalizedStringURL(string));
    }
    EXPECT_TRUE(URLWithStringOrPath(String()).isAbsent() && URLWithNormalizedStringURL(String()).isAbsent());
    const URL home = URLWithStringOrPath(u"~/x");
    EXPECT_TRUE(home.isFileURL() && home.path().view().ends_with(u"/~/x"));
    EXPECT_EQ(URLWithNormalizedStringURL(u"http://h/\u00E4", 5).absoluteString(), u"http://h/%E4");
    EXPECT_TRUE(URLWithNormalizedStringURL(u"http://h/\u20AC", 5).isAbsent());
}

TEST(URLConstruction, Formats) {
    EXPECT_EQ(URLWithFormat(u"%@://%@/%%20%@", {u"x", u"h", String()}).absoluteString(), u"x://h/%20");
    EXPECT_EQ(URLWithFormat(u"a%@b", {String()}).absoluteString(), u"ab");
    EXPECT_EQ(URLWithFormat(u"%@://%@:%d/%02x?%.3@", {u"x", u"h", 80, 10, u"abcd"}).absoluteString(),
              u"x://h:80/0a?abc");
    EXPECT_TRUE(URLWithFormat(u"", {}).isAbsent());
    EXPECT_TRUE(URLWithFormat(u"a%@", {}).isAbsent());
    EXPECT_TRUE(URLWithFormat(u"%", {}).isAbsent());
}

}  // namespace
}  // namespace velmo
