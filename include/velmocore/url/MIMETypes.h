#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// What a MIME type tells of a document, in the many forms that servers send: with
// parameters, with "x-", in any case. An absent type is of no kind. Any thread may call
// these.
//
//     isHTMLMIMEType(u"text/html; charset=utf-8");    // true
//     MIMETypeForExtension(u"html");                  // text/html

/// Any text, and the applications of XML and HTML.
[[nodiscard]] VELMO_API bool isMarkupMIMEType(std::u16string_view type);
/// Any text counts, whatever it says to be.
[[nodiscard]] VELMO_API bool isHTMLMIMEType(std::u16string_view type);
// Each by its name.
[[nodiscard]] VELMO_API bool isJSONMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isWebArchiveMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isImageMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isTextMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isPlainTextMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isStylesheetOrScriptMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isRTFMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isPDFMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isPostScriptMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isMSWordMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isMSPowerPointMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isMSExcelMIMEType(std::u16string_view type);
/// Any of those three.
[[nodiscard]] VELMO_API bool isMSOfficeMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isOpenOfficeMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isStarOfficeMIMEType(std::u16string_view type);
[[nodiscard]] VELMO_API bool isMultimediaMIMEType(std::u16string_view type);

/// The type of files with that extension, which is given without its full stop and in any
/// case; absent if there is none. The shared MIME database of the machine is asked first,
/// if there is one, and a table of our own next. What neither knows and is an image or
/// plays is given a type by its kind, as image/mjpg.
[[nodiscard]] VELMO_API String MIMETypeForExtension(std::u16string_view extension);

/// The extension that files of that type are best given; absent if there is none. The type
/// may have parameters and be in any case.
///
///     extensionForMIMEType(u"image/jpeg");    // jpg
[[nodiscard]] VELMO_API String extensionForMIMEType(std::u16string_view type);

}  // namespace velmo
