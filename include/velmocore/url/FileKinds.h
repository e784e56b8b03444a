#pragma once

#include <string_view>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

// What kind of file an extension tells. Extensions are given without their full stop and
// compared in any case; an absent one is of no kind. What is markup for the scanner, and in
// which cases names come, stands in markup/FileTypes.h.
//
//     isArchiveType(u"ZIP");                        // true
//     officeTypesIncluding({.PDF = false})[0];      // xls
//
// Any thread may call these.

// Lists in lower case, in a fixed order, made once and kept.
[[nodiscard]] VELMO_API const std::vector<String>& imageTypes();
[[nodiscard]] VELMO_API const std::vector<String>& markupTypes();
[[nodiscard]] VELMO_API const std::vector<String>& richTextTypes();
[[nodiscard]] VELMO_API const std::vector<String>& executableTypes();
[[nodiscard]] VELMO_API const std::vector<String>& multimediaTypes();
[[nodiscard]] VELMO_API const std::vector<String>& archiveTypes();
/// Those of all programs.
[[nodiscard]] VELMO_API const std::vector<String>& officeTypes();
/// All of those above but markup, and "dat".
[[nodiscard]] VELMO_API const std::vector<String>& binaryFileTypes();

/// The programs whose documents count as office documents, beside those of sheets and
/// presentations.
struct OfficePrograms {
    // Each by its name.
    bool MSWord = true;
    bool OpenOffice = true;
    bool StarOffice = true;
    bool WordPerfect = true;
    bool PDF = true;
    bool PostScript = true;
};
/// officeTypes() without those of the programs that are left out.
[[nodiscard]] VELMO_API std::vector<String> officeTypesIncluding(const OfficePrograms& programs);

/// Which files count as binary ones, beside those of the other lists.
struct BinaryFileOptions {
    bool richText = true;     ///< richTextTypes()
    OfficePrograms programs;  ///< officeTypesIncluding()
};
/// binaryFileTypes() without what the options leave out.
[[nodiscard]] VELMO_API std::vector<String> binaryFileTypesIncluding(
    const BinaryFileOptions& options);

/// Whether an extension stands in the list of that name.
[[nodiscard]] VELMO_API bool isImageType(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isMarkupType(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isRichTextType(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isExecutableType(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isMultimediaType(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isArchiveType(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isOfficeType(std::u16string_view extension);
[[nodiscard]] VELMO_API bool isBinaryFileType(std::u16string_view extension);

/// Kinds of multimedia files.
struct MultimediaKinds {
    bool audio = false;     ///< sounds
    bool video = false;     ///< films
    bool embedded = false;  ///< shown by a plug-in
};
/// Whether a file is of one of these kinds. Files that play in neither way, as play lists
/// of some programs, are multimedia files of no kind.
[[nodiscard]] VELMO_API bool isMultimediaType(std::u16string_view extension,
                                              const MultimediaKinds& kinds);

}  // namespace velmo
