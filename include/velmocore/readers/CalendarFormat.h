#pragma once

#include <optional>
#include <string_view>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/readers/DateOptions.h>

namespace velmo {

/// Reads a date that is written in a calendar format.
///
/// The conversions are these; names are read in any case, numbers may have blanks before them:
///
/// - %a, %A: abbreviated and full English name of the weekday, which need not be the right one
/// - %b, %B: abbreviated and full English name of the month
/// - %d, %m, %H, %M, %S: day, month, hour, minute, second, of one or two digits
/// - %y: year of two digits, 00 to 69 for 2000 to 2069, 70 to 99 for 1970 to 1999
/// - %Y: year of four digits
/// - %Z: time zone, by a name or an offset that TimeZone::named() knows
///
/// A blank in the format takes any number of blanks, also none. All else stands for itself. What
/// follows in the text is left unread, but a digit may not follow a digit. Absent for a text that
/// is not written so, for a day that is not in the calendar, for a time out of range (second 60 is
/// a leap second, and only in a minute where one can be), for a format with another conversion and
/// for one without a year. A month, day or time that the format does not have is the first. The
/// time is that of the format, however long the text is. Any thread.
///
///     stringInISO8601(*dateWithString(u"3.2.01", "%d.%m.%y", {.zone = {}}));    // 2001-02-03T00:00:00Z
///     dateWithString(u"31.04.2001", "%d.%m.%Y").has_value();    // false
[[nodiscard]] VELMO_API std::optional<Date> dateWithString(std::u16string_view text,
                                                           std::string_view calendarFormat,
                                                           const DateOptions& options = {});

}  // namespace velmo
