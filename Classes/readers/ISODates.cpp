// ISO 8601: the day in one of its shapes, then the time, then the zone. Each shape is known by its
// first separator and by how many digits there are, so that nothing is read twice. Beside the
// standard, a blank may stand for the T, and a month may have a third digit in front, which some
// feeds write.
#include <cmath>

#include "readers/DateFields.h"
#include "readers/NaturalReading.h"

namespace velmo::detail {
namespace {

class ISOReader {
public:
    explicit ISOReader(std::u16string_view text) : text_(text) {}

    std::optional<Date> read(const TimeZone& zone) {
        if (!readDay() || (!text_.isAtEnd() && !readTime())) return {};
        return dateOf(fields_, zone);
    }

private:
    bool readDay() {
        const std::size_t digits = text_.digitsHere();
        switch (digits) {
            case 0:
                return readShortMonth();
            case 2:
                return readShortDay();
            case 4:
                return readYear() && readBehindYear();
            case 7:  // a number alone is no date
                return readYear() && setOrdinal(text_.number(3, 3)) && text_.peek() == u'T';
            case 8:
                return readYear() && readMonth() && readDayOfMonth();
            default:
                return false;
        }
    }

    bool readYear() { return (fields_.year = text_.number(4, 4)) > 0; }
    bool readMonth() { return (fields_.month = text_.number(2, 2)) > 0; }
    bool readDayOfMonth() { return (fields_.day = text_.number(2, 2)) > 0; }

    /// -YY-MM and -YYMM
    bool readShortMonth() {
        if (!text_.take(u'-')) return false;
        const std::size_t digits = text_.digitsHere();
        if (digits != 2 && digits != 4) return false;
        fields_.year = yearOfTwoDigits(text_.number(2, 2));
        return (digits == 4 || text_.take(u'-')) && readMonth() && text_.isAtEnd();
    }
    /// YY-MM-DD
    bool readShortDay() {
        fields_.year = yearOfTwoDigits(text_.number(2, 2));
        return text_.take(u'-') && readMonth() && text_.take(u'-') && readDayOfMonth() &&
               !ascii::isDigit(text_.peek());
    }

    bool readBehindYear() {
        if (text_.take(u'W')) return readWeek(false);
        if (!text_.take(u'-')) return false;
        if (text_.take(u'W')) return readWeek(true);
        const std::size_t digits = text_.digitsHere();
        if (digits == 3 && text_.left() > 3 && text_.rest()[3] == u'-') return readLongMonth();
        if (digits == 3) return setOrdinal(text_.number(3, 3));
        if (digits != 2 || !readMonth()) return false;
        if (text_.isAtEnd()) return true;  // a month
        return text_.take(u'-') && text_.digitsHere() == 2 && readDayOfMonth();
    }
    bool readLongMonth() {
        return text_.take(u'0') && readMonth() && text_.take(u'-') && text_.digitsHere() == 2 &&
               readDayOfMonth();
    }

    bool setOrdinal(int ordinal) {
        const auto first = std::chrono::sys_days(std::chrono::year(fields_.year) / 1 / 1);
        const bool isLeap = std::chrono::year(fields_.year).is_leap();
        if (ordinal < 1 || ordinal > 365 + isLeap) return false;
        return setDay(first + std::chrono::days(ordinal - 1));
    }

    /// Week 1 holds the 4th of January, and begins on Monday.
    bool readWeek(bool hasDashes) {
        if (text_.digitsHere() != (hasDashes || text_.left() == 2 ? 2 : 3)) return false;
        const int week = text_.number(2, 2);
        int day = 1;
        if (hasDashes ? text_.take(u'-') : !text_.isAtEnd()) day = text_.number(1, 1);
        const std::chrono::year year(fields_.year);
        if (week < 1 || day < 1 || day > 7 ||
            mondayOfWeek(year, week) >= mondayOfWeek(++std::chrono::year(year), 1))
            return false;
        return setDay(mondayOfWeek(year, week) + std::chrono::days(day - 1));
    }
    static std::chrono::sys_days mondayOfWeek(std::chrono::year year, int week) {
        const std::chrono::sys_days fourth = year / 1 / 4;
        return fourth - (std::chrono::weekday(fourth) - std::chrono::Monday) +
               std::chrono::weeks(week - 1);
    }

    bool setDay(std::chrono::sys_days day) {
        fields_.setDay(std::chrono::year_month_day(day));
        return true;
    }

    bool readTime() {
        const bool hasT = text_.takeOneOf(u"Tt") != 0;
        if (!hasT && !isBlank(text_.peek())) return readZoneOfDay();
        if (!hasT) text_.skipBlanks();
        return readClock(hasT) && readFraction() && (text_.skipBlanks(), readZone());
    }

    /// An hour alone is one only behind a T.
    bool readClock(bool hasT) {
        const std::size_t digits = text_.digitsHere();
        if (digits < 1 || digits == 3 || digits == 5 || digits > 6) return false;
        if (digits > 2) return hasT && readCompactClock(digits);
        if ((fields_.hour = text_.number(1, 2)) > 24) return false;
        unit_ = 3600;
        if (!text_.take(u':')) return hasT;
        if ((fields_.minute = text_.number(2, 2)) < 0) return false;
        unit_ = 60;
        if (!text_.take(u':')) return true;
        unit_ = 1;
        return (fields_.second = text_.number(2, 2)) >= 0;
    }
    bool readCompactClock(std::size_t digits) {
        fields_.hour = text_.number(2, 2);
        fields_.minute = text_.number(2, 2);
        if (digits == 6) fields_.second = text_.number(2, 2);
        unit_ = digits == 6 ? 1 : 60;
        return true;
    }

    /// Of the last part, whatever it is: half a minute is 30 seconds.
    bool readFraction() {
        if (ascii::isDigit(text_.peek())) return false;
        if (!text_.takeOneOf(u".,")) return true;
        const double fraction = text_.fraction();
        if (fraction < 0) return false;
        const double seconds = fraction * unit_;
        fields_.fraction = unit_ == 1 ? seconds : 0;
        if (unit_ > 1) addSeconds(static_cast<int>(std::lround(seconds)));
        return true;
    }
    void addSeconds(int seconds) {
        fields_.second += seconds % 60;
        fields_.minute += seconds / 60;
    }

    /// A short offset behind a day may be something else, such as the end of a span.
    bool readZoneOfDay() {
        constexpr std::size_t FullOffset = 6;  // +01:00
        return (text_.rest() == u"Z" || text_.left() == FullOffset) && readZone();
    }

    bool readZone() {
        if (text_.isAtEnd()) return true;
        fields_.zone = text_.zone();
        return fields_.zone && text_.isAtEnd();
    }

    DateCursor text_;
    DateFields fields_;
    int unit_ = 1;  // seconds of the last part of the time
};

}  // namespace

std::optional<Date> readISODate(std::u16string_view text, const TimeZone& zone) {
    return ISOReader(text).read(zone);
}

}  // namespace velmo::detail
