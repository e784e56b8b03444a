#include "readers/DateFields.h"

#include <algorithm>

namespace velmo::detail {
namespace {

/// Leap seconds come at the end of a UTC day, which is the end of an hour or half an hour on all
/// clocks.
bool isTimeOfDay(const DateFields& f) noexcept {
    if (f.hour == 24) return f.minute == 0 && f.second == 0 && f.fraction == 0;
    const int seconds = f.minute == 59 || f.minute == 29 ? 60 : 59;
    return f.hour >= 0 && f.hour < 24 && f.minute >= 0 && f.minute < 60 && f.second >= 0 &&
           f.second <= seconds;
}

constexpr bool isInZoneName(char16_t unit) noexcept {
    return ascii::isLetterOrDigit(unit) || unit == u'+' || unit == u'-' || unit == u':' ||
           unit == u'/' || unit == u'_';
}

}  // namespace

std::optional<Date> dateOf(const DateFields& f, const TimeZone& zone) noexcept {
    if (f.year < 1 || f.year > 9999 || f.month < 1 || f.day < 1 || !isTimeOfDay(f)) return {};
    const std::chrono::year_month_day day(std::chrono::year(f.year),
                                          std::chrono::month(static_cast<unsigned>(f.month)),
                                          std::chrono::day(static_cast<unsigned>(f.day)));
    if (!day.ok()) return {};
    const auto seconds = std::chrono::local_days(day) + std::chrono::hours(f.hour) +
                         std::chrono::minutes(f.minute) + std::chrono::seconds(f.second);
    return f.zone.value_or(zone).instantOf(seconds + std::chrono::duration<double>(f.fraction));
}

double DateCursor::fraction() noexcept {
    constexpr std::size_t Digits = 6;  // more would be rounded up to the next second
    const std::size_t count = digitsHere();
    if (count == 0) return -1;
    double value = 0, weight = 1;
    for (std::size_t i = 0; i < std::min(count, Digits); ++i, weight *= 10)
        value = value * 10 + (at_[i] - u'0');
    at_ += count;
    return value / weight;
}

std::optional<TimeZone> DateCursor::zone() {
    std::size_t length = 0;
    while (at_ + length != end_ && isInZoneName(at_[length])) ++length;
    const auto zone = TimeZone::named({at_, length});
    if (zone) at_ += length;
    return zone;
}

}  // namespace velmo::detail
