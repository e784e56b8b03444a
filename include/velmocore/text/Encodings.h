#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Two number spaces name encodings. Operations on strings and pages take and give string
// encodings; tables of charset names give text encodings. Any thread may call what is told here.

/// The numbers of string encodings. Those without a small number are 0x80000000 and the
/// number of the text encoding.
using StringEncoding = std::uint64_t;
/// The numbers of text encodings.
using TextEncoding = std::uint32_t;

inline constexpr StringEncoding ASCIIStringEncoding = 1;
inline constexpr StringEncoding JapaneseEUCStringEncoding = 3;
inline constexpr StringEncoding UTF8StringEncoding = 4;
inline constexpr StringEncoding ISOLatin1StringEncoding = 5;
inline constexpr StringEncoding ShiftJISStringEncoding = 8;
inline constexpr StringEncoding ISOLatin2StringEncoding = 9;
inline constexpr StringEncoding UTF16StringEncoding = 10;  ///< byte order by its mark
inline constexpr StringEncoding WindowsCP1251StringEncoding = 11;
inline constexpr StringEncoding WindowsCP1252StringEncoding = 12;
inline constexpr StringEncoding WindowsCP1253StringEncoding = 13;
inline constexpr StringEncoding WindowsCP1254StringEncoding = 14;
inline constexpr StringEncoding WindowsCP1250StringEncoding = 15;
inline constexpr StringEncoding ISO2022JPStringEncoding = 21;
inline constexpr StringEncoding MacOSRomanStringEncoding = 30;
inline constexpr StringEncoding UTF16BigEndianStringEncoding = 0x90000100;
inline constexpr StringEncoding UTF16LittleEndianStringEncoding = 0x94000100;
inline constexpr StringEncoding UTF32StringEncoding = 0x8C000100;
inline constexpr StringEncoding KamenickyStringEncoding = 4294967280;
inline constexpr StringEncoding KOI8CS2StringEncoding = 4294967281;
inline constexpr StringEncoding UnknownStringEncoding = 0xFFFFFFFF;

inline constexpr TextEncoding UTF16TextEncoding = 256;
inline constexpr TextEncoding ISOLatin1TextEncoding = 513;
inline constexpr TextEncoding Windows1252TextEncoding = 1280;
inline constexpr TextEncoding ASCIITextEncoding = 1536;
inline constexpr TextEncoding EUCCNTextEncoding = 2352;
inline constexpr TextEncoding ShiftJISTextEncoding = 2561;
inline constexpr TextEncoding Big5TextEncoding = 2563;
inline constexpr TextEncoding Big5HKSCSTextEncoding = 2566;
inline constexpr TextEncoding KamenickyTextEncoding = 40961;
inline constexpr TextEncoding KOI8CS2TextEncoding = 40962;
inline constexpr TextEncoding UTF8TextEncoding = 0x08000100;
inline constexpr TextEncoding UnknownTextEncoding = 0xFFFFFFFF;

/// The same encoding in the other number space; unknown gives unknown.
[[nodiscard]] VELMO_API StringEncoding stringEncodingOf(TextEncoding encoding) noexcept;
[[nodiscard]] VELMO_API TextEncoding textEncodingOf(StringEncoding encoding) noexcept;

/// Whether the library converts from and to an encoding.
[[nodiscard]] VELMO_API bool isEncodingAvailable(TextEncoding encoding) noexcept;

/// The name that pages and headers use for an encoding, in lower case, as "utf-8" and
/// "iso-8859-1"; empty if the encoding is not available.
///
///     ianaName(WindowsCP1252StringEncoding);   // "windows-1252"
[[nodiscard]] VELMO_API std::string_view ianaName(StringEncoding encoding) noexcept;

/// The encoding of the process, UTF-8 at the start, which operations without one of their
/// own use. Any value is taken. May be read and set on any thread.
[[nodiscard]] VELMO_API StringEncoding defaultEncoding() noexcept;
VELMO_API void setDefaultEncoding(StringEncoding encoding) noexcept;

/// The string's bytes in an encoding. A character that the encoding does not have makes the
/// result absent, or with lossy becomes "?". So do an absent string and an encoding that is
/// not available. UTF-16 and UTF-32 begin with a byte-order mark unless the encoding names
/// the order.
///
///     dataUsingEncoding(u"\u20AC", WindowsCP1252StringEncoding)->front();     // 128
///     dataUsingEncoding(u"\u20AC", ISOLatin1StringEncoding).has_value();       // false
[[nodiscard]] VELMO_API std::optional<Data> dataUsingEncoding(const String& string,
                                                              StringEncoding encoding,
                                                              bool lossy = false);

// Converters on plain arrays. Nothing is written beyond the destination, and no half of a
// surrogate pair or of a UTF-8 sequence at its end. Bytes without a meaning become U+FFFD, a
// lone surrogate too on the way to UTF-8; a byte-order mark at the start is left out. Any
// number of threads may convert at once.
//
//     char16_t units[64];
//     convertEncodingToUnicode("caf\xE9", ISOLatin1TextEncoding, units).count;    // 4

/// Statuses of the converters.
inline constexpr int ConverterOutputBufferFull = -8785;
inline constexpr int ConverterUnsupportedEncoding = -8738;

/// There is nothing to make ready; kept for callers that do so at their start.
inline void initUnicodeConverters() noexcept {}

/// What a converter did.
struct Conversion {
    int status;         ///< told with each converter
    std::size_t count;  ///< of units or bytes written
};

/// The status is 0 if all of the source was converted, else ConverterOutputBufferFull.
VELMO_API Conversion convertUTF8ToUnicode(Bytes source, std::span<char16_t> destination);
VELMO_API Conversion convertUnicodeToUTF8(std::u16string_view source,
                                          std::span<std::uint8_t> destination);

/// The status is 1 if all of the source was converted, 0 if the destination was too small. For an
/// encoding that is not available ConverterUnsupportedEncoding, which is not 0 either: look
/// at the count, which is then 0.
VELMO_API Conversion convertEncodingToUnicode(Bytes source, TextEncoding encoding,
                                              std::span<char16_t> destination);

}  // namespace velmo
