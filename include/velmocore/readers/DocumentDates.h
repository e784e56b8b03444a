#pragma once

#include <optional>
#include <string_view>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/readers/DateOptions.h>

namespace velmo {

/// The first date among the words of a text: day, month and year together, the year with four
/// digits and from 1950 to 2050, the month as a number or by its English or German name, of which
/// three letters do. Where day and month could each be either, the day comes first; behind a
/// year, the month does. It is the midnight that begins the day. Absent if there is none. Time is
/// linear in the text; any thread may look for dates.
///
/// With validate, numbers must be joined by dashes, dots or slashes, all of one kind; beside the
/// name of a month anything else than a word may stand between the parts. Without it nothing is
/// asked of what stands between, but a day or month of one digit is none.
///
///     const DateOptions there = {.zone = {}};
///     auto printed = documentDateByValidatingSeparation(u"Hamburg, 3. Februar 2001.", true, there);
///     stringInISO8601(*printed);    // 2001-02-03T00:00:00Z
///     documentDateByValidatingSeparation(u"Pages 3, 2 and 2001", true, there).has_value();    // false
[[nodiscard]] VELMO_API std::optional<Date> documentDateByValidatingSeparation(
    std::u16string_view text, bool validate, const DateOptions& options = {});

}  // namespace velmo
