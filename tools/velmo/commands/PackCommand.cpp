// Files compressed and inflated beside themselves, or to standard output.
// A result is whole in memory before its file is made, so that a damaged input leaves nothing
// behind.
#include <fmt/core.h>

#include <memory>

#include <velmocore/storage/Compression.h>

#include "Commands.h"
#include "frame/FileBytes.h"
#include "frame/FileRun.h"
#include "frame/NewFile.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    bool zlib = false, toStandardOutput = false, force = false;
    std::uint64_t level = 0, limit = UsualLimit;
};

/// ".z" and not ".Z", which is an older format that zlib does not read.
constexpr std::string_view GzipSuffix = ".gz", ZlibSuffix = ".z";

/// What was made of a file, and where it goes.
struct Made {
    const std::string& file;
    std::string output;
    std::size_t before;
    Bytes bytes;
};

void deliver(const Options& options, const Made& made, Report& report) {
    // Standard input has no name from which one for the result could be made.
    if (options.toStandardOutput || made.file == "-") return report.printBytes(charsOf(made.bytes));
    // The file itself stays, unlike with other packers: nothing is lost if the result is not
    // wanted.
    writeNewFile(made.output, made.bytes, options.force, made.file);
    if (report.json())
        report.printObject(fileObject(
            made.file,
            {{"output", made.output}, {"before", made.before}, {"after", made.bytes.size()}}));
    else
        report.printLine(fmt::format("{} -> {}, {} -> {} bytes", made.file, made.output,
                                     made.before, made.bytes.size()));
}

void pack(Report& report, const Options& options) {
    const int level =
        // The option begins at 1, so 0 is the value that nobody can give.
        options.level == 0 ? DefaultCompressionLevel : static_cast<int>(options.level);
    const std::string suffix(options.zlib ? ZlibSuffix : GzipSuffix);
    forEachFile(report, options.input, [&](const FileName& file, Data&& bytes, Report& own) {
        const auto packed = dataByCompressingBytes(bytes, level, !options.zlib);
        // The library makes nothing of no bytes.
        if (!packed) throw InputError("nothing to compress");
        deliver(options, {file.path, file.path + suffix, bytes.size(), *packed}, own);
    });
}

/// The name without the suffix of packed files; with ".unpacked" if it has none.
std::string unpackedName(const std::string& file) {
    for (const std::string_view suffix : {GzipSuffix, ZlibSuffix})
        if (file.size() > suffix.size() && file.ends_with(suffix))
            return file.substr(0, file.size() - suffix.size());
    // Never the name of the file itself: with --force it would be replaced by its own content.
    return file + ".unpacked";
}

void unpack(Report& report, const Options& options) {
    forEachFile(report, options.input, [&](const FileName& file, Data&& bytes, Report& own) {
        // Not the library's operation, which takes one stream: files of gzip are often several,
        // one after the other.
        const Data made = inflated(bytes, options.limit);
        deliver(options, {file.path, unpackedName(file.path), bytes.size(), made}, own);
    });
}

/// What both commands share.
void addOptions(Command& command, Session& session, Options& options) {
    addFileOptions(command, session, options.input,
                   "any files; none, or -, goes from standard input to standard output");
    command.add({
        flag("--stdout", options.toStandardOutput, "write to standard output"),
        flag("-f,--force", options.force, "replace files that are there"),
        jsonFlag(session, "one JSON object a file"),
    });
}

}  // namespace

Command makePackCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Compress each file to FILE.gz",
        .examples = {"velmo pack --level 9 archive.txt"},
        .run = [options](Report& report) { pack(report, *options); },
    };
    command.add({flag("--zlib", options->zlib, "in zlib format, to FILE.z"),
                 number("--level", "N", options->level, "1 (fast) to 9 (small)", 1, 9)});
    addOptions(command, session, *options);
    return command;
}

Command makeUnpackCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Inflate each file, of gzip or zlib format, to its name without suffix",
        .examples = {"velmo unpack archive.txt.gz"},
        .run = [options](Report& report) { unpack(report, *options); },
    };
    command.add(
        {number("--max-size", "BYTES", options->limit, "most bytes that a file may become")});
    addOptions(command, session, *options);
    return command;
}

}  // namespace velmo::tool
