#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Range.h>
#include <velmocore/platform/String.h>

namespace velmo {

// A small configuration text: a line is a key, white space and a value, and # begins a
// comment line. There are no equals signs. An empty or absent text has no lines and no values. Any
// thread may call these.
//
//     for (const String& line : configLines(text))
//         if (String host = configValueForKey(line, u"host"); !host.isAbsent()) connect(host);
//     configValueForKey(u"Host h.org", u"host");    // h.org
//     boolValue(u"Yes");                            // true

/// The lines that mean something, without the white space at their ends: no comments, no
/// empty lines and none of a single unit.
[[nodiscard]] VELMO_API std::vector<String> configLines(std::u16string_view string);

/// The value of a line that begins with the key, without regard to case. Absent if the line
/// has another key, or no value.
[[nodiscard]] VELMO_API String configValueForKey(std::u16string_view line, std::u16string_view key);

/// The index of the first key that equals the string without regard to case, or NotFound.
/// The keys end at the first absent one.
[[nodiscard]] VELMO_API std::uint64_t typedValueForKeys(std::u16string_view string,
                                                        std::span<const std::u16string_view> keys);
[[nodiscard]] inline std::uint64_t typedValueForKeys(
    std::u16string_view string, std::initializer_list<std::u16string_view> keys) {
    return typedValueForKeys(string, std::span(keys.begin(), keys.size()));
}

/// Whether the string begins with an integer other than 0, or is "true", "yes" or "on" in
/// any case.
[[nodiscard]] VELMO_API bool boolValue(std::u16string_view string);

}  // namespace velmo
