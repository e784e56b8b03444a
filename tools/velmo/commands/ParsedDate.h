// Dates as the commands print them.
#pragma once

#include <velmocore/platform/DateFormat.h>
#include <velmocore/platform/String.h>
#include <velmocore/readers/Dates.h>

namespace velmo::tool {

/// A date that was read, in ISO 8601 and UTC, with the offset that stands in it; absent if it is
/// none.
inline String parsedDate(const String& text) {
    const std::optional<Date> parsed = date(text, {.offsets = true});
    return parsed ? stringInISO8601(*parsed) : String();
}

}  // namespace velmo::tool
