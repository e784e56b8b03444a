// Natural language: what is read, what is refused, and that no text can be read in two ways.
#include <velmocore/readers/NaturalDates.h>

#include <limits>

#include "readers/ReaderTestSupport.h"

namespace velmo {
namespace {

using namespace test;

struct Case {
    const char16_t* text;
    const char* expected;
};

std::string read(View text, TimeZone zone = {}) {
    return iso(dateWithNaturalLanguageString(text, {.zone = zone, .now = Present}));
}

void check(std::initializer_list<Case> cases) {
    for (const auto& [text, expected] : cases) EXPECT_EQ(read(text), expected) << String(text);
}

TEST(NaturalDates, ISO8601) {
    check({
        {u"2001-02-03", "2001-02-03T00:00:00Z"},
        {u"2001-02", "2001-02-01T00:00:00Z"},
        {u"2001-034", "2001-02-03T00:00:00Z"},
        {u"2004-366", "2004-12-31T00:00:00Z"},
        {u"2001-366", "none"},
        {u"2001-W05-6", "2001-02-03T00:00:00Z"},
        {u"2001W056", "2001-02-03T00:00:00Z"},
        {u"2001-W05", "2001-01-29T00:00:00Z"},
        {u"2004-W53-7", "2005-01-02T00:00:00Z"},  // the long year
        {u"2001-W53-1", "none"},
        {u"2001-W01-1", "2001-01-01T00:00:00Z"},
        {u"2002-W01-1", "2001-12-31T00:00:00Z"},
        {u"2001-W05-8", "none"},
        {u"20010203T101112Z", "2001-02-03T10:11:12Z"},
        {u"20010203T1011+0100", "2001-02-03T09:11:00Z"},
        {u"2001034T1011Z", "2001-02-03T10:11:00Z"},
        {u"2001-02-03T10Z", "2001-02-03T10:00:00Z"},
        {u"2001-02-03T10:11.5Z", "2001-02-03T10:11:30Z"},
        {u"2001-02-03T10.25Z", "2001-02-03T10:15:00Z"},
        {u"2001-02-03T10:11:12,999Z", "2001-02-03T10:11:12Z"},
        {u"2001-02-03T24:00Z", "2001-02-04T00:00:00Z"},
        {u"2001-02-03T24:01Z", "none"},
        {u"2001-02-03T10:11:60Z", "none"},
        {u"2001-02-03T10:60Z", "none"},
        {u"2001-02-03-05:00", "2001-02-03T05:00:00Z"},
        {u"2001-02-03-05", "none"},
        {u"01-02-03", "2001-02-03T00:00:00Z"},
        {u"-01-02", "2001-02-01T00:00:00Z"},
        {u"--02-03", "none"},
        {u"2001-002-03T10:11:12Z", "2001-02-03T10:11:12Z"},
        {u"2001-02-03T", "none"},
        {u"2001-", "none"},
        {u"20010203101112", "none"},
        {u"2001034", "none"},
    });
}

TEST(NaturalDates, MailAndUnix) {
    check({
        {u"Sat, 3 Feb 2001 10:11:12 GMT", "2001-02-03T10:11:12Z"},
        {u"3 Feb 01 10:11 EST", "2001-02-03T15:11:00Z"},
        {u"Mon, 3 February, 2001 10:11:12 -0130", "2001-02-03T11:41:12Z"},
        {u"Sat, 03 Feb 2001", "2001-02-03T00:00:00Z"},
        {u"Sat Feb  3 10:11:12 CET 2001", "2001-02-03T09:11:12Z"},
        {u"Sat Feb 3 10:11:12 +0000 2001", "2001-02-03T10:11:12Z"},
        {u"Sat Feb 03 2001 10:11:12 GMT+0100", "2001-02-03T09:11:12Z"},
        {u"2001-02-03 10:11:12 +0000 UTC", "2001-02-03T10:11:12Z"},
        {u"Sat, 2001/02/03 08:19:53 EDT", "2001-02-03T12:19:53Z"},
        {u"Sat, 3 Feb 2001 10 GMT", "2001-02-03T10:00:00Z"},
        {u"3 Feb 2001 10:11:12 America/New_York", "2001-02-03T15:11:12Z"},
        {u"3 Feb 2001 10:11:12 +0100 EST", "none"},
        {u"3 Feb 2001 10:11:12 XYZ", "none"},
        {u"3 Feb 2001 1:2:3:4 GMT", "none"},
        {u"3 Feb 2001 10:11:12 +00:zz", "none"},
        {u"Sat, 3 zzz 2001 10:11:12 GMT", "none"},
        {u"Sat, Feb x 2001 10:11:12 GMT", "none"},
        {u"Sat, 99 Feb 2001 10:11:12 GMT", "none"},
        {u"Sat, 31 Apr 2001 10:11:12 GMT", "none"},
    });
    EXPECT_EQ(read(u"3 Jul 2001 10:11", *TimeZone::named(u"Europe/Berlin")), "2001-07-03T08:11:00Z");
}

TEST(NaturalDates, DaysInManyLanguages) {
    for (const View text : {View(u"3 February 2001"),
                            View(u"Feb 3, 2001"),
                            View(u"February 3rd, 2001"),
                            View(u"the 3rd of February 2001"),
                            View(u"Feb. 3 '01"),
                            View(u"third of February, 2001"),
                            View(u"2001 February 3"),
                            View(u"3-Feb-2001"),
                            View(u"03/Feb/2001"),
                            View(u"3. Februar 2001"),
                            View(u"Samstag, den 3. Feb. 2001"),
                            View(u"le 3 f\u00E9vrier 2001"),
                            View(u"3 de febrero de 2001"),
                            View(u"sabato 3 febbraio 2001"),
                            View(u"3 de fevereiro de 2001"),
                            View(u"zaterdag 3 februari 2001"),
                            View(u"\u03A3\u03B1\u03B2, 03 \u03A6\u03B5\u03B2 2001"),
                            View(u"2001-febru\u00E1r-03"),
                            View(u"2001\u5E742\u67083\u65E5"),
                            View(u"3/2/2001"),
                            View(u"3.2.2001"),
                            View(u"3-2-2001"),
                            View(u"2001/2/3"),
                            View(u"03/02/01"),
                            View(u"3/2/01"),
                            View(u"Feb-03-2001"),
                            View(u"Feb.3.2001"),
                            View(u"3.Feb.2001"),
                            View(u"February 3, 2001 AD"),
                            View(u"03.02.01"),
                            View(u"3 Feb"),
                            View(u"February 3")})
        EXPECT_EQ(read(text), "2001-02-03T00:00:00Z") << String(text);
    check({
        {u"5 M\u00E4rz 2001", "2001-03-05T00:00:00Z"},
        {u"5 ao\u00FBt 2001", "2001-08-05T00:00:00Z"},
        {u"5 mar\u00E7o 2001", "2001-03-05T00:00:00Z"},
        {u"5 ago 2001", "2001-08-05T00:00:00Z"},
        {u"February 2001", "2001-02-01T00:00:00Z"},
        {u"2/2001", "2001-02-01T00:00:00Z"},
        {u"February", "none"},
        {u"2/13/2001", "2001-02-13T00:00:00Z"},
    });
}

TEST(NaturalDates, Times) {
    check({
        {u"3 Feb 2001 5pm", "2001-02-03T17:00:00Z"},
        {u"Feb 3, 2001 at 5:30 p.m.", "2001-02-03T17:30:00Z"},
        {u"Feb 3, 2001 12:30 am", "2001-02-03T00:30:00Z"},
        {u"Feb 3, 2001 12 pm EST", "2001-02-03T17:00:00Z"},
        {u"Feb 3, 2001 13 pm", "none"},
        {u"3.2.2001 um 10.11 Uhr", "2001-02-03T10:11:00Z"},
        {u"3 f\u00E9vrier 2001 \u00E0 10h11", "2001-02-03T10:11:00Z"},
        {u"Feb 3 2001, 5 o'clock", "2001-02-03T05:00:00Z"},
        {u"noon, Feb 3 2001", "2001-02-03T12:00:00Z"},
        {u"Feb 3 2001 midnight", "2001-02-03T00:00:00Z"},
        {u"Feb 3 2001 12:00 noon", "2001-02-03T12:00:00Z"},
        {u"3. Februar 2001 - 10:11", "2001-02-03T10:11:00Z"},
        {u"February 3, 2001 @ 10:11 pm", "2001-02-03T22:11:00Z"},
        {u"10:11 03.02.2001", "2001-02-03T10:11:00Z"},
        {u"noon", "2001-02-03T12:00:00Z"},
        {u"5 pm", "2001-02-03T17:00:00Z"},
        {u"10:11", "none"},
    });
}

TEST(NaturalDates, RelativeTime) {
    check({
        {u"now", "2001-02-03T10:00:00Z"},
        {u"Today", "2001-02-03T00:00:00Z"},
        {u"yesterday", "2001-02-02T00:00:00Z"},
        {u"tomorrow at 5:30 pm", "2001-02-04T17:30:00Z"},
        {u"noon tomorrow", "2001-02-04T12:00:00Z"},
        {u"the day before yesterday", "2001-02-01T00:00:00Z"},
        {u"day after tomorrow", "2001-02-05T00:00:00Z"},
        {u"last Monday", "2001-01-29T00:00:00Z"},
        {u"last Saturday", "2001-01-27T00:00:00Z"},  // today is one
        {u"next Saturday", "2001-02-10T00:00:00Z"},
        {u"next Sun at noon", "2001-02-04T12:00:00Z"},
        {u"next month", "2001-03-03T10:00:00Z"},
        {u"last year", "2000-02-03T10:00:00Z"},
        {u"in 3 days", "2001-02-06T10:00:00Z"},
        {u"in an hour", "2001-02-03T11:00:00Z"},
        {u"2 weeks ago", "2001-01-20T10:00:00Z"},
        {u"three months ago", "2000-11-03T10:00:00Z"},
        {u"90 minutes ago", "2001-02-03T08:30:00Z"},
        {u"2 days from now", "2001-02-05T10:00:00Z"},
        {u"yesterday, 3 Feb", "none"},
        {u"2 hours ago at noon", "none"},
        {u"yesterday tomorrow", "none"},
        {u"3 days", "none"},
        {u"ago", "none"},
        {u"Monday", "none"},
    });
    const auto at = [](double seconds, View text, const char16_t* zone) {
        return iso(dateWithNaturalLanguageString(
            text, {.zone = *TimeZone::named(zone), .now = Date(std::chrono::duration<double>(seconds))}));
    };
    // The end of a month; a day on which the clocks change; a day that begins elsewhere.
    EXPECT_EQ(at(983318400, u"last month", u"UTC"), "2001-01-28T00:00:00Z");
    EXPECT_EQ(at(985910400, u"1 month ago", u"UTC"), "2001-02-28T00:00:00Z");
    EXPECT_EQ(at(985519800, u"1 day ago", u"Europe/Berlin"), "2001-03-24T12:30:00Z");
    EXPECT_EQ(at(985519800, u"24 hours ago", u"Europe/Berlin"), "2001-03-24T11:30:00Z");
    EXPECT_EQ(at(981194400, u"today", u"Asia/Tokyo"), "2001-02-02T15:00:00Z");
}

/// A present that no calendar knows leaves only what needs none.
TEST(NaturalDates, WildPresents) {
    for (const double wild : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        const DateOptions options{.zone = {}, .now = Date(std::chrono::duration<double>(wild))};
        for (const View text :
             {View(u"today"), View(u"3 Feb"), View(u"noon"), View(u"last Monday at noon"), View(u"in 2 hours")})
            EXPECT_FALSE(dateWithNaturalLanguageString(text, options)) << String(text);
        EXPECT_EQ(iso(dateWithNaturalLanguageString(u"3 Feb 2001", options)), "2001-02-03T00:00:00Z");
    }
}

TEST(NaturalDates, RefusesWhatIsNoDateOrCouldBeTwo) {
    for (const char16_t* text : {u"",
                                 u" ",
                                 u"42",
                                 u"2001",
                                 u"12345",
                                 u"1136214245",
                                 u"1.2.3",
                                 u"10.2.1",
                                 u"1.2.3.4",
                                 u"192.168.0.1",
                                 u"v2.3",
                                 u"version 2.3",
                                 u"$19.99",
                                 u"19.99 EUR",
                                 u"EUR 5",
                                 u"3/4",
                                 u"24/7",
                                 u"1/2",
                                 u"555-1234",
                                 u"2001-2002",
                                 u"1995-96",
                                 u"May the force be with you",
                                 u"The meeting was yesterday",
                                 u"on March with",
                                 u"a",
                                 u"in",
                                 u"at",
                                 u"the",
                                 u"5th",
                                 u"Jan 5-7, 2001",
                                 u"5-7 Jan 2001",
                                 u"Jan-Feb 2001",
                                 u"5 Jan 2001-03",
                                 u"2001-02-03 - 2001-02-05",
                                 u"5 Jan 2001 and 6 Jan 2001",
                                 u"5 5 2001",
                                 u"2001 5 5",
                                 u"1 2 3",
                                 u"Jan 2001 2002",
                                 u"Jan Feb 5",
                                 u"5 Jan 6",
                                 u"Jan 1.5",
                                 u"Q1 2001",
                                 u"set 5",
                                 u"out 2001",
                                 u"Feb-3-4",
                                 u"Spring 2001",
                                 u"-5 January",
                                 u"5 January at",
                                 u"29 February 2001",
                                 u"0 May 2001",
                                 u"Jan 5 0000",
                                 u"12:30:15 2001",
                                 u"1:2 5 pm",
                                 u"1:2:3:4 pm",
                                 u"13:00 pm",
                                 u"11:00 noon, 5 Jan 2001",
                                 u"9999 years ago",
                                 u"10:30",
                                 u"1,234",
                                 u"5 Jan 20001",
                                 u"Saturday Sunday 5 Jan"})
        EXPECT_EQ(read(text), "none") << String(text);
}

/// What a reader of tokens gets wrong shows in texts of dates' own parts: none is read as another
/// date than its neighbour with blanks doubled, and none that goes on with junk is one.
TEST(NaturalDates, RandomPartsAreReadInOneWay) {
    const auto parts = wordsOf(
        u"3 03 13 2001 Feb February sat 10:11 10:11:12 pm noon GMT +0100 -05:00 , . - / ' of the T Z st at yesterday "
        u"ago in "
        u"days W05 034 5th \uB144");
    std::mt19937 random(5);
    int dates = 0;
    for (int i = 0; i < 50'000; ++i) {
        std::u16string text, wide;
        for (std::size_t left = 1 + random() % 6; left > 0; --left) {
            const std::u16string blank(random() % 2, u' ');
            text += blank + parts[random() % parts.size()];
        }
        for (const char16_t unit : text) wide.append(unit == u' ' ? 2 : 1, unit);
        const std::string date = read(text);
        EXPECT_EQ(read(wide), date) << String(text);
        EXPECT_EQ(read(text + u" zyx"), "none") << String(text);
        dates += date != "none";
    }
    EXPECT_GT(dates, 500);
}

}  // namespace
}  // namespace velmo
