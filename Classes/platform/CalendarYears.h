// The years that dates are read and written in.
#pragma once

#include <chrono>

#include <velmocore/platform/Date.h>

namespace velmo::detail {

/// Whether a date is in the years 1 to 9999; false for what is no number.
constexpr bool isInCalendar(Date date) noexcept {
    constexpr std::chrono::sys_days First = std::chrono::year(1) / 1 / 1;
    constexpr std::chrono::sys_days End = std::chrono::year(10000) / 1 / 1;
    return date >= First && date < End;
}

}  // namespace velmo::detail
