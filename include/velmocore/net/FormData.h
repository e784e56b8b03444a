#pragma once

#include <initializer_list>
#include <optional>
#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/PropertyList.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/Format.h>

namespace velmo {

/// The fields of a multipart form: the body of each part, as data, under the name of its field,
/// and for a part with a file name that name, as a string, under NAME_filename.
///
/// A part counts if it begins with "Content-Disposition: form-data;" and names its field; others
/// are passed over, and of two with one name the later counts. Absent without a boundary or data,
/// and if the data does not end as a form does, with -- and CR LF. Time is linear. Any thread may
/// call what is told here.
///
///     const auto form = formDataUsingBoundary("--B\r\nContent-Disposition: form-data; name=\"a\"\r\n"
///                                             "\r\none\r\n--B--\r\n", u"B");
///     charsOf(*form->at(u"a").as<Data>());    // "one"
[[nodiscard]] VELMO_API std::optional<PropertyListDictionary> formDataUsingBoundary(
    Bytes data, const String& boundary);

// Strings of downloaded bytes, and bytes of strings.

/// The bytes as text; absent if they are not in the encoding.
[[nodiscard]] VELMO_API String stringUsingUTF8Encoding(Bytes data);
[[nodiscard]] VELMO_API String stringUsingEncoding(Bytes data, StringEncoding encoding);

/// Appends the UTF-8 bytes of the string; an absent one adds nothing.
VELMO_API void appendString(Data& data, std::u16string_view string);
/// The same for a format with its arguments; see replaceStringWithFormat().
VELMO_API void appendFormat(Data& data, std::u16string_view format,
                            std::initializer_list<FormatArgument> arguments = {});

}  // namespace velmo
