#pragma once

#include <optional>
#include <string_view>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/readers/DateOptions.h>

namespace velmo {

// Whole strings that are a date. An absent or an empty one is none. Time is linear in the string
// and needs no memory; any thread may read dates.

/// A date in one of the many forms that people and programs write.
///
/// What follows a semicolon, bracket, brace or parenthesis is left out, and so is white space at
/// the ends. The counts of dots, colons, dashes and slashes and the length tell which format is
/// tried: a number of eight digits, numbers joined by dots, dashes or slashes, with or without a
/// time, the dates of HTTP and mail headers. Where day and month could each be either, the day
/// comes first (03/04/2001 is in April). All else is left to dateWithNaturalLanguageString(), and
/// a month that stands alone is its first day in the present year.
///
/// The formats read no zone behind 2001-02-03T10:11:12+01:00; see DateOptions::offsets, with
/// which strings that fit no format are always tried in natural language.
///
/// Logs "Unknown date: " and the string if it is none.
///
///     stringInISO8601(*date(u"2001-02-03 10:11:12", {.zone = {}}));    // 2001-02-03T10:11:12Z
///     stringInISO8601(*date(u"3. Februar 2001", {.zone = {}}));        // 2001-02-03T00:00:00Z
///     date(u"1.2.3").has_value();                                      // false
[[nodiscard]] VELMO_API std::optional<Date> date(std::u16string_view string,
                                                 const DateOptions& options = {});

/// The date of an HTTP header, in any of its three formats.
///
///     dateFromHTTPHeaderValue(u"Thu, 01 Jan 1970 00:00:00 GMT") == Date{};    // true
[[nodiscard]] VELMO_API std::optional<Date> dateFromHTTPHeaderValue(
    std::u16string_view value, const DateOptions& options = {});

/// The date of an ebook package: a year, a month, a day or a minute or second of it, from
/// 2001 to 2001-02-03T10:11:12+0100, with nothing before or behind it. A Z at its end means the
/// zone of the options; with DateOptions::offsets it means UTC.
[[nodiscard]] VELMO_API std::optional<Date> dateFromOPF(std::u16string_view string,
                                                        const DateOptions& options = {});

}  // namespace velmo
