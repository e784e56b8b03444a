// Whole strings that are dates: each step that the shape of a string leads to, HTTP headers, ebook
// packages, and the dates of feeds.
#include <velmocore/readers/Dates.h>

#include <sstream>

#include "readers/ReaderTestSupport.h"

namespace velmo {
namespace {

using namespace test;

struct Case {
    const char16_t* text;
    const char* expected;  // null is none
};

class Dates : public testing::Test {
protected:
    static void check(std::initializer_list<Case> cases, DateOptions options = {.zone = {}, .now = Present}) {
        for (const auto& [text, expected] : cases)
            EXPECT_EQ(iso(date(text, options)), expected ? expected : "none") << String(text);
    }
    LogCapture log_;
};

TEST_F(Dates, ShapesOfTheTable) {
    check({
        // Eight digits: by the first unit, then by the fifth.
        {u"20010203", "2001-02-03T00:00:00Z"},
        {u"03022001", "2001-02-03T00:00:00Z"},
        {u"19990203", "1999-02-03T00:00:00Z"},  // by the last resort
        {u"12345678", nullptr},
        {u"20011301", nullptr},
        {u"20010203T101112", "2001-02-03T10:11:12Z"},
        // Two dots.
        {u"2001.02.03", "2001-02-03T00:00:00Z"},
        {u"03.02.2001", "2001-02-03T00:00:00Z"},
        {u"03.02.01", "2001-02-03T00:00:00Z"},
        {u"1.2.2001", nullptr},  // eight units want a year of two digits, and that decides
        {u"11.2.2001", "2001-02-11T00:00:00Z"},
        {u"03.02.2001, 10:11:12", "2001-02-03T10:11:12Z"},
        {u"03.02.2001, 10:11", "2001-02-03T10:11:00Z"},
        {u"03/02/2001 10.11.12", "2001-02-03T10:11:12Z"},
        {u"31.04.2001", nullptr},
    });
}

TEST_F(Dates, TwoColons) {
    check({
        {u"Sat, 03 Feb 2001 10:11:12 +0100", "2001-02-03T09:11:12Z"},
        {u"Saturday, 03-Feb-01 10:11:12 GMT", "2001-02-03T10:11:12Z"},
        {u"2001-02-03 10:11:12", "2001-02-03T10:11:12Z"},
        {u"03-02-2001 10:11:12", "2001-02-03T10:11:12Z"},
        {u"03/02/2001 10:11:12 EST", "2001-02-03T15:11:12Z"},
        {u"03/02/2001 10:11:12", "2001-02-03T10:11:12Z"},
        {u"Sat Feb  3 10:11:12 2001", "2001-02-03T10:11:12Z"},
        // German abbreviations; Mart is replaced too.
        {u"Sat, 03 Mrz 2001 10:11:12 GMT", "2001-03-03T10:11:12Z"},
        {u"Sat, 03 Mai 2001 10:11:12 GMT", "2001-05-03T10:11:12Z"},
        {u"Sat, 03 Mart 2001 10:11:12 GMT", "2001-03-03T10:11:12Z"},
        {u"Sat, 03 Okt 2001 10:11:12 GMT", "2001-10-03T10:11:12Z"},
        {u"Sat, 03 Dez 2001 10:11:12 GMT", "2001-12-03T10:11:12Z"},
    });
}

TEST_F(Dates, TwoDashes) {
    check({
        {u"2001-02-03", "2001-02-03T00:00:00Z"},
        {u"03-02-2001", "2001-02-03T00:00:00Z"},
        {u"3-2-2001", "2001-02-03T00:00:00Z"},
        {u"03-02-2001 10:11", "2001-02-03T10:11:00Z"},
        {u"2001-02-03 10:11", "2001-02-03T10:11:00Z"},  // by the last resort
        {u"2001-02-03T10:11:12+01:00", "2001-02-03T10:11:12Z"},
        {u"03-02-2001T10:11:12+01:00", "2001-02-03T10:11:12Z"},
        {u"3-Feb-2001", "2001-02-03T00:00:00Z"},
    });
}

TEST_F(Dates, SlashesAndOthers) {
    check({
        {u"03/02/2001", "2001-02-03T00:00:00Z"},  // the day wins
        {u"02/13/2001", "2001-02-13T00:00:00Z"},
        {u"31/02/2001", nullptr},
        {u"2001/02/03", "2001-02-03T00:00:00Z"},
        {u"2001/13/02", "2001-02-13T00:00:00Z"},  // 13 can be no month
        {u"3.2.2001 10:11", "2001-02-03T10:11:00Z"},
        {u"2001-02-03T10:11:12-05:00", "2001-02-03T10:11:12Z"},
        {u"2001-02-03 10:11:12 -05:00", "2001-02-03T10:11:12Z"},
        {u"February 3, 2001", "2001-02-03T00:00:00Z"},
        {u"Feb 3, 2001", "2001-02-03T00:00:00Z"},
        // A month that stands alone is its first day.
        {u"February", "2001-02-01T00:00:00Z"},
        {u"2002 February", "2002-02-01T00:00:00Z"},
    });
}

TEST_F(Dates, WhatIsLeftOutAndWhatIsLogged) {
    check({
        {u" 2001-02-03 (draft)\n", "2001-02-03T00:00:00Z"},
        {u"2001-02-03; revised", "2001-02-03T00:00:00Z"},
        {u"2001-02-03[1]", "2001-02-03T00:00:00Z"},
        {u"", nullptr},
        {u" \u00A0", nullptr},
        {u"(2001-02-03)", nullptr},
    });
    EXPECT_TRUE(LogCapture::lines().empty());
    EXPECT_FALSE(date(String(), {.zone = {}}));
    EXPECT_FALSE(date(u" no date\u00E9 (x)", {.zone = {}}));
    EXPECT_EQ(LogCapture::lines(), std::vector<std::string>{"Unknown date:  no date\u00E9 (x)"});
}

TEST_F(Dates, OffsetsAndZones) {
    const TimeZone berlin = *TimeZone::named(u"Europe/Berlin");
    check({{u"2001-02-03 10:11:12", "2001-02-03T09:11:12Z"},
           {u"2001-07-03 10:11:12", "2001-07-03T08:11:12Z"},
           {u"2001-02-03T10:11:12+05:00", "2001-02-03T09:11:12Z"}},
          {.zone = berlin});
    check({{u"2001-02-03T10:11:12+01:00", "2001-02-03T09:11:12Z"},
           {u"2001-02-03T10:11:12Z", "2001-02-03T10:11:12Z"},
           {u"2001-02-03 10:11:12.5 -0500", "2001-02-03T15:11:12Z"},
           {u"03.02.2001, 10:11 CET", "2001-02-03T09:11:00Z"},
           {u"03.02.2001 10:11:12 Uhr", "2001-02-03T09:11:12Z"},
           {u"2001-02-03T10:11:12+zz:00", nullptr},
           {u"2004-05-25 \uC624\uD6C4 11:23:17", "2004-05-25T14:23:17Z"}},
          {.zone = berlin, .offsets = true});
}

TEST_F(Dates, HTTPHeaders) {
    const auto read = [](const char16_t* text) { return iso(dateFromHTTPHeaderValue(text, {.zone = {}})); };
    EXPECT_EQ(read(u"Sun, 06 Nov 1994 08:49:37 GMT"), "1994-11-06T08:49:37Z");
    EXPECT_EQ(read(u"Sunday, 06-Nov-94 08:49:37 GMT"), "1994-11-06T08:49:37Z");
    EXPECT_EQ(read(u"Sun Nov  6 08:49:37 1994"), "1994-11-06T08:49:37Z");
    EXPECT_EQ(read(u"Sun, 06 Nov 1994 08:49:37"), "none");
    EXPECT_EQ(read(u"0"), "none");
    EXPECT_FALSE(dateFromHTTPHeaderValue(String()));
    EXPECT_TRUE(LogCapture::lines().empty());
}

TEST_F(Dates, EbookPackages) {
    const TimeZone cet = TimeZone::ofOffset(std::chrono::hours(1));
    const Case cases[] = {
        {u"2001", "2000-12-31T23:00:00Z"},
        {u"2001-02", "2001-01-31T23:00:00Z"},
        {u"2001-02-03", "2001-02-02T23:00:00Z"},
        {u"2001-02-03T10:11Z", "2001-02-03T09:11:00Z"},  // this Z is no zone
        {u"2001-02-03T10:11+0200", "2001-02-03T08:11:00Z"},
        {u"2001-02-03T10:11:12Z", "2001-02-03T09:11:12Z"},
        {u"2001-02-03T10:11:12-05:00", "2001-02-03T15:11:12Z"},
        {u"2001-02-03T10:11:12", nullptr},
        {u"2001-02T10:11Z", nullptr},
        {u"2001-02-03T10Z", nullptr},
        {u"2001-02-03T24:00Z", nullptr},
        {u"2001-02-30", nullptr},
        {u"2001-", nullptr},
        {u"2001-02-03 ", nullptr},
        {u"20010203", nullptr},
        {u"", nullptr},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(iso(dateFromOPF(text, {.zone = cet})), expected ? expected : "none") << String(text);
    EXPECT_EQ(iso(dateFromOPF(u"2001-02-03T10:11Z", {.zone = cet, .offsets = true})), "2001-02-03T10:11:00Z");
}

/// The member of a line of JSON that holds text, its escapes taken as they are.
std::string member(const std::string& line, const std::string& name) {
    const std::string key = "\"" + name + "\": \"";
    const std::size_t start = line.find(key) + key.size();
    return line.substr(start, line.find('"', start) - start);
}

TEST_F(Dates, FeedsOfTheWorld) {
    std::istringstream lines(readData("dates/feedparser-sample.jsonl"));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        EXPECT_EQ(iso(date(String::fromUTF8(member(line, "input")), {.zone = {}, .offsets = true})),
                  member(line, "expect_utc"))
            << line;
    EXPECT_EQ(count, 12);
}

/// Hostile texts end at once, whatever their shape.
TEST_F(Dates, LongStringsEndAtOnce) {
    for (const View part : {u"1", u"-", u"1-", u"10:", u"word ", u"May ", u"/", u"5 Jan ", u"Mrz:", u" "}) {
        const String text(repeated(part, (1 << 20) / part.size()));
        for (const bool offsets : {false, true}) EXPECT_FALSE(date(text, {.zone = {}, .offsets = offsets}));
        EXPECT_FALSE(dateFromHTTPHeaderValue(text));
        EXPECT_FALSE(dateFromOPF(text));
    }
}

}  // namespace
}  // namespace velmo
