// The words that dates are made of.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace velmo::detail {

enum class Meaning : std::uint8_t {
    Month,        ///< 1 to 12
    WeakMonth,    ///< the same, but an English word too: a month in a whole date only
    Weekday,      ///< 0 is Sunday
    Meridiem,     ///< hours that it adds: 0 or 12
    NamedHour,    ///< noon and midnight: 12 and 0
    RelativeDay,  ///< days from today
    Now,          ///< the present instant
    Seconds,      ///< a unit of so many seconds
    Months,       ///< a unit of so many months
    Count,        ///< a number
    Ordinal,      ///< a day of the month
    Suffix,       ///< of an ordinal number in digits
    Ago,
    In,
    From,
    After,
    Before,
    Last,
    Next,
    EarlyMeridiem,  ///< as Meridiem, before the hour
    DatePart,       ///< behind a year, a month or a day: 0, 1 or 2
    HourMark,       ///< behind hours: 10 Uhr, 10h30
    TimeMark,       ///< between day and time: T
    Era,            ///< behind a year: AD
    Filler,         ///< has no weight
};

struct DateWord {
    std::u16string_view name;  ///< in lower case and without diacritics
    Meaning meaning;
    int value;
};

/// All meanings of a word; none if it is unknown.
std::span<const DateWord> meaningsOf(std::u16string_view folded) noexcept;

}  // namespace velmo::detail
