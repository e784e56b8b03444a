#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/text/Encodings.h>

namespace velmo {

// Names of charsets, as headers and pages give them, to encodings. Case and everything that
// is not alphanumeric do not count, and the usual misspellings are known. Any thread.
//
//     charset2NSStringEncoding(u"ISO_8859-1");    // ISOLatin1StringEncoding
//     charset2NSStringEncoding(u"no-such-set");   // UnknownStringEncoding, with a line of log

/// UnknownTextEncoding for a name that is not known, and for one of less than three
/// alphanumeric units.
[[nodiscard]] VELMO_API TextEncoding charset2CFStringEncoding(std::u16string_view name);

/// UnknownStringEncoding for a name that is not known or whose encoding is not available.
/// This is logged, except for an empty name, "auto", and names that begin with %, /, 0, < or
/// >, which are left-overs of templates.
[[nodiscard]] VELMO_API StringEncoding charset2NSStringEncoding(std::u16string_view name);

/// The encoding of a Mac script by what follows "mac" in a charset's name, in lower
/// case; nothing is Mac Roman, 0.
[[nodiscard]] VELMO_API TextEncoding macEncoding(std::u16string_view rest);

// The same under the names they have on strings.
[[nodiscard]] inline TextEncoding CFEncodingFromName(std::u16string_view name) {
    return charset2CFStringEncoding(name);
}
[[nodiscard]] inline StringEncoding NSEncodingFromName(std::u16string_view name) {
    return charset2NSStringEncoding(name);
}

}  // namespace velmo
