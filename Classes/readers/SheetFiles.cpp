// Sheets in files, entries of bibliographies among them.
#include <sys/xattr.h>

#include <velmocore/readers/BibTeX.h>
#include <velmocore/readers/Sheets.h>
#include <velmocore/text/Paths.h>
#include <velmocore/text/StringFiles.h>

#include <map>

namespace velmo {
namespace {

using View = std::u16string_view;

// A name in front of which the system wants its namespace.
constexpr const char* DefinitionAttribute = "user.com.velmo-works.tsv-header";

constexpr std::size_t FieldsOfUnit = 16, FieldsOfText = 1'000'000;

struct Extension {
    View name;
    SheetFormat format;
};

constexpr Extension Extensions[] = {
    {u"csv", SheetFormat::CSV}, {u"tsv", SheetFormat::TSV},     {u"tdf", SheetFormat::TSV},
    {u"tab", SheetFormat::TSV}, {u"id2xf", SheetFormat::ID2XF}, {u"bib", SheetFormat::BibTeX},
};

SheetRow rowOf(const BibTeXEntry& entry, const std::map<View, std::size_t>& places) {
    SheetRow row(places.size(), String::empty());
    for (const BibTeXField& field : entry.fields) row[places.at(field.name)] = field.value;
    return row;
}

/// A few entries with a key of their own each would make a field for each key and entry.
bool isReasonable(const BibTeXEntries& list, std::size_t length) {
    const std::size_t most = FieldsOfUnit * length + FieldsOfText;
    return list.keys.empty() || list.entries.size() <= most / list.keys.size();
}

std::optional<Sheet> sheetOfEntries(View text) {
    BibTeXEntries list = BibTeXEntriesNamed(text);
    if (!isReasonable(list, text.size())) return {};
    std::map<View, std::size_t> places;
    for (const String& key : list.keys) places.emplace(key, places.size());
    Sheet sheet;
    sheet.rows.push_back(list.keys);
    for (const BibTeXEntry& entry : list.entries) sheet.rows.push_back(rowOf(entry, places));
    return sheet;
}

}  // namespace

SheetFormat sheetFormatOfFile(const Path& path) {
    const String extension = lowercasePathExtension(path.string());
    for (const Extension& row : Extensions)
        if (extension == row.name) return row.format;
    return SheetFormat::None;
}

bool hasSheetDefinitionAttribute(const Path& path) {
    return getxattr(path.c_str(), DefinitionAttribute, nullptr, 0) > 0;
}

std::optional<Sheet> sheetWithText(View text, SheetFormat format, SheetOptions options) {
    if (format == SheetFormat::None) return {};
    if (format == SheetFormat::BibTeX) return sheetOfEntries(text);
    options.quoted = format != SheetFormat::ID2XF;
    Sheet sheet = valuesSeparatedByTab(text, options);
    sheet.definition |= !options.quoted;
    return sheet;
}

std::optional<Sheet> sheetWithContentsOfFile(const Path& path, StringEncoding encoding,
                                             std::size_t maxRows) {
    const SheetFormat format = sheetFormatOfFile(path);
    if (format == SheetFormat::None) return {};
    const String text = stringWithContentsOfFile(path, encoding).text;
    if (text.isAbsent()) return {};
    std::optional<Sheet> sheet = sheetWithText(text, format, {.maxRows = maxRows});
    const bool isQuoted = format == SheetFormat::CSV || format == SheetFormat::TSV;
    if (isQuoted && !sheet->definition) sheet->definition = hasSheetDefinitionAttribute(path);
    return sheet;
}

}  // namespace velmo
