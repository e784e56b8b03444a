// Extensions of files by their kind, in lower case, in the order of the public lists.
#pragma once

#include <span>
#include <string_view>

namespace velmo::detail {

using Extensions = std::span<const std::string_view>;

Extensions imageExtensions() noexcept;
Extensions markupExtensions() noexcept;
Extensions richTextExtensions() noexcept;
Extensions executableExtensions() noexcept;
Extensions multimediaExtensions() noexcept;
Extensions archiveExtensions() noexcept;

// Office documents: those of sheets and presentations, and one list for each program.
Extensions officeExtensions() noexcept;
Extensions wordExtensions() noexcept;
Extensions openOfficeExtensions() noexcept;
Extensions starOfficeExtensions() noexcept;
Extensions wordPerfectExtensions() noexcept;
Extensions pdfExtensions() noexcept;
Extensions postScriptExtensions() noexcept;

// Multimedia files by how they play. These lists are not parts of the one above.
Extensions audioExtensions() noexcept;
Extensions videoExtensions() noexcept;
Extensions embeddedExtensions() noexcept;

}  // namespace velmo::detail
