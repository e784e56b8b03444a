#include "readers/RelativeTime.h"

namespace velmo::detail {
namespace {

using std::chrono::local_days;

local_days dayOf(LocalTime time) { return std::chrono::floor<std::chrono::days>(time); }

/// A day that a month does not have is its last one.
local_days withMonthsAdded(local_days day, int months) {
    auto date = std::chrono::year_month_day(day) + std::chrono::months(months);
    if (!date.ok()) date = date.year() / date.month() / std::chrono::last;
    return local_days(date);
}

/// Days to the nearest such weekday that is not today.
std::chrono::days daysTo(std::chrono::weekday weekday, int direction, local_days today) {
    const std::chrono::weekday now(today);
    const std::chrono::days days = direction < 0 ? now - weekday : weekday - now;
    return direction * (days.count() == 0 ? std::chrono::days(7) : days);
}

}  // namespace

local_days RelativeTime::dayFrom(LocalTime present) const {
    const local_days day = withMonthsAdded(dayOf(present), months) + std::chrono::days(days);
    return weekday ? day + daysTo(*weekday, direction, day) : day;
}

Date RelativeTime::from(Date present, const TimeZone& zone) const {
    const LocalTime local = zone.localTimeOf(present);
    const LocalTime day(dayFrom(local));
    if (isWholeDay) return zone.instantOf(day);
    // Hours pass; days and months are those of the calendar, whatever the clocks do in between.
    const bool keepsDay = months == 0 && days == 0;
    const Date start = keepsDay ? present : zone.instantOf(day + (local - dayOf(local)));
    return start + std::chrono::seconds(seconds);
}

}  // namespace velmo::detail
