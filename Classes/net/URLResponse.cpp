#include <velmocore/markup/TagAttributes.h>
#include <velmocore/net/URLResponse.h>
#include <velmocore/readers/Dates.h>
#include <velmocore/text/Comparison.h>
#include <velmocore/text/Trimming.h>

#include <charconv>
#include <utility>

#include "platform/Ascii.h"

namespace velmo {
namespace {

/// The first of equal ones that a careless server sends, as in "text/html, text/html".
String MIMETypeOf(const String& contentType) {
    const std::u16string_view view = contentType;
    std::u16string type(view.substr(0, view.find_first_of(u";,")));
    std::erase_if(type, [](char16_t unit) { return unit <= u' '; });
    for (char16_t& unit : type) unit = detail::ascii::toLower(unit);
    return type.empty() ? String() : String(type);
}

/// What a body comes to is told only if it is sent as it is.
std::int64_t lengthOf(const HTTPHeaders& headers) {
    const String encoding = headers.value(u"Content-Encoding");
    if (!encoding.isEmpty() && !isEqualToStringNoCase(encoding, u"identity")) return -1;
    const std::string text = headers.value(u"Content-Length").utf8();
    std::int64_t length = -1;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), length);
    return result.ec == std::errc() && length >= 0 ? length : -1;
}

std::optional<Date> dateOf(const String& value) {
    return value.isAbsent() ? std::nullopt : dateFromHTTPHeaderValue(value);
}

}  // namespace

URLResponse responseOfHead(const URL& url, HTTPResponseHead head) {
    const String type = head.headers.value(u"Content-Type");
    const auto length = lengthOf(head.headers);
    return {.url = url,
            .statusCode = head.statusCode,
            .headers = std::move(head.headers),
            .MIMEType = MIMETypeOf(type),
            .textEncodingName = headerCharset(type),
            .expectedContentLength = length};
}

String created(const URLResponse& response) { return response.headers.value(u"Date"); }
std::optional<Date> createdDate(const URLResponse& response) { return dateOf(created(response)); }
String expires(const URLResponse& response) { return response.headers.value(u"Expires"); }
std::optional<Date> expiresDate(const URLResponse& response) { return dateOf(expires(response)); }
String lastModified(const URLResponse& response) {
    return response.headers.value(u"Last-Modified");
}
std::optional<Date> lastModifiedDate(const URLResponse& response) {
    return dateOf(lastModified(response));
}
String contentType(const URLResponse& response) { return response.headers.value(u"Content-Type"); }

}  // namespace velmo
