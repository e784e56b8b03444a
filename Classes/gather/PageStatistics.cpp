#include <velmocore/gather/PageStatistics.h>

#include <chrono>
#include <cmath>
#include <optional>

#include <velmocore/url/URL.h>

#include "gather/StoredURL.h"

namespace velmo {
namespace {

/// No calendar holds more.
constexpr double MostDays = 1e7;

}  // namespace

String hostOfPage(const StoredPage& page) {
    const String host = detail::urlOfStored(String::fromUTF8(page.address())).host();
    return host.isAbsent() ? String(u"") : host;
}

std::optional<int> yearOfPage(const StoredPage& page) {
    const std::optional<Date> own = page.date(), date = own ? own : page.fetched();
    using Days = std::chrono::duration<double, std::chrono::days::period>;
    const double days = date ? std::floor(Days(date->time_since_epoch()).count()) : NAN;
    if (!(std::abs(days) < MostDays)) return std::nullopt;
    const std::chrono::sys_days day{std::chrono::days(static_cast<int>(days))};
    return static_cast<int>(std::chrono::year_month_day(day).year());
}

PageStatistics pageStatistics(const PageStore& store) {
    PageStatistics statistics;
    store.forEachPage([&](const StoredPage& page) {
        if (!page.isIntact()) {
            ++statistics.damaged;
            return true;
        }
        ++statistics.pages;
        statistics.words += page.words();
        statistics.bytes += page.block().size();
        ++statistics.languages[String::fromUTF8(page.language())];
        ++statistics.hosts[hostOfPage(page)];
        if (const auto year = yearOfPage(page)) ++statistics.years[*year];
        return true;
    });
    return statistics;
}

}  // namespace velmo
