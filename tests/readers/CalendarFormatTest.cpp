// Calendar formats: what each conversion takes and refuses, and a slow reading of random fields.
#include <velmocore/readers/CalendarFormat.h>

#include "readers/ReaderTestSupport.h"

namespace velmo {
namespace {

using namespace test;

struct Case {
    const char16_t* text;
    const char* format;
    const char* expected;  // null is none
};

void check(std::initializer_list<Case> cases, const DateOptions& options = {.zone = {}}) {
    for (const auto& [text, format, expected] : cases)
        EXPECT_EQ(iso(dateWithString(text, format, options)), expected ? expected : "none") << String(text) << format;
}

TEST(CalendarFormat, ReadsTheConversionsAndNoOthers) {
    check({
        {u"Sun, 06 Nov 1994 08:49:37 GMT", "%a, %d %b %Y %H:%M:%S %Z", "1994-11-06T08:49:37Z"},
        {u"SUN, 6 nov 1994 8:9:7 gmt", "%a, %d %b %Y %H:%M:%S %Z", "1994-11-06T08:09:07Z"},
        {u"Sunday, 06-Nov-94 08:49:37 +0100", "%A, %d-%b-%y %H:%M:%S %Z", "1994-11-06T07:49:37Z"},
        {u"Mon, 06 Nov 1994", "%a, %d %b %Y", "1994-11-06T00:00:00Z"},  // a Sunday
        {u"Sunday, 06 Nov 1994", "%a, %d %b %Y", nullptr},
        {u"Sun, 06 Nov 1994", "%A, %d %b %Y", nullptr},
        {u"november 6, 1994", "%B %d, %Y", "1994-11-06T00:00:00Z"},
        {u"Novembre 6, 1994", "%B %d, %Y", nullptr},
        {u"31.12.69", "%d.%m.%y", "2069-12-31T00:00:00Z"},
        {u"31.12.70", "%d.%m.%y", "1970-12-31T00:00:00Z"},
        {u"1.12.1970", "%d.%m.%y", nullptr},  // goes on with digits
        {u"1.12.70", "%d.%m.%Y", nullptr},
        {u"1.12.19701", "%d.%m.%Y", nullptr},
        {u"20010203", "%Y%m%d", "2001-02-03T00:00:00Z"},
        {u"2001", "%Y", "2001-01-01T00:00:00Z"},
        {u"02-03", "%m-%d", nullptr},  // no year
        {u"2001 5", "%Y %j", nullptr},
        {u"2001", "%Y%", nullptr},
        {u"", "%Y", nullptr},
    });
}

TEST(CalendarFormat, TakesBlanksAsTheyCome) {
    check({
        {u"Sun Nov  6 08:49:37 1994", "%a %b %d %H:%M:%S %Y", "1994-11-06T08:49:37Z"},
        {u"Sun Nov6\t\t8:49:37\u00A01994", "%a %b %d %H:%M:%S %Y", "1994-11-06T08:49:37Z"},
        {u" 6. 2. 2001", "%d.%m.%Y", "2001-02-06T00:00:00Z"},
        {u"6 .2.2001", "%d.%m.%Y", nullptr},
    });
}

TEST(CalendarFormat, RefusesWhatIsOutOfRange) {
    constexpr const char* Format = "%Y-%m-%d %H:%M:%S";
    check({
        {u"2001-04-31 00:00:00", Format, nullptr},
        {u"2001-02-29 00:00:00", Format, nullptr},
        {u"2004-02-29 00:00:00", Format, "2004-02-29T00:00:00Z"},
        {u"1900-02-29 00:00:00", Format, nullptr},
        {u"2001-00-01 00:00:00", Format, nullptr},
        {u"2001-13-01 00:00:00", Format, nullptr},
        {u"2001-01-00 00:00:00", Format, nullptr},
        {u"0000-01-01 00:00:00", Format, nullptr},
        {u"2001-01-01 24:00:00", Format, nullptr},
        {u"2001-01-01 23:60:00", Format, nullptr},
        {u"2001-01-01 23:59:61", Format, nullptr},
        {u"2001-01-01 23:58:60", Format, nullptr},
        {u"2016-12-31 23:59:60", Format, "2017-01-01T00:00:00Z"},
    });
}

TEST(CalendarFormat, LeavesTheRestUnlessOffsetsAreAskedFor) {
    constexpr const char* Format = "%Y-%m-%dT%H:%M:%S";
    const TimeZone berlin = *TimeZone::named(u"Europe/Berlin");
    check({{u"2001-02-03T10:11:12-05:00 and more", Format, "2001-02-03T09:11:12Z"},
           {u"2001-07-03T10:11:12", Format, "2001-07-03T08:11:12Z"},
           {u"2001-07-03T10:11:12 EST", "%Y-%m-%dT%H:%M:%S %Z", "2001-07-03T15:11:12Z"}},
          {.zone = berlin});
    check({{u"2001-02-03T10:11:12-05:00", Format, "2001-02-03T15:11:12Z"},
           {u"2001-02-03T10:11:12.75Z", Format, "2001-02-03T10:11:12Z"},
           {u"2001-02-03T10:11:12,5 EST ", Format, "2001-02-03T15:11:12Z"},
           {u"2001-02-03T10:11:12", Format, "2001-02-03T09:11:12Z"},
           {u"2001-02-03T10:11:12.", Format, nullptr},
           {u"2001-02-03T10:11:12+zz:00", Format, nullptr},
           {u"2001-02-03T10:11:12Z and more", Format, nullptr},
           {u"2001-02-03.5", "%Y-%m-%d", nullptr}},
          {.zone = berlin, .offsets = true});
    const auto fraction = dateWithString(u"1970-01-01T00:00:01.25Z", Format, {.zone = {}, .offsets = true});
    EXPECT_EQ(fraction->time_since_epoch().count(), 1.25);
}

/// Every instant is written by the C library and read back.
TEST(CalendarFormat, ReadsWhatTheCLibraryWrites) {
    std::mt19937_64 random(1);
    const char* const formats[] = {"%a, %d %b %Y %H:%M:%S %Z", "%A, %d-%B-%Y %H:%M:%S", "%Y%m%d%H%M%S",
                                   "%Y/%m/%d %H.%M.%S"};
    for (int i = 0; i < 4000; ++i) {
        const auto instant = static_cast<std::time_t>(random() % 300'000'000'000u) - 60'000'000'000;
        std::tm fields{};
        gmtime_r(&instant, &fields);
        const char* const format = formats[i % std::size(formats)];
        char text[80];
        const std::string written(text, std::strftime(text, sizeof text, format, &fields));
        if (fields.tm_year + 1900 < 1000 || fields.tm_year + 1900 > 9999) continue;
        const auto date = dateWithString(String::fromUTF8(written), format, {.zone = {}});
        ASSERT_TRUE(date) << written;
        EXPECT_EQ(static_cast<std::time_t>(date->time_since_epoch().count()), instant) << written;
    }
}

}  // namespace
}  // namespace velmo
