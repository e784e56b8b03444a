#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// A text as lines. A line ends at a feed unit (isFeedUnit()); CR with LF after it is one end. An
// absent text is an empty one. Any thread may call these.
//
//     numberOfLines(u"one\r\n\r\nthree");    // 3
//     lines(u"one\ntwo")[0];                 // "one\n"
//     firstLine(u"one\ntwo");                // one

/// The number of lines, empty ones included; 0 for an empty string. A line end at the very
/// end starts no further line.
[[nodiscard]] VELMO_API std::size_t numberOfLines(std::u16string_view string);
/// The lines, each with its line end.
[[nodiscard]] VELMO_API std::vector<String> lines(std::u16string_view string);
/// What stands before the first feed unit; the string itself if there is none. Looks no
/// further than that.
[[nodiscard]] VELMO_API String firstLine(const String& string);
/// The feed units at the end of the string; empty if there are none.
[[nodiscard]] VELMO_API String feedOfLine(std::u16string_view string);
/// Whether the last unit is a feed unit.
[[nodiscard]] VELMO_API bool hasFeedOfLine(std::u16string_view string);

}  // namespace velmo
