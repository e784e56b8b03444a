// Kinds of files by their extensions. The lists are what callers show and store, the predicates
// what they ask; both read the same tables. A row is compared only if it is as long as the
// extension, which rules nearly all of them out, so that a table needs no order and no index.
#include <velmocore/url/FileKinds.h>

#include <algorithm>
#include <initializer_list>

#include "text/UnitFold.h"
#include "url/FileKindTables.h"

namespace velmo {
namespace {

using namespace detail;
using Units = std::u16string_view;

void appendTo(std::vector<String>& list, Extensions extensions) {
    for (std::string_view extension : extensions) list.push_back(String::fromUTF8(extension));
}

std::vector<String> listOf(Extensions extensions) {
    std::vector<String> list;
    list.reserve(extensions.size());
    appendTo(list, extensions);
    return list;
}

/// Only rows of the extension's own length are compared.
template <class Fold>
bool isOneOf(Units extension, Extensions extensions, const Fold& fold) {
    return std::any_of(extensions.begin(), extensions.end(), [&](std::string_view row) {
        return row.size() == extension.size() &&
               sameUnits(extension.data(), row.data(), row.size(), fold);
    });
}

bool isOneOf(Units extension, std::initializer_list<Extensions> lists) {
    return std::any_of(lists.begin(), lists.end(), [extension](Extensions list) {
        return isOneOf(extension, list, CaseFold{});
    });
}

}  // namespace

const std::vector<String>& imageTypes() {
    static const std::vector<String> list = listOf(imageExtensions());
    return list;
}
const std::vector<String>& markupTypes() {
    static const std::vector<String> list = listOf(markupExtensions());
    return list;
}
const std::vector<String>& richTextTypes() {
    static const std::vector<String> list = listOf(richTextExtensions());
    return list;
}
const std::vector<String>& executableTypes() {
    static const std::vector<String> list = listOf(executableExtensions());
    return list;
}
const std::vector<String>& multimediaTypes() {
    static const std::vector<String> list = listOf(multimediaExtensions());
    return list;
}
const std::vector<String>& archiveTypes() {
    static const std::vector<String> list = listOf(archiveExtensions());
    return list;
}
const std::vector<String>& officeTypes() {
    static const std::vector<String> list = officeTypesIncluding({});
    return list;
}
const std::vector<String>& binaryFileTypes() {
    static const std::vector<String> list = binaryFileTypesIncluding({});
    return list;
}

std::vector<String> officeTypesIncluding(const OfficePrograms& programs) {
    std::vector<String> list = listOf(officeExtensions());
    if (programs.MSWord) appendTo(list, wordExtensions());
    if (programs.OpenOffice) appendTo(list, openOfficeExtensions());
    if (programs.StarOffice) appendTo(list, starOfficeExtensions());
    if (programs.WordPerfect) appendTo(list, wordPerfectExtensions());
    if (programs.PDF) appendTo(list, pdfExtensions());
    if (programs.PostScript) appendTo(list, postScriptExtensions());
    return list;
}

std::vector<String> binaryFileTypesIncluding(const BinaryFileOptions& options) {
    std::vector<String> list;
    list.reserve(256);
    for (Extensions extensions :
         {imageExtensions(), multimediaExtensions(), archiveExtensions(), executableExtensions()})
        appendTo(list, extensions);
    const std::vector<String> office = officeTypesIncluding(options.programs);
    list.insert(list.end(), office.begin(), office.end());
    if (options.richText) appendTo(list, richTextExtensions());
    // An extension of any program's data: of no kind, but no text either.
    list.push_back(u"dat");
    return list;
}

bool isImageType(Units extension) { return isOneOf(extension, {imageExtensions()}); }
bool isMarkupType(Units extension) { return isOneOf(extension, {markupExtensions()}); }
bool isRichTextType(Units extension) { return isOneOf(extension, {richTextExtensions()}); }
bool isExecutableType(Units extension) { return isOneOf(extension, {executableExtensions()}); }
bool isMultimediaType(Units extension) { return isOneOf(extension, {multimediaExtensions()}); }
bool isArchiveType(Units extension) { return isOneOf(extension, {archiveExtensions()}); }

bool isOfficeType(Units extension) {
    return isOneOf(extension, {officeExtensions(), wordExtensions(), openOfficeExtensions(),
                               starOfficeExtensions(), wordPerfectExtensions(), pdfExtensions(),
                               postScriptExtensions()});
}

bool isBinaryFileType(Units extension) {
    constexpr std::string_view Data[] = {"dat"};
    return isOfficeType(extension) ||
           isOneOf(extension, {imageExtensions(), multimediaExtensions(), archiveExtensions(),
                               executableExtensions(), richTextExtensions(), Data});
}

bool isMultimediaType(Units extension, const MultimediaKinds& kinds) {
    const TableFold lower{lowerCharsTable()};
    return (kinds.audio && isOneOf(extension, audioExtensions(), lower)) ||
           (kinds.video && isOneOf(extension, videoExtensions(), lower)) ||
           (kinds.embedded && isOneOf(extension, embeddedExtensions(), lower));
}

}  // namespace velmo
