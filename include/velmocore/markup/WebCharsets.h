#pragma once

#include <string_view>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/text/Encodings.h>

namespace velmo {

// Charsets as browsers of today find them; WebRules::charsets makes the decoding of pages use them.
// Nothing fails; any thread. These are ours.
//
//     encodingOfCharsetLabel(u" Latin1 ");              // 1280
//     webCharset("<!-- <meta charset=koi8-r> -->").encoding;     // 1280

/// The encoding of a label of the encoding standard, in any case and with white space around it.
/// UnknownTextEncoding for all else, and for those labels that browsers refuse to read.
[[nodiscard]] VELMO_API TextEncoding encodingOfCharsetLabel(std::u16string_view label);

/// What a page is in, and who says so.
struct WebCharset {
    TextEncoding encoding = Windows1252TextEncoding;  ///< what browsers read it in
    /// The label that the head of the page names, whether or not it counts; empty if none that is
    /// known.
    String declared = String::empty();
};

/// By its byte-order mark, the label of a header, a meta tag in its first 1024 bytes, its XML
/// declaration, or else by its bytes: UTF-8 if they are and are not all ASCII, else Windows-1252.
[[nodiscard]] VELMO_API WebCharset webCharset(Bytes page, std::u16string_view headerLabel = {});

}  // namespace velmo
