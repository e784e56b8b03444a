#include <velmocore/url/LinkFilter.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(LinkFilter, FiltersWhatLeadsToNoDocument) {
    for (const auto& link : test::wordsOf(
             u"# & - : mailto:x javascript:alert(1) x: http:x IRC://h icq:/x aim://x data:/x rdar://x about:/ "
             u"ymsgr:/x Sword:/x webcal://x callto:/x sherlock://x JavaScript://x x-man-page://x "
             u"applescript://x velmoaddress:/x x-velmo://x X-Velmo-Item:/x"))
        EXPECT_TRUE(filterLink(link)) << String(link);
    for (const auto& link :
         test::wordsOf(u" / ? a index.html abc a-b #top feed:x Feed: http://h ftp:/x x1:y /a:b :: Data:/x ABOUT:/x "
                       u"mailto:/x x-velm:/x h/javascript:x \u0131rc://x\u0130:y"))
        EXPECT_FALSE(filterLink(link)) << String(link);
}

}  // namespace
}  // namespace velmo
