#pragma once

#include <optional>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>

namespace velmo {

// Base64 (RFC 4648) with the library's own rules for padding and damage. Any thread may call these.
//
//     encodedBase64Data(Bytes("a"));    // YQ==
//     encodebase64(u"a");                 // YQ
//     decodebase64(u"YQ");                // a
//     isBase64String(u"YQ=");             // false

/// No bytes give an absent string. The last group of four is filled up with the padding unit,
/// or stays short if that is 0.
[[nodiscard]] VELMO_API String encodeBase64Bytes(Bytes bytes, char16_t padding);
/// With "=" as padding.
[[nodiscard]] inline String encodedBase64Data(Bytes bytes) {
    return encodeBase64Bytes(bytes, u'=');
}
/// The bytes of the string's UTF-8, without padding.
[[nodiscard]] VELMO_API String encodebase64(const String& string);

/// Three bytes for each group of four units, less one for each "=" at the end of the string. A
/// unit outside the alphabet counts as "A", a line end too: it is not passed over. A last group
/// that is short is filled up the same way and gives three bytes too, of which those after the
/// data are 0. Absent if the string or the result is empty.
[[nodiscard]] VELMO_API std::optional<Data> decodedBase64Data(std::u16string_view string);
/// The text up to the first NUL, read in the encoding. An absent or empty string gives itself;
/// bytes that the encoding does not allow, or none, give an absent one.
[[nodiscard]] VELMO_API String decodebase64UsingEncoding(const String& string,
                                                         StringEncoding encoding);
[[nodiscard]] inline String decodebase64(const String& string) {
    return decodebase64UsingEncoding(string, UTF8StringEncoding);
}

/// Whether the string can be Base64: units of its alphabet, at least one, then up to two "="
/// that make the length a multiple of four; without any, no length that is 1 above one.
[[nodiscard]] VELMO_API bool isBase64String(std::u16string_view string);

}  // namespace velmo
