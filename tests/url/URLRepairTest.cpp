#include <velmocore/url/URLRepair.h>

#include <string>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(URLRepair, TellsPossibleLocations) {
    const std::u16string longest = u"www." + std::u16string(1019, u'x');
    const struct {
        String string;
        String location, joined;  // without and with line feeds and tabs taken out
    } cases[] = {
        {u" \nwww.h.org\t", u"www.h.org", u"www.h.org"},
        {u"WWW.h", u"WWW.h", u"WWW.h"},
        {u"ww.h.org", nullptr, nullptr},
        {u"wwwh", nullptr, nullptr},
        {u"ftph.x", u"ftph.x", u"ftph.x"},
        {u"a://", u"a://", u"a://"},
        {u"://", nullptr, nullptr},
        {u"MailTo:", u"MailTo:", u"MailTo:"},
        {u"a@b.c", u"a@b.c", u"a@b.c"},
        {u"a@bc", nullptr, nullptr},
        {u"a@b@c.d", nullptr, nullptr},
        {u"http://h/a b", nullptr, nullptr},
        {u"http://h/a\n\tb", nullptr, u"http://h/ab"},
        {u"\uFEFF www.h.org", nullptr, nullptr},
        {longest, longest, longest},
        {longest + u"x", nullptr, nullptr},
        {u"", nullptr, nullptr},
        {nullptr, nullptr, nullptr},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(possibleInternetLocation(c.string), c.location) << c.string;
        EXPECT_EQ(possibleInternetLocation(c.string, true), c.joined) << c.string;
        EXPECT_EQ(possibleInternetLocation(c.string).isIdenticalTo(c.string), c.string == c.location) << c.string;
    }
}

TEST(URLRepair, FormatsWhatWasPasted) {
    const struct {
        const char16_t *string, *formatted;
    } cases[] = {
        {u" <http://h.org/> ", u"http://h.org/"},
        {u"see <http://h.org/> there", u"see http://h.org/ there"},
        {u"Ann <ann@h.org>, Bob", u"ann@h.org"},
        {u"a@b <http://h>", u"a@b http://h"},
        {u"<http://h>x@y", u"http://hx@y"},
        {u"<a<b@c>d>e", u"ab@cd"},
        {u">a@b<", u"a@b"},
        {u"<>", u""},
        {u"<@>", u"@"},
        {u"<", u""},
        {u"http://h/\r\na\u2028 \tb\uFFFC", u"http://h/a \tb"},
        {u" Message:<a\nb> ", u"Message:<a\nb>"},
        {u"  ", u""},
        {u"", u""},
        {u"http://h.org/", u"http://h.org/"},
    };
    for (const auto& c : cases) {
        const String string(c.string);
        EXPECT_EQ(stringByFormattingURL(string), c.formatted) << string;
        EXPECT_EQ(stringByFormattingURL(string).isIdenticalTo(string), string == c.formatted) << string;
    }
    EXPECT_TRUE(stringByFormattingURL({}).isAbsent());
}

}  // namespace
}  // namespace velmo
