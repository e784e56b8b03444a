#pragma once

#include <string>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/platform/TimeZone.h>

namespace velmo {

// How dates are written. Fractions of seconds are left out. A date outside of the years 1 to
// 9999 (or one that is no number) gives the absent string. Any thread may write dates.

/// For programs: ISO 8601, in UTC.
///
///     stringInISO8601(Date{});    // 1970-01-01T00:00:00Z
[[nodiscard]] VELMO_API String stringInISO8601(Date date);

/// For people: the date in medium length and the time in short, as is usual in a locale. The
/// locale is named as en_GB or en-GB; an empty name is the user's.
///
///     localizedDateAndTime(Date{}, TimeZone(), "en_GB");    // 1 Jan 1970, 00:00
[[nodiscard]] VELMO_API String localizedDateAndTime(Date date, TimeZone zone = TimeZone::system(),
                                                    const std::string& locale = {});

}  // namespace velmo
