#include <velmocore/url/URLVariants.h>

#include "TestSupport.h"

namespace velmo {
namespace {

URL url(const char16_t* string) { return URL::URLWithString(string); }

TEST(URLVariants, ExchangeParts) {
    const URL u = url(u"http://h:8/a;v?q#x"), me = url(u"http://me:pw@h/a"), file = url(u"file:///a#x");
    const std::pair<URL, const char16_t*> cases[] = {
        {URLWithSchemeHostUserPassword(u, u"s", u"i", u"me", u"pw"), u"s://me:pw@i:8/a;v?q#x"},
        {URLWithSchemeHostUserPassword(u, u"s", u"i", u"me", u""), u"s://i:8/a;v?q#x"},
        {URLWithSchemeHostUserPassword(me, u"s", u"i", u"a", u"b"), u"s://a:b@i/a"},
        {URLWithSchemeHostUserPassword(url(u"http://h:0/a"), u"s", u"i", String(), String()), u"s://i/a"},
        {URLWithSchemeHostUserPassword(u, u"s s", u"i", u"a", u"b"), nullptr},
        {URLWithUser(u, u"a:b", u"p@/%\u00E4!"), u"http://a%3Ab:p%40%2F%25%C3%A4!@h:8/a;v?q#x"},
        {URLWithoutCredentials(me), u"http://h/a"},
        {URLWithoutCredentials(url(u"//me@h/a")), u"//h/a"},
        {URLWithScheme(me, u"ftp"), u"ftp://me:pw@h/a"},
        {URLWithScheme(me, u"1"), nullptr},
        {URLWithoutAnchor(u), u"http://h:8/a;v?q"},
        {URLWithoutAnchor(file), u"file:///a"},
        {URLWithAnchor(u, u"y"), u"http://h:8/a;v?q#y"},
        {URLWithAnchor(me, u"y"), u"http://me:pw@h/a#y"},
        {URLWithAnchor(url(u"http://h/#!a"), u"y"), nullptr},
        {WebKitURL(url(u"http://me:pw@LocalHost:8/a?q")), u"http://me:pw@127.0.0.1:8/a?q"},
        {WebKitURL(url(u"feed:HTTP://h/a")), u"HTTP://h/a"},
        {WebKitURL(url(u"Feed://h/a")), u"http://h/a"},
        {baseURLForWebKit(url(u"feed://h/a")), u"http://h/a"},
        {baseURLForWebKit(url(u"ftp://h/a")), nullptr},
        {baseURLForWebKit(url(u"file:///nowhere/at/all")), nullptr},
        {baseURLForWebKit(url(u"file:///")), u"file:///"},
        {baseURLForWebKitUsingAnchor(u, u"y"), u"http://h:8/a;v?q#y"},
        {baseURLForWebKitUsingAnchor(url(u"x:y"), u"y"), nullptr}};
    for (const auto& [result, expected] : cases) EXPECT_EQ(result.absoluteString(), String(expected));
}

TEST(URLVariants, MayBeTheURLItself) {
    const URL u = url(u"http://h/#/a"), file = url(u"file:///a");
    for (const URL& same : {URLWithUser(u, u"a", u""), URLWithoutCredentials(u), URLWithScheme(u, String()),
                            URLWithoutAnchor(u), URLWithAnchor(u, u""), WebKitURL(u), baseURLForWebKit(u)})
        EXPECT_TRUE(same.absoluteString().isIdenticalTo(u.absoluteString())) << same;
    EXPECT_EQ(URLWithScheme(file, u"http"), file);
    EXPECT_EQ(WebKitURL(file), file);
    for (const URL& absent :
         {URLWithUser(URL(), u"a", u"b"), URLWithoutCredentials(URL()), URLWithScheme(URL(), u"x"),
          URLWithoutAnchor(URL()), URLWithAnchor(URL(), u"a"), WebKitURL(URL()), baseURLForWebKit(URL())})
        EXPECT_TRUE(absent.isAbsent());
}

}  // namespace
}  // namespace velmo
