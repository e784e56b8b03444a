// Zip archives made, extracted and listed.
#include <fmt/core.h>

#include <memory>

#include <velmocore/platform/DateFormat.h>
#include <velmocore/system/Archives.h>

#include "Commands.h"
#include "frame/FileBytes.h"

namespace velmo::tool {
namespace {

struct Options {
    std::string archive, to = ".";
    std::vector<std::string> files;
    bool keepParent = false, append = false;
    ExtractionOptions limits;
};

/// A command whose work may throw an InputError, which is the failure of the archive.
Command archiveCommand(std::shared_ptr<Options> options,
                       void (*work)(Report& report, const Options& options)) {
    Command command;
    command.run = [options, work](Report& report) {
        report.nameFile(options->archive);
        try {
            work(report, *options);
        } catch (const InputError& error) {
            report.fail(options->archive, error.what());
        }
    };
    return command;
}

Argument archiveArgument(Options& options) {
    return required("ARCHIVE", options.archive, "a zip archive");
}

/// Why it failed, without the name of the archive, which stands before every reason.
std::string reasonOf(const Error& error, const std::string& archive) {
    std::string reason = error.text.utf8();
    if (reason.starts_with(archive + ": ")) reason.erase(0, archive.size() + 2);
    return reason;
}

void require(bool isDone, const Error& error, const Options& options) {
    if (!isDone) throw InputError(reasonOf(error, options.archive));
}

std::size_t sizeOf(const Options& options) {
    const auto entries = contentsOfArchiveAtPath(options.archive);
    return entries ? entries->size() : 0;
}

void create(Report& report, const Options& options) {
    Error error;
    const bool isAlone = options.files.size() == 1 && !options.append;
    const std::vector<Path> files(options.files.begin(), options.files.end());
    require(isAlone
                ? compressFileAtPath(files[0], options.archive, {.keepParent = options.keepParent},
                                     &error)
                : compressFiles(files, ".", options.archive, {.append = options.append}, &error),
            error, options);
    const std::size_t count = sizeOf(options);
    if (report.json()) return report.printObject(fileObject(options.archive, {{"entries", count}}));
    report.printLine(fmt::format("{}: {} entries", options.archive, count));
}

void extract(Report& report, const Options& options) {
    Error error;
    require(decompressFileAtPath(options.archive, options.to, options.limits, &error), error,
            options);
    const std::size_t count = sizeOf(options);
    if (report.json())
        return report.printObject(
            fileObject(options.archive, {{"output", options.to}, {"entries", count}}));
    report.printLine(fmt::format("{} -> {}, {} entries", options.archive, options.to, count));
}

void printEntry(const std::string& archive, const ArchiveEntry& entry, Report& report) {
    const String date = entry.modified ? stringInISO8601(*entry.modified) : String();
    const std::string name = entry.name.bytes();
    if (report.json())
        return report.printObject(fileObject(archive, {{"name", name},
                                                       {"size", entry.size},
                                                       {"packed", entry.packedSize},
                                                       {"modified", date},
                                                       {"folder", entry.isFolder},
                                                       {"link", entry.isLink},
                                                       {"encrypted", entry.isEncrypted}}));
    report.printLine(fmt::format("{:>12} {:>12}  {:20}  {}", entry.size, entry.packedSize,
                                 date.isAbsent() ? "" : date.utf8(), name));
}

void listEach(Report& report, const Options& options) {
    for (const std::string& archive : options.files) {
        Error error;
        const auto entries = contentsOfArchiveAtPath(archive, &error);
        if (!report.json()) report.printHeading(archive);
        for (const ArchiveEntry& entry : entries.value_or(std::vector<ArchiveEntry>()))
            printEntry(archive, entry, report);
        if (!entries) report.fail(archive, reasonOf(error, archive));
    }
}

Command makeCreateCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = archiveCommand(options, create);
    command.summary = "Make an archive of files and folders, whole or not at all";
    command.examples = {"velmo archive create letters.zip letters --keep-parent"};
    command.arguments = {archiveArgument(*options),
                         list("FILE", options->files,
                              "of one folder what is in it; of several files they by their names")};
    command.arguments.back().isRequired = true;
    command.add({flag("--keep-parent", options->keepParent, "a folder with its name"),
                 flag("--append", options->append,
                      "add to the archive; entries of the same names are replaced"),
                 jsonFlag(session, "a JSON object")});
    return command;
}

Command makeExtractCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = archiveCommand(options, extract);
    command.summary = "Extract an archive; nothing leaves the folder that it goes to";
    command.examples = {"velmo archive extract notes.zip --output extracted"};
    command.arguments = {archiveArgument(*options)};
    command.add(
        {text("-o,--output", "FOLDER", options->to,
              "the folder that the entries come into; the current one if not given"),
         number("--max-size", "BYTES", options->limits.mostBytes, "most bytes that may come out"),
         jsonFlag(session, "a JSON object")});
    return command;
}

Command makeListCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "List the entries of archives: size, packed size, date and name",
        .examples = {"velmo archive list notes.zip"},
        .run =
            [options, &session](Report& report) {
                session.hasSeveralInputs = options->files.size() > 1;
                listEach(report, *options);
            },
    };
    command.arguments = {list("ARCHIVE", options->files, "zip archives")};
    command.arguments.back().isRequired = true;
    command.add({jsonFlag(session, "one JSON object an entry")});
    return command;
}

}  // namespace

std::span<const CommandEntry> archiveActions() {
    static const CommandEntry actions[] = {
        {"create", makeCreateCommand}, {"extract", makeExtractCommand}, {"list", makeListCommand}};
    return actions;
}

}  // namespace velmo::tool
