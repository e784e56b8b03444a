#include <velmocore/markup/LinkRewriting.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(LinkRewriting, ResolvesAndFlattens) {
    const URL base = URL::URLWithString(u"http://h.org/a/b.html");
    const std::tuple<String, String, String> cases[] = {
        {u"x<a href='../c.html?d&amp;e'>y</a>", u"x<a href='http://h.org/c.html?d&amp;e'>y</a>",
         u"x<a href='p&amp;-c.html'>y</a>"},
        {u"<object data=\" i j.swf \"><embed SRC=k>",
         u"<object data=\"http://h.org/a/i%20j.swf \"><embed SRC=http://h.org/a/k>",
         u"<object data=\"p&amp;-i j.swf \"><embed SRC=p&amp;-k>"},
        // The reference is replaced wherever it stands in its tag.
        {u"<a href=a>a", u"<http://h.org/a/a href=http://h.org/a/a>a", u"<p&amp;-a href=p&amp;-a>a"},
        {u"<link href=c title='c, cc'>",
         u"<link href=http://h.org/a/c title='http://h.org/a/c, http://h.org/a/chttp://h.org/a/c'>",
         u"<link href=p&amp;-c title='p&amp;-c, p&amp;-cp&amp;-c'>"},
        {u"<script src=s.js>load('s.js')</script>", u"<script src=http://h.org/a/s.js>load('s.js')</script>",
         u"<script src=p&amp;-s.js>load('s.js')</script>"}};
    for (const auto& [page, resolved, flat] : cases) {
        EXPECT_EQ(resolveLinksUsingBaseURL(page, base), resolved) << page;
        EXPECT_EQ(flattenLinksUsingBaseURL(page, base, u"p&-"), flat) << page;
    }
    EXPECT_EQ(flattenLinksUsingBaseURL(u"<img src=c/d>", base), u"<img src=d>");
    EXPECT_EQ(resolveLinksUsingBaseURL(u"<img src=c/d>", URL::URLWithString(u"file:///a/b")),
              u"<img src=file:///a/c/d>");
}

TEST(LinkRewriting, LeavesTheRest) {
    const URL base = URL::URLWithString(u"http://h.org/a/b.html");
    for (const String& page :
         {String(u"<a href='#x'>a<a href=mailto:a@b.org><a href=javascript:x()><img alt=b><p src=c>"),
          String(u"<script>x.src = 'y'</script>"), String(u""), String()}) {
        EXPECT_TRUE(resolveLinksUsingBaseURL(page, base).isIdenticalTo(page)) << page;
        EXPECT_TRUE(flattenLinksUsingBaseURL(page, base, u"p").isIdenticalTo(page)) << page;
    }
    const String page(u"<a href=x>");
    EXPECT_TRUE(resolveLinksUsingBaseURL(page, URL()).isIdenticalTo(page));
    EXPECT_TRUE(flattenLinksUsingBaseURL(page, URL(), u"p").isIdenticalTo(page));
}

}  // namespace
}  // namespace velmo
