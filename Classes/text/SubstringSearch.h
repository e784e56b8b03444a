// The platform's search for a substring with its options, composed characters included.
#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/text/StringRanges.h>

namespace velmo::detail {

/// The first occurrence in the range, which must lie in the text, or the last one with
/// BackwardsSearch. No range if there is none, or nothing is sought.
VELMO_API Range rangeOfString(std::u16string_view text, std::u16string_view sought, Range range,
                              SearchOptions options);

}  // namespace velmo::detail
