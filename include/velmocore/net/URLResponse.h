#pragma once

#include <cstdint>
#include <optional>

#include <velmocore/net/HTTPHeaders.h>
#include <velmocore/platform/Date.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// What a server says of what it sends. A plain value: any thread may read one that none changes.
struct URLResponse {
    URL url = {};                  ///< of the request
    std::int64_t statusCode = 0;   ///< of HTTP; 0 if it is not known
    HTTPHeaders headers = {};      ///< as they were sent
    String MIMEType = {};          ///< in lower case; absent if it is not told
    String textEncodingName = {};  ///< the charset, as it is told; or absent
    /// Bytes that are announced; -1 if that is not told, and for compressed bodies.
    std::int64_t expectedContentLength = -1;
};

/// The response that a head stands for.
///
///     const auto head = responseHeadOfBytes("HTTP/1.1 200 OK\r\nContent-Type: Text/HTML; charset=koi8-r\r\n");
///     const URLResponse response = responseOfHead({}, *head);
///     response.MIMEType;            // text/html
///     response.textEncodingName;    // koi8-r
[[nodiscard]] VELMO_API URLResponse responseOfHead(const URL& url, HTTPResponseHead head);

// Fields of the head as they stand; absent if they are not there. Dates are read by
// dateFromHTTPHeaderValue().

[[nodiscard]] VELMO_API String created(const URLResponse& response);  ///< "Date"
[[nodiscard]] VELMO_API std::optional<Date> createdDate(const URLResponse& response);
[[nodiscard]] VELMO_API String expires(const URLResponse& response);  ///< "Expires"
[[nodiscard]] VELMO_API std::optional<Date> expiresDate(const URLResponse& response);
[[nodiscard]] VELMO_API String lastModified(const URLResponse& response);  ///< "Last-Modified"
[[nodiscard]] VELMO_API std::optional<Date> lastModifiedDate(const URLResponse& response);
[[nodiscard]] VELMO_API String contentType(const URLResponse& response);  ///< "Content-Type"

}  // namespace velmo
