#pragma once

#include <string_view>

#include <velmocore/markup/ContentKinds.h>
#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>
#include <velmocore/text/WebRules.h>

namespace velmo {

/// What is known of bytes that are to be decoded.
struct ContentDecodingOptions {
    ContentKind kind = ContentKind::Page;  ///< Page, or else a text
    /// In which it is, whatever it says itself.
    StringEncoding encoding = UnknownStringEncoding;
    // What the header of a page says; see markup/MarkupDecoding.h.
    std::u16string_view contentType = {};
    std::u16string_view encodingName = {};
    WebRules web = {};  ///< how a page is read
    /// Leaves a page that WebRules::charsets finds to be UTF-8 in its bytes: for
    /// Page::pageWithUTF8(), which needs no more. They take half the memory of its text.
    bool keepsUTF8 = false;
};

/// A page or a text that was decoded.
struct DecodedContent {
    String text;  ///< of a page, with its markup; absent if no encoding could read it
    StringEncoding encoding = UnknownStringEncoding;  ///< what it was in
    String declared;  ///< the charset that a page names; empty or absent if none
    Data utf8 = {};   ///< instead of the text, if that was asked for; with its byte-order mark
};

/// Decodes a page or a text, and forgets its bytes: those of a large one are given back to the
/// system while they are decoded, so that it never stands in memory twice. A page goes by
/// decodeMarkup(), unless it is in UTF-16 without a mark, or in UTF-32. A text is in the encoding
/// of its mark, in UTF-16 if the zeros of its bytes say so, in UTF-8 if its bytes are, and else in
/// Windows-1252. Marks are no part of what comes out. Time is linear. Any thread.
///
///     const std::string_view bytes = "caf\xE9";
///     decodeContent(Data(bytes.begin(), bytes.end()), {.kind = ContentKind::Text}).text;    // caf\u00E9
[[nodiscard]] VELMO_API DecodedContent decodeContent(Data&& bytes,
                                                     const ContentDecodingOptions& options = {});

}  // namespace velmo
