#pragma once

#include <optional>
#include <string_view>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/readers/DateOptions.h>

namespace velmo {

/// A date as people write it, and as standards do. The whole string must be one date: what is not
/// understood to the last word, and what could be two dates, is refused.
///
/// - ISO 8601, with and without separators: days, months, week dates (2001-W05-6) and ordinal
///   dates (2001-034), times with fractions, offsets, Z, hour 24 and leap seconds
/// - mail dates with their oddities: no weekday or a wrong one, no seconds, a year of two digits
///   (00 to 69 for 2000 to 2069), commas, full names, zones by name or offset
/// - the output of Unix programs: Sat Feb 3 10:11:12 CET 2001
/// - days with the month's name, also in German, French, Spanish, Italian, Portuguese, Dutch,
///   Greek, Hungarian and Korean: 3 February 2001, Feb 3rd, February 2001, le 3 mars 2001
/// - numbers joined by slashes, dashes or dots with a year of four digits, or two of two digits
/// - times of 12 and 24 hours, noon, midnight
/// - today, yesterday at 5 pm, tomorrow, last Monday, next week, in 3 days, 2 weeks ago
///
/// A day without a time begins at midnight; "3 days ago" and its like are at the present time of
/// day; "last Monday" is before today, "next Monday" after it. A number alone, a version, an amount
/// of money or a running text is no date. Strings longer than 100 units, empty and absent ones are
/// none. Any thread.
///
///     const DateOptions there = {.zone = {}, .now = date(u"2001-02-03 10:00", {.zone = {}})};
///     stringInISO8601(*dateWithNaturalLanguageString(u"yesterday, noon", there));    // 2001-02-02T12:00:00Z
///     stringInISO8601(*dateWithNaturalLanguageString(u"5th of May", there));         // 2001-05-05T00:00:00Z
///     dateWithNaturalLanguageString(u"version 2.3", there).has_value();              // false
[[nodiscard]] VELMO_API std::optional<Date> dateWithNaturalLanguageString(
    std::u16string_view string, const DateOptions& options = {});

}  // namespace velmo
