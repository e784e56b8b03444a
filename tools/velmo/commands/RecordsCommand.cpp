// What keyed buffers hold, and lists of strings made into one.
#include <fmt/core.h>

#include <iostream>
#include <memory>

#include <velmocore/storage/Base64.h>
#include <velmocore/storage/KeyedData.h>
#include <velmocore/storage/KeyedFiles.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    bool strings = false;
    std::string written;
};

Json valueOf(const KeyedRecord& record) {
    if (record.type.tag == KeyedTag::Blob)
        return record.payload ? Json(encodedBase64Data(*record.payload)) : Json();
    const auto value = valueOfKeyedRecord(record);
    if (!value) return {};
    return std::visit([](const auto& held) { return Json(held); }, *value);
}

void printRecords(const std::string& file, Bytes data, Report& report) {
    JsonArray records;
    forEachKeyedRecord(data, [&](const KeyedRecord& record) {
        const Json value = valueOf(record);
        if (report.json())
            records.push_back(
                JsonObject{{"tag", record.type.name}, {"key", record.key}, {"value", value}});
        else
            report.printLine(
                fmt::format("{}  {:08x}  {}", record.type.name, record.key, value.plain()));
        return true;
    });
    const bool isValid = isValidKeyedData(data);
    if (report.json())
        report.printObject(fileObject(file, {{"valid", isValid}, {"records", std::move(records)}}));
    else if (!isValid)
        report.warn(file, "not made of whole records only");
}

void printStrings(const std::string& file, Bytes data, Report& report) {
    const auto strings = stringsForKey(data, KeyOfListedStrings).value_or(std::vector<String>());
    if (report.json())
        return report.printObject(fileObject(file, {{"strings", jsonArray(strings)}}));
    for (const String& string : strings) report.printText(string);
}

void writeStrings(const std::string& file, Report& report) {
    std::vector<String> strings;
    for (std::string line; std::getline(std::cin, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (!line.empty()) strings.push_back(String::fromUTF8(line));
    }
    if (std::cin.bad()) return report.fail("-", "cannot be read");
    if (!writeKeyedStringsToFile(strings, file, false))
        return report.fail(file, "cannot be written");
    if (report.json()) return report.printObject(fileObject(file, {{"strings", strings.size()}}));
    report.printLine(fmt::format("{}: {} strings", file, strings.size()));
}

void run(Report& report, const Options& options) {
    if (!options.written.empty()) return writeStrings(options.written, report);
    forEachFile(report, options.input, [&](const FileName& file, Data&& bytes, Report& own) {
        (options.strings ? printStrings : printRecords)(file.path, bytes, own);
    });
}

}  // namespace

Command makeRecordsCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print the records of keyed data, or write a list of strings as such",
        .examples = {"velmo records list.keyed", "velmo records --strings list.keyed",
                     "velmo records --write-strings list.keyed < notes.txt"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addFileOptions(command, session, options->input,
                   "files of keyed data; none, or -, is standard input");
    command.add({
        flag("--strings", options->strings, "only the strings of lists, a line each"),
        text("--write-strings", "FILE", options->written,
             "write the lines of standard input to FILE as a list of strings"),
        jsonFlag(session, "one JSON object a file"),
    });
    return command;
}

}  // namespace velmo::tool
