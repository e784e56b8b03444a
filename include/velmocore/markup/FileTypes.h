#pragma once

#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Which files are markup, by the extension of their name. Extensions are given without
// their full stop; an empty or absent one is none of these. No file is touched. Any thread may call
// these; the lists are copies.
//
//     isMarkupFile(u"index.xhtml");   // true

/// The extensions of pages, in both cases each.
[[nodiscard]] VELMO_API std::vector<String> HTMLFileTypes();
/// The extensions under the user-default key "AdditionalXMLExtensions", kept for the life
/// of the process once there are any.
[[nodiscard]] VELMO_API std::vector<String> CustomXMLFileTypes();
/// The extensions of XML files; then each custom one as it stands and in upper case.
[[nodiscard]] VELMO_API std::vector<String> XMLFileTypes();
[[nodiscard]] VELMO_API std::vector<String> PropertyListFileTypes();
/// XMLFileTypes(), then HTMLFileTypes(), then PropertyListFileTypes().
[[nodiscard]] VELMO_API std::vector<String> MarkupFileTypes();

/// Up to the first ? of the extension, without regard to case.
[[nodiscard]] VELMO_API bool isHTMLExtension(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isXMLExtension(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isPropertyListExtension(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isMarkupExtension(std::u16string_view extension);

// The same tests on the extension of a path.
[[nodiscard]] VELMO_API bool isHTMLFile(std::u16string_view path);
[[nodiscard]] VELMO_API bool isXMLFile(std::u16string_view path);
[[nodiscard]] VELMO_API bool isPropertyListFile(std::u16string_view path);
[[nodiscard]] VELMO_API bool isMarkupFile(std::u16string_view path);

}  // namespace velmo
