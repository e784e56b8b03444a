// Sheets to rows and rows to sheets. The format of an input is told by its name, so standard input
// needs an option; a compressed file is what its name says without the ending of its compression.
#include <fmt/core.h>

#include <iostream>
#include <memory>

#include <velmocore/readers/Sheets.h>

#include "Commands.h"
#include "frame/FileRun.h"
#include "frame/JsonRows.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    SheetFormat format = SheetFormat::None;
    std::uint64_t maxRows = AllRows;
    bool standardQuotes = false, isWriting = false;
};

constexpr std::string_view GzipEnding = ".gz";

SheetFormat formatOf(std::string_view name, const Options& options) {
    if (options.format != SheetFormat::None) return options.format;
    if (name.ends_with(GzipEnding)) name.remove_suffix(GzipEnding.size());
    return sheetFormatOfFile(name);
}

bool isOfValues(SheetFormat format) {
    return format == SheetFormat::CSV || format == SheetFormat::TSV;
}

void printObject(const std::string& file, SheetFormat format, const std::optional<Sheet>& sheet,
                 Report& report) {
    Json rows;
    if (sheet) {
        JsonArray values;
        for (const SheetRow& row : sheet->rows) values.push_back(jsonArray(row));
        rows = std::move(values);
    }
    report.printObject(fileObject(file, {{"format", static_cast<unsigned>(format)},
                                         {"definition", sheet && sheet->definition},
                                         {"columns", sheet ? sheet->numberOfColumns : 0},
                                         {"rows", std::move(rows)}}));
}

void printRows(const std::string& file, const std::optional<Sheet>& sheet, Report& report) {
    report.printHeading(file);
    if (!sheet) return report.printLine("not a sheet");
    for (const SheetRow& row : sheet->rows) {
        std::string line;
        for (const String& field : row)
            line += (&field == row.data() ? "" : "\t") + singleLine(field).utf8();
        report.printLine(line);
    }
}

void print(const FileName& file, Data&& bytes, const Options& options, Report& report) {
    const SheetFormat format = formatOf(file.path, options);
    if (format == SheetFormat::None && !file.wasNamed()) return;
    const Content content = decode(std::move(bytes), file.path, options.input.content);
    std::optional<Sheet> sheet =
        sheetWithText(content.units, format,
                      {.maxRows = options.maxRows, .standardQuotes = options.standardQuotes});
    if (sheet && isOfValues(format)) sheet->definition |= hasSheetDefinitionAttribute(file.path);
    if (report.json()) return printObject(file.path, format, sheet, report);
    printRows(file.path, sheet, report);
}

void writeRow(const std::vector<String>& row, Report& report) {
    std::u16string line;
    for (const String& field : row) appendDoubleQuotedField(line, field, &field != &row.back());
    report.printBytes(utf8(line));
}

void write(Report& report, const Options& options) {
    if (!options.input.names.paths.empty()) throw UsageError("--write reads standard input only");
    const auto reason =
        forEachJsonRow(std::cin, [&](const std::vector<String>& row) { writeRow(row, report); });
    if (!reason.empty()) report.fail("-", reason);
}

void run(Report& report, const Options& options) {
    if (options.isWriting) return write(report, options);
    forEachFile(report, options.input, [&](const FileName& file, Data&& bytes, Report& own) {
        print(file, std::move(bytes), options, own);
    });
}

}  // namespace

Command makeSheetCommand(Session& session) {
    auto options = std::make_shared<Options>();
    ContentOptions& content = options->input.content;
    content.forced = Kind::Text;
    Command command = {
        .summary = "Print the rows of sheets of separated values, or write rows as such",
        .examples = {"velmo sheet --json prices.csv", "velmo sheet --format csv < prices.csv",
                     "velmo sheet --json prices.csv | velmo sheet --write"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addFileOptions(command, session, options->input, "sheets; none, or -, is standard input");
    command.add({
        choice("--format", "NAME", options->format,
               "what every file is, whatever its name says: csv, tsv, id2xf (unquoted) or bib; "
               "standard input needs it",
               {{"csv", SheetFormat::CSV},
                {"tsv", SheetFormat::TSV},
                {"id2xf", SheetFormat::ID2XF},
                {"bib", SheetFormat::BibTeX}}),
        number("-n,--limit", "N", options->maxRows, "how many rows are printed; 0 reads one line"),
        flag(
            "--standard-quotes", options->standardQuotes,
            "two quotes stand for one also in front of a separator, as RFC 4180 has it, where else "
            "the field ends"),
        charsetOption(content.charset),
        maxSizeOption(content.limit, "most bytes that may come out of a compressed file"),
        flag("--write", options->isWriting,
             "write the rows of JSON from standard input, as --json prints them or arrays of "
             "fields, as quoted fields with semicolons"),
        jsonFlag(session, "one JSON object a file"),
    });
    return command;
}

}  // namespace velmo::tool
