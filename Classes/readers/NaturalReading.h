// The reader of natural language with what its callers know of the text.
#pragma once

#include <optional>
#include <string_view>

#include <velmocore/readers/DateOptions.h>

namespace velmo::detail {

struct NaturalReading {
    /// A month that stands alone is its first day in the present year.
    bool monthAlone = false;
};

std::optional<Date> readNaturalDate(std::u16string_view text, const DateOptions& options,
                                    NaturalReading reading = {});

/// The dates and times of ISO 8601, the whole text.
std::optional<Date> readISODate(std::u16string_view text, const TimeZone& zone);

}  // namespace velmo::detail
