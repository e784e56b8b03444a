#include <velmocore/platform/DateFormat.h>

#include <fmt/core.h>
#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include <cmath>
#include <memory>

#include "platform/CalendarYears.h"

namespace velmo {
namespace {

/// A formatter, which takes long to make. The last one is kept for each thread, since lists of
/// dates are written for one reader.
struct Formatter {
    std::string locale;
    TimeZone zone;
    std::unique_ptr<icu::DateFormat> format;

    void prepare(const std::string& name, TimeZone where) {
        if (!format || name != locale) {
            const icu::Locale wanted = name.empty() ? icu::Locale::getDefault()
                                                    : icu::Locale::createFromName(name.c_str());
            format.reset(icu::DateFormat::createDateTimeInstance(icu::DateFormat::kMedium,
                                                                 icu::DateFormat::kShort, wanted));
            if (!format) throw std::bad_alloc();
            locale = name;
        } else if (where == zone) {
            return;
        }
        zone = where;
        // ICU knows the names of the database and GMT+hh:mm.
        format->adoptTimeZone(icu::TimeZone::createTimeZone(where.name().c_str()));
    }
};

}  // namespace

String stringInISO8601(Date date) {
    if (!detail::isInCalendar(date)) return {};
    const auto time = std::chrono::floor<std::chrono::seconds>(date);
    const auto days = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day day(days);
    const std::chrono::hh_mm_ss clock(time - days);
    return String::fromUTF8(fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", int(day.year()),
                                        unsigned(day.month()), unsigned(day.day()),
                                        clock.hours().count(), clock.minutes().count(),
                                        clock.seconds().count()));
}

String localizedDateAndTime(Date date, TimeZone zone, const std::string& locale) {
    if (!detail::isInCalendar(date)) return {};
    thread_local Formatter formatter;
    formatter.prepare(locale, zone);
    icu::UnicodeString text;
    formatter.format->format(std::floor(date.time_since_epoch().count()) * 1000, text);
    return std::u16string_view(text.getBuffer(), static_cast<std::size_t>(text.length()));
}

}  // namespace velmo
