#pragma once

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>

namespace velmo {

// Strings from bytes. Bytes that the encoding does not allow, a null pointer and an encoding
// that is not available give an absent string; no bytes give the empty one. ASCII alone
// never fails: a byte above 127 becomes U+FFFD. A byte-order mark at the start is not part of
// the text. Lengths count bytes. Any thread may call what is told here.
//
//     stringWithNullTerminatedCString("caf\xE9", ISOLatin1StringEncoding);    // caf\u00E9

[[nodiscard]] VELMO_API String stringWithData(Bytes data, StringEncoding encoding);
/// The bytes need no terminator; null is absent.
[[nodiscard]] VELMO_API String stringWithBytes(const void* bytes, std::size_t length,
                                               StringEncoding encoding);
[[nodiscard]] VELMO_API String stringWithCString(const char* cString, std::size_t length,
                                                 StringEncoding encoding);
[[nodiscard]] VELMO_API String stringWithNullTerminatedCString(const char* cString,
                                                               StringEncoding encoding);

// Strings and files. No operation tells why it failed: reading gives an absent string, writing
// false.

/// Whether an encoding asks for detection: 0, and 4294967280 and above.
[[nodiscard]] constexpr bool isUnknownEncoding(StringEncoding encoding) {
    return encoding == 0 || encoding >= KamenickyStringEncoding;
}

/// A file that was read.
struct FileText {
    String text;                  ///< absent if the file cannot be read, or not in the encoding
    StringEncoding usedEncoding;  ///< what it was read in, or would have been
};

/// Reads a file in an encoding, without any fallback. An unknown encoding is detected: by a
/// byte-order mark, else UTF-8 if the bytes are; and if they are not, the file is read as
/// ASCII.
///
///     const FileText notes = stringWithContentsOfFile("notes.txt", UnknownStringEncoding);
///     notes.text.isAbsent();                           // true: there is no such file
///     notes.usedEncoding == ASCIIStringEncoding;       // true
[[nodiscard]] VELMO_API FileText stringWithContentsOfFile(const Path& path,
                                                          StringEncoding encoding);

/// Writes a string to a file. Atomically: it goes to a file beside it first, which then takes
/// its place and its permissions; a symbolic link stays one. False if the string is absent or
/// has a character that the encoding does not have: nothing is touched then. False also if the
/// bytes could not be stored: written atomically the file is then as it was; otherwise it is cut
/// or missing, with any part of the bytes in it.
VELMO_API bool writeToFile(const String& string, const Path& path, bool atomically,
                           StringEncoding encoding);

/// Whether a file was written, and in which encoding it was to be.
struct FileWriting {
    bool isWritten;               ///< whether all of it stands in the file
    StringEncoding usedEncoding;  ///< what was chosen
    /// The first of the two.
    explicit operator bool() const { return isWritten; }
};

// The same in an encoding that is chosen.

/// In defaultEncoding().
VELMO_API FileWriting writeToFileUsingDefaultEncoding(const String& string, const Path& path,
                                                      bool atomically);
/// In UTF-16, the form that strings have.
VELMO_API FileWriting writeToFileUsingFastestEncoding(const String& string, const Path& path,
                                                      bool atomically);
/// In the first of ASCII, Latin 1 that has all of its characters; else in the shorter of UTF-8
/// and UTF-16, which alone has half a surrogate pair.
VELMO_API FileWriting writeToFileUsingSmallestEncoding(const String& string, const Path& path,
                                                       bool atomically);

/// The encodings that these two choose.
[[nodiscard]] VELMO_API StringEncoding fastestEncoding(std::u16string_view string) noexcept;
[[nodiscard]] VELMO_API StringEncoding smallestEncoding(std::u16string_view string) noexcept;

}  // namespace velmo
