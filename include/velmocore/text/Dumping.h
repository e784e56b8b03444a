#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo {

// Diagnostics: the UTF-16 units of a string, written to the log in one call. An empty or absent
// string writes nothing. Any thread may call these.
//
//     dump(u"ab");           // (ab          : 0061 0062)
//     dumpAsArray(u"ab");    // (unichar string[] = { 0x0061, 0x0062 };)

/// Twelve units a row, each as a character and in four hexadecimal digits.
VELMO_API void dump(std::u16string_view string);
/// The string, and the text of an array of its units for a source file.
VELMO_API void dumpAsArray(std::u16string_view string);

}  // namespace velmo
