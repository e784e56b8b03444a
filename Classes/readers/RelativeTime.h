// Time that is told from the present: tomorrow, last Monday, 3 days ago.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

#include <velmocore/platform/TimeZone.h>

#include "readers/DateTokens.h"

namespace velmo::detail {

struct RelativeTime {
    bool isWholeDay = false;  ///< begins at midnight; else the time of day is the present one
    int months = 0, days = 0;
    std::int64_t seconds = 0;  ///< less than days
    /// The next such day, or with a direction below 0 the last one, that is not today.
    std::optional<std::chrono::weekday> weekday = {};
    int direction = 1;

    /// The day, by the calendar of the clocks that show the present.
    std::chrono::local_days dayFrom(LocalTime present) const;
    /// The instant.
    Date from(Date present, const TimeZone& zone) const;
};

/// Such a time in words, and how many tokens they are.
struct RelativePhrase {
    RelativeTime time;
    std::size_t tokens;
};

/// The one that begins at a token.
std::optional<RelativePhrase> relativePhraseAt(const DateTokens& tokens, std::size_t at);

}  // namespace velmo::detail
