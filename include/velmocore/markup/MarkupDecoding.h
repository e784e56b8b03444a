#pragma once

#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/StringFiles.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

// The bytes of a page to its text. The charset may be stated in a header, in the page, in
// both or in neither, and often wrongly: trials in a fixed order, in which the number of
// units U+FFFD decides between two readings, find the encoding. Nothing fails for bad bytes;
// the text has at most as many units as there are bytes, or 32. Any thread.
//
//     const std::string bytes = "<meta charset=koi8-r><p>\xC4\xC1";
//     const MarkupDecoding page = decodeMarkup(bytes, {.contentType = u"text/html"});
//     page.declared;                  // koi8-r
//     page.text.view().substr(24);    // \u0434\u0430

/// What is known of a page besides its bytes.
struct MarkupDecodingOptions {
    /// The value of the Content-Type header. Its charset counts as the encoding's name.
    std::u16string_view contentType = {};
    /// The charset that a header names; used if the content type has none.
    std::u16string_view encodingName = {};
    /// The encoding of pages that name none.
    StringEncoding defaultEncoding = velmo::defaultEncoding();
    /// WebRules::charsets finds the encoding by itself; the one for pages that name none is not
    /// used.
    WebRules web = {};
};

/// A page that was decoded.
struct MarkupDecoding {
    /// Empty for no bytes, absent if no trial gave a text.
    String text;
    /// The encoding of the reading that won.
    StringEncoding encoding = UnknownStringEncoding;
    /// The charset that the page names, as its first reading has it; empty if none.
    String declared = String::empty();
};

/// The text, and what it was in.
[[nodiscard]] VELMO_API MarkupDecoding decodeMarkup(Bytes data,
                                                    const MarkupDecodingOptions& options = {});

/// The text only.
[[nodiscard]] VELMO_API String stringWithMarkupData(Bytes data,
                                                    const MarkupDecodingOptions& options = {});

/// Reads and decodes a file, for which the charset that the page names counts for more than
/// it does for a page from the web. A property list, binary or by its name, is given in its XML
/// form; the encoding is then unknown. The text is absent for a file that cannot be read or gives
/// none.
[[nodiscard]] VELMO_API FileText stringWithMarkupContentsOfFile(const Path& path,
                                                                StringEncoding defaultEncoding);

}  // namespace velmo
