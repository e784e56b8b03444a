// The parameters that are known to track, and how sessions are named.
#pragma once

#include <span>
#include <string_view>

namespace velmo::detail {

/// How it is known what a parameter is for.
enum class Knowledge {
    Documented,  ///< the party tells it in its public help
    Observed,    ///< it is met in links of the party's services
};

struct TrackingRow {
    std::string_view name;   ///< in lower case; a * at its end stands for anything
    std::string_view hosts;  ///< where it counts, parted by spaces; empty: everywhere
    std::string_view party;  ///< who reads it
    Knowledge knowledge;
};

/// 372 rows.
std::span<const TrackingRow> trackingRows();

/// What the value of a session's parameter must be.
enum class SessionValue {
    Any,
    Id,     ///< letters and digits, long or mixed: no word, and no number of an article
    HexId,  ///< a long hexadecimal number: no term that was searched for
};

struct SessionRow {
    std::string_view name;  ///< in lower case; a * at its end stands for anything
    SessionValue value;
};

/// 36 rows.
std::span<const SessionRow> sessionRows();

}  // namespace velmo::detail
