// What folder metadata holds: all records, or the Finder comment of one name.
#include <fmt/core.h>
#include <sys/stat.h>

#include <memory>

#include <velmocore/storage/Base64.h>
#include <velmocore/storage/DSStore.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

constexpr const char* StoreName = ".DS_Store";

struct Options {
    InputOptions input;
    std::string name;
};

Json jsonOf(std::monostate) { return {}; }
Json jsonOf(const Data& bytes) { return encodedBase64Data(bytes); }
template <class Value>
Json jsonOf(const Value& value) {
    return value;
}

JsonObject objectOf(const DSStoreEntry& entry) {
    return {{"name", entry.filename()},
            {"codec", stringOfDSStoreCode(entry.codec())},
            {"type", stringOfDSStoreCode(static_cast<std::uint32_t>(entry.type()))},
            {"value", std::visit([](const auto& value) { return jsonOf(value); }, entry.value())}};
}

/// Calls the handler for each record; what cannot be read is told.
void forEachRecord(const DSStore& store, const std::string& file, Report& report,
                   FunctionRef<bool(const DSStoreEntry& entry)> handler) {
    const std::size_t damaged = store.forEachEntry(handler);
    if (damaged > 0)
        report.fail(file, fmt::format("damaged: {} nodes cannot be read to their end", damaged));
}

void printRecords(const DSStore& store, const std::string& file, Report& report) {
    JsonArray records;
    if (!report.json()) report.printHeading(file);
    forEachRecord(store, file, report, [&](const DSStoreEntry& entry) {
        JsonObject record = objectOf(entry);
        if (report.json())
            records.push_back(std::move(record));
        else
            report.printLine(fmt::format("{}  {}  {}  {}", record[0].value.plain(),
                                         record[1].value.plain(), record[2].value.plain(),
                                         record[3].value.plain()));
        return true;
    });
    if (report.json()) report.printObject(fileObject(file, {{"records", std::move(records)}}));
}

void printComment(const DSStore& store, const std::string& file, const std::string& name,
                  Report& report) {
    String comment;
    const String wanted = String::fromUTF8(name);
    forEachRecord(store, file, report, [&](const DSStoreEntry& entry) {
        const auto* text = std::get_if<String>(&entry.value());
        if (text && entry.codec() == FinderCommentCodec && entry.filename() == wanted)
            comment = *text;
        return comment.isAbsent();
    });
    report.noteHit(!comment.isAbsent());
    if (report.json())
        return report.printObject(fileObject(file, {{"name", name}, {"comment", comment}}));
    if (!comment.isAbsent()) report.printText(comment);
}

/// A folder stands for the file in it.
std::string fileOf(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return path;
    return path + (path.ends_with('/') ? "" : "/") + StoreName;
}

void run(Report& report, const Options& options) {
    InputOptions input = options.input;
    NameOptions& names = input.names;
    if (!names.recursive)
        for (std::string& path : names.paths) path = fileOf(path);
    if (names.include.empty()) names.include = {StoreName};
    forEachFile(report, input, [&](const FileName& file, Data&& bytes, Report& own) {
        const auto store = DSStore::storeWithFile(DSStoreFile::fileWithData(std::move(bytes)));
        if (!store) throw InputError("not a file of folder metadata");
        if (options.name.empty())
            printRecords(*store, file.path, own);
        else
            printComment(*store, file.path, options.name, own);
    });
}

}  // namespace

Command makeCommentsCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print what the Finder keeps of the files in a folder, or the comment of one",
        .examples = {"velmo comments photos", "velmo comments photos --name notes.txt"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addFileOptions(command, session, options->input,
                   "folders, whose .DS_Store is read, or such files by any name; none, or -, is "
                   "standard input");
    command.add({
        text("--name", "NAME", options->name,
             "only the Finder comment of the file of that name; . is the folder itself"),
        jsonFlag(session, "one JSON object a file"),
    });
    return command;
}

}  // namespace velmo::tool
