// How the bytes of a page are read, before that is done: a page that is read as UTF-8, which most
// are, need not be decoded to be scanned.
#pragma once

#include <string_view>

#include <velmocore/markup/MarkupDecoding.h>

namespace velmo::detail {

struct MarkupReading {
    /// The bytes without a mark, if what decodeMarkup() gives is what they say in UTF-8, in which
    /// broken sequences become U+FFFD; else null.
    std::string_view utf8 = {};
    /// What decodeMarkup() gives, but for the text if that is still to be made.
    MarkupDecoding page = {};

    bool isUTF8() const { return utf8.data() != nullptr; }
};

MarkupReading readMarkup(Bytes data, const MarkupDecodingOptions& options);

/// The charset that a page in UTF-8 names, as markupCharset() has it.
String markupCharsetOfBytes(std::string_view utf8, const WebRules& web = {});

/// The same of defaultURLEncoding().
StringEncoding defaultURLEncodingOfBytes(std::string_view utf8, const WebRules& web);

}  // namespace velmo::detail
