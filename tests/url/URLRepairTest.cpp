#include <velmocore/url/URLRepair.h>

#include "TestSupport.h"

namespace velmo {
namespace {

TEST(URLRepair, TellsPossibleLocations) {
    const std::u16string longest = u"www." + std::u16string(1019, u'x');
    const std::tuple<String, String, String> cases[] = {
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
    for (const auto& [string, location, joined] : cases) {
        EXPECT_EQ(possibleInternetLocation(string), location) << string;
        EXPECT_EQ(possibleInternetLocation(string, true), joined) << string;
        EXPECT_EQ(possibleInternetLocation(string).isIdenticalTo(string), string == location) << string;
    }
}

TEST(URLRepair, FormatsWhatWasPasted) {
    const std::pair<const char16_t*, const char16_t*> cases[] = {
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
        {u"http://h.org/", u"http://h.org/"}};
    for (const auto& [given, formatted] : cases) {
        const String string(given);
        EXPECT_EQ(stringByFormattingURL(string), formatted) << string;
        EXPECT_EQ(stringByFormattingURL(string).isIdenticalTo(string), string == formatted) << string;
    }
    EXPECT_TRUE(stringByFormattingURL({}).isAbsent());
}

}  // namespace
}  // namespace velmo
