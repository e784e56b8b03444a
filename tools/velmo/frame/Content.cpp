#include "Content.h"

#include <algorithm>
#include <utility>

#include <velmocore/markup/Charsets.h>
#include <velmocore/markup/ContentDecoding.h>
#include <velmocore/markup/PlainText.h>
#include <velmocore/markup/WebCharsets.h>
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Trimming.h>

#include "FileBytes.h"

namespace velmo::tool {
namespace {

/// A charset name of a page: the IANA name of what it means, or the name itself if it means
/// nothing; absent for none.
String nameOf(const String& charset, WebRules web) {
    if (charset.isEmpty()) return {};
    const StringEncoding encoding = web.charsets ? stringEncodingOf(encodingOfCharsetLabel(charset))
                                                 : charset2NSStringEncoding(charset);
    return encoding == UnknownStringEncoding ? charset : String::fromUTF8(ianaName(encoding));
}

Content decodedBytes(Data&& bytes, Kind kind, const ContentOptions& options) {
    const String charset = String::fromUTF8(options.httpCharset);
    const StringEncoding encoding =
        options.charset.empty() ? UnknownStringEncoding
                                : charset2NSStringEncoding(String::fromUTF8(options.charset));
    DecodedContent content = decodeContent(std::move(bytes), {.kind = kind,
                                                              .encoding = encoding,
                                                              .encodingName = charset,
                                                              .web = options.web,
                                                              .keepsUTF8 = options.keepsUTF8});
    return {kind,
            std::move(content.text),
            std::string(ianaName(content.encoding)),
            nameOf(content.declared, options.web),
            {},
            std::move(content.utf8)};
}

}  // namespace

Content decode(Data&& bytes, const std::string& name, const ContentOptions& options) {
    if (isGzip(bytes)) bytes = inflated(bytes, options.limit);
    Kind kind = options.forced;
    if (kind == Kind::Unclear)
        kind = contentKind(Bytes(bytes).first(std::min(bytes.size(), ContentHeadSize)), name);
    if (kind == Kind::Unclear) kind = options.unclear;
    if (kind == Kind::Binary) throw InputError("a binary file");
    Content content = decodedBytes(std::move(bytes), kind, options);
    content.web = options.web;
    return content;
}

String readableText(Content&& content) {
    const String units = std::move(content.units);
    return content.kind == Kind::Page
               ? stringByConvertingHtml2PlainText(units, {.web = content.web})
               : units;
}

bool isKnownCharset(const std::string& name) {
    return charset2NSStringEncoding(String::fromUTF8(name)) != UnknownStringEncoding;
}

String singleLine(const String& string) {
    return stringByRemovingMultipleWhiteSpaces(stringByTrimmingSpacesAndFeeds(string, true));
}

}  // namespace velmo::tool
