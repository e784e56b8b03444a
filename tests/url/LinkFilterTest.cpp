#include <velmocore/url/LinkFilter.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(LinkFilter, FiltersWhatLeadsToNoDocument) {
    for (const char16_t* link : {u"#",
                                 u"&",
                                 u"-",
                                 u":",
                                 u"mailto:x",
                                 u"javascript:alert(1)",
                                 u"x:",
                                 u"http:x",
                                 u"IRC://h",
                                 u"icq:/x",
                                 u"aim://x",
                                 u"data:/x",
                                 u"rdar://x",
                                 u"about:/",
                                 u"ymsgr:/x",
                                 u"Sword:/x",
                                 u"webcal://x",
                                 u"callto:/x",
                                 u"sherlock://x",
                                 u"JavaScript://x",
                                 u"x-man-page://x",
                                 u"applescript://x",
                                 u"velmoaddress:/x",
                                 u"x-velmo://x",
                                 u"X-Velmo-Item:/x"})
        EXPECT_TRUE(filterLink(link)) << String(link);
    for (const char16_t* link : {u"",
                                 u"/",
                                 u"?",
                                 u"a",
                                 u"index.html",
                                 u"abc",
                                 u"a-b",
                                 u"#top",
                                 u"feed:x",
                                 u"Feed:",
                                 u"http://h",
                                 u"ftp:/x",
                                 u"x1:y",
                                 u"/a:b",
                                 u"::",
                                 u"Data:/x",
                                 u"ABOUT:/x",
                                 u"mailto:/x",
                                 u"x-velm:/x",
                                 u"h/javascript:x",
                                 u"\u0131rc://x\u0130:y"})
        EXPECT_FALSE(filterLink(link)) << String(link);
}

}  // namespace
}  // namespace velmo
