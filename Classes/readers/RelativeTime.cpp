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

}  // namespace

std::chrono::local_days RelativeTime::dayFrom(LocalTime present) const {
    return withMonthsAdded(dayOf(present), months) + std::chrono::days(days);
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

int daysToNext(std::chrono::weekday weekday, LocalTime present) {
    const auto days = (weekday - std::chrono::weekday(dayOf(present))).count();
    return static_cast<int>(days == 0 ? 7 : days);
}

int daysToLast(std::chrono::weekday weekday, LocalTime present) {
    return daysToNext(weekday, present) - 7 - (daysToNext(weekday, present) == 7 ? 7 : 0);
}

}  // namespace velmo::detail
