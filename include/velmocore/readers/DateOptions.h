#pragma once

#include <optional>

#include <velmocore/platform/Date.h>
#include <velmocore/platform/TimeZone.h>

namespace velmo {

/// What a reader of dates must know beside the text. A plain value: each thread has its own.
struct DateOptions {
    /// Where a date without a zone of its own was.
    TimeZone zone = TimeZone::system();
    /// The instant that "yesterday" and a date without a year are counted from; absent is the
    /// present.
    std::optional<Date> now = {};
    /// Ours: applies an offset, a Z or the name of a zone that stands behind a date whose format
    /// has no place for it, and fractions of its seconds; what is none of these makes the format
    /// fail. A date in Korean without a zone is in Korea's. Off, what stands behind a format is
    /// left unread.
    bool offsets = false;
};

}  // namespace velmo
