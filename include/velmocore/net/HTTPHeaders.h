#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// A field.
struct HTTPHeader {
    String name, value;  ///< as they are sent
};

/// The fields of a request or a response, in their order. Names are compared in any case of ASCII.
/// A plain value: any thread may read one that none changes.
///
///     HTTPHeaders headers;
///     headers.setValue(u"Referer", u"http://h.org/");
///     headers.value(u"referer");    // http://h.org/
class VELMO_API HTTPHeaders {
public:
    /// The value of a field; several of one name are joined by ", ". Absent if there is none.
    [[nodiscard]] String value(std::u16string_view name) const;

    /// Sets a field, in the place of all that have its name; an absent value removes them.
    void setValue(const String& name, const String& value);
    /// Adds a field, whatever is there.
    void add(HTTPHeader header) { headers_.push_back(std::move(header)); }

    /// All fields in their order.
    [[nodiscard]] const std::vector<HTTPHeader>& all() const noexcept VELMO_LIFETIME {
        return headers_;
    }

private:
    std::vector<HTTPHeader> headers_;
};

/// What stands in front of the body of a response.
struct HTTPResponseHead {
    std::int64_t statusCode = 0;  ///< 404, say
    String reason;                ///< "Not Found"; empty where the server gives none
    HTTPHeaders headers;          ///< all others of its lines
};

/// Reads a head: a status line and fields, up to an empty line or to the end of the bytes. Lines
/// end with LF, with or without CR. A line that begins with a space or tab goes on with the value
/// before it; one without a colon, and one whose name is not of visible ASCII, is left out. Values
/// are UTF-8, or ISO Latin 1 where they are not. Absent if the first line is no status line. Time
/// is linear.
///
///     const auto head = responseHeadOfBytes("HTTP/1.1 404 Not Found\r\nDate: today\r\n\r\n");
///     head->statusCode;                // 404
///     head->headers.value(u"date");    // today
[[nodiscard]] VELMO_API std::optional<HTTPResponseHead> responseHeadOfBytes(Bytes bytes);

}  // namespace velmo
