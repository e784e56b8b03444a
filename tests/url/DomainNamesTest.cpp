#include <velmocore/url/DomainNames.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(DomainNames, ConvertBothWays) {
    struct Row {
        const char16_t *host, *ascii, *unicode, *display;  ///< null for what is none
    };
    const Row rows[] = {
        {u"WWW.H.org.", u"www.h.org.", u"www.h.org.", u"www.h.org."},
        {u"B\u00DCcher.example", u"xn--bcher-kva.example", u"b\u00FCcher.example", u"b\u00FCcher.example"},
        {u"xn--fa-hia.de", u"xn--fa-hia.de", u"fa\u00DF.de", u"fa\u00DF.de"},
        {u"b%C3%BCcher\u3002example", u"xn--bcher-kva.example", u"b\u00FCcher.example", u"b\u00FCcher.example"},
        {u"\u4F8B\u3048.jp", u"xn--r8jz45g.jp", u"\u4F8B\u3048.jp", u"\u4F8B\u3048.jp"},
        // Cyrillic letters that look like Latin ones, and a label of both.
        {u"\u0430\u0440\u0440\u04CF\u0435.com", u"xn--80ak6aa92e.com", u"\u0430\u0440\u0440\u04CF\u0435.com",
         u"xn--80ak6aa92e.com"},
        {u"p\u0430ypal.b\u00FC.com", u"xn--pypal-4ve.xn--b-eha.com", u"p\u0430ypal.b\u00FC.com",
         u"xn--pypal-4ve.b\u00FC.com"},
        {u"-a-.b_c", u"-a-.b_c", u"-a-.b_c", u"-a-.b_c"},
        {u"0x7F.1", u"127.0.0.1", u"127.0.0.1", u"127.0.0.1"},
        {u"\uFF10\uFF58\uFF17\uFF46.1", u"127.0.0.1", u"127.0.0.1", u"127.0.0.1"},
        {u"[1:0:0:2::]", u"[1:0:0:2::]", u"[1:0:0:2::]", u"[1:0:0:2::]"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(domainToASCII(row.host), row.ascii);
        EXPECT_EQ(domainToUnicode(row.host), row.unicode);
        EXPECT_EQ(displayDomain(row.host), row.display);
        for (const char16_t* other : {row.ascii, row.unicode, row.display}) EXPECT_EQ(domainToASCII(other), row.ascii);
    }
    for (View none : {u"", u"a/b", u"a b", u"a:80", u"u@h", u"a%", u"a%2Fb", u"xn--a", u"1.2.3.256", u"[::1", u"\u00AD",
                      u"\U000E0001"})
        EXPECT_TRUE(domainToASCII(none).isAbsent() && domainToUnicode(none).isAbsent() &&
                    displayDomain(none).isAbsent())
            << String(none);
    EXPECT_EQ(domainToASCII(test::repeated(u"a", 5000)).length(), 5000u);
    EXPECT_TRUE(domainToASCII(test::repeated(u"\u00E4", 1001)).isAbsent());
    EXPECT_FALSE(domainToASCII(test::repeated(u"\u00E4", 1000)).isAbsent());
}

}  // namespace
}  // namespace velmo
