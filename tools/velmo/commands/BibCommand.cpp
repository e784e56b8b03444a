#include <fmt/core.h>

#include <memory>

#include <velmocore/readers/BibTeX.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    std::string type;
};

Json valueOf(const BibTeXEntry& entry) {
    JsonObject value;
    for (const BibTeXField& field : entry.fields) value.push_back({field.name, field.value});
    return value;
}

void printEntry(const BibTeXEntry& entry, Report& report) {
    report.printLine("@" + singleLine(entry.value(CitationKey)).utf8());
    for (const BibTeXField& field : entry.fields)
        if (field.name != CitationKey)
            report.printLine(fmt::format("  {}: {}", singleLine(field.name).utf8(),
                                         singleLine(field.value).utf8()));
}

void print(const std::string& file, const BibTeXEntries& list, Report& report) {
    if (!report.json()) {
        report.printHeading(file);
        for (const BibTeXEntry& entry : list.entries) printEntry(entry, report);
        return;
    }
    JsonArray entries;
    for (const BibTeXEntry& entry : list.entries) entries.push_back(valueOf(entry));
    report.printObject(
        fileObject(file, {{"entries", std::move(entries)}, {"keys", jsonArray(list.keys)}}));
}

void run(Report& report, const Options& options) {
    const String type = options.type.empty() ? String() : String::fromUTF8(options.type);
    forEachContent(report, options.input,
                   [&](const FileName& file, Content&& content, Report& own) {
                       print(file.path, BibTeXEntriesNamed(content.units, type), own);
                   });
}

}  // namespace

Command makeBibCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print the entries of BibTeX files",
        .examples = {"velmo bib refs.bib", "velmo bib --json --type book refs.bib"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addContentOptions(command, session, options->input);
    command.add({
        text("--type", "NAME", options->type, "only entries of this type, such as article"),
        jsonFlag(session, "one JSON object a file"),
    });
    return command;
}

}  // namespace velmo::tool
