#pragma once

#include <chrono>

namespace velmo {

/// A point in time, in seconds since 1970 with fractions. A date that may be absent
/// is a std::optional<Date>. A plain value of any thread.
///
///     stringInISO8601(Date(std::chrono::seconds(86400)));    // 1970-01-02T00:00:00Z
using Date = std::chrono::sys_time<std::chrono::duration<double>>;

}  // namespace velmo
