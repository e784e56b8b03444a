#include <velmocore/platform/DateFormat.h>
#include <velmocore/platform/TimeZone.h>

#include <gtest/gtest.h>

#include <limits>

namespace velmo {
namespace {

using namespace std::chrono_literals;

Date instant(int year, unsigned month, unsigned day, double hours = 0) {
    return Date(std::chrono::sys_days(std::chrono::year(year) / int(month) / int(day))) +
           std::chrono::duration<double>(hours * 3600);
}

TEST(TimeZone, NamesAreAbbreviationsOffsetsAndPlaces) {
    struct {
        const char16_t* name;
        int minutes;  // in July; -1 is absent
    } const cases[] = {
        {u"GMT", 0},
        {u"utc", 0},
        {u"Z", 0},
        {u"EST", -300},
        {u"edt", -240},
        {u"CET", 60},
        {u"CEST", 120},
        {u"MESZ", 120},
        {u"BST", 60},
        {u"NST", -210},
        {u"ET", -240},
        {u"PT", -420},
        {u"+1", 60},
        {u"+01", 60},
        {u"-0130", -90},
        {u"+01:00", 60},
        {u"+1:30", 90},
        {u"GMT+1", 60},
        {u"UTC-05:00", -300},
        {u"+15:59", 959},
        {u"Europe/Berlin", 120},
        {u"europe/berlin", 120},
        {u"Asia/Kolkata", 330},
        {u"Etc/GMT", 0},
        {u"+1600", -1},
        {u"+0160", -1},
        {u"+1:0", -1},
        {u"+:00", -1},
        {u"+", -1},
        {u"GMT+", -1},
        {u"+12345", -1},
        {u"", -1},
        {u"XYZ", -1},
        {u"A", -1},
        {u"Middle/Earth", -1},
        {u"ACT", -1},
        {u"Etc/Unknown\u0130", -1},
    };
    for (const auto& [name, minutes] : cases) {
        const auto zone = TimeZone::named(name);
        ASSERT_EQ(zone.has_value(), minutes != -1) << String(name);
        if (zone) { EXPECT_EQ(zone->offsetAt(instant(2010, 7, 1)), minutes * 1min) << String(name); }
    }
    EXPECT_FALSE(TimeZone::named(std::u16string(1 << 20, u'A')));
}

TEST(TimeZone, PlacesFollowTheirRules) {
    const TimeZone berlin = *TimeZone::named(u"Europe/Berlin");
    EXPECT_EQ(berlin.offsetAt(instant(2010, 1, 1)), 1h);
    EXPECT_EQ(berlin.offsetAt(instant(2010, 3, 28, 0.99)), 1h);
    EXPECT_EQ(berlin.offsetAt(instant(2010, 3, 28, 1)), 2h);
    // 02:30 was left out in March and run through twice in October.
    const auto local = [](Date date) { return LocalTime(date.time_since_epoch()); };
    EXPECT_EQ(berlin.instantOf(local(instant(2010, 3, 28, 2.5))), instant(2010, 3, 28, 1.5));
    EXPECT_EQ(berlin.instantOf(local(instant(2010, 10, 31, 2.5))), instant(2010, 10, 31, 0.5));
    EXPECT_EQ(berlin.localTimeOf(instant(2010, 7, 1)), local(instant(2010, 7, 1, 2)));
    // Times that no calendar knows do no harm.
    for (const double wild : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()})
        static_cast<void>(berlin.offsetAt(Date(std::chrono::duration<double>(wild))));
    EXPECT_EQ(berlin, *TimeZone::named(u"EUROPE/BERLIN"));
    EXPECT_EQ(berlin.name(), "Europe/Berlin");
    EXPECT_EQ(TimeZone::ofOffset(-90min).name(), "GMT-01:30");
}

TEST(DateFormat, WritesForPeopleAndForPrograms) {
    const Date date = instant(2001, 2, 3, 4.0836);
    EXPECT_EQ(stringInISO8601(date), u"2001-02-03T04:05:00Z");
    EXPECT_EQ(stringInISO8601(Date(-0.5s)), u"1969-12-31T23:59:59Z");
    EXPECT_EQ(stringInISO8601(instant(1, 1, 1)), u"0001-01-01T00:00:00Z");
    for (const double wild : {1e300, -1e11, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_TRUE(stringInISO8601(Date(std::chrono::duration<double>(wild))).isAbsent());
    EXPECT_EQ(localizedDateAndTime(date, TimeZone(), "en_GB"), u"3 Feb 2001, 04:05");
    EXPECT_EQ(localizedDateAndTime(date, *TimeZone::named(u"Europe/Berlin"), "de_DE"), u"03.02.2001, 05:05");
    EXPECT_EQ(localizedDateAndTime(date, TimeZone::ofOffset(-5h), "de_DE"), u"02.02.2001, 23:05");
}

}  // namespace
}  // namespace velmo
