// Time that is told from the present: tomorrow, last Monday, 3 days ago.
#pragma once

#include <chrono>
#include <cstdint>

#include <velmocore/platform/TimeZone.h>

namespace velmo::detail {

struct RelativeTime {
    bool isWholeDay = false;  ///< begins at midnight; else the time of day is the present one
    int months = 0, days = 0;
    std::int64_t seconds = 0;  ///< less than days

    /// The day, by the calendar of the clocks that show the present.
    std::chrono::local_days dayFrom(LocalTime present) const;
    /// The instant.
    Date from(Date present, const TimeZone& zone) const;
};

/// Days to the last such weekday before today, or to the next one after it.
int daysToLast(std::chrono::weekday weekday, LocalTime present);
int daysToNext(std::chrono::weekday weekday, LocalTime present);

}  // namespace velmo::detail
