#pragma once

#include <chrono>

namespace velmo {

/// A point in time, in seconds since 1970 with fractions. A date that may be absent
/// is a std::optional<Date>.
using Date = std::chrono::sys_time<std::chrono::duration<double>>;

}  // namespace velmo
