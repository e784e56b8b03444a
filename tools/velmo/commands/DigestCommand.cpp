// Fingerprints of the bytes as they stand in the file: nothing is decoded or inflated, so that
// they compare with those that other programs print.
#include <fmt/core.h>

#include <memory>

#include <velmocore/storage/Digests.h>
#include <velmocore/text/Checksums.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    bool md5 = false, sha1 = false, crc = false;
};

JsonObject digestsOf(Bytes bytes, const Options& options) {
    JsonObject digests;
    if (options.md5) digests.push_back({"md5", MD5DigestStringValue(bytes)});
    if (options.sha1) digests.push_back({"sha1", SHA1DigestStringValue(bytes)});
    if (options.crc) digests.push_back({"crc", fmt::format("{:08x}", crc32(bytes))});
    return digests;
}

void print(const std::string& file, JsonObject digests, Report& report) {
    if (report.json()) return report.printObject(fileObject(file, std::move(digests)));
    std::string line;
    // Two spaces and the name last, as the tools that check such lists expect it.
    for (const auto& [name, value] : digests) line += value.plain() + "  ";
    report.printLine(line + file);
}

void run(Report& report, const Options& options) {
    // No default: a digest that nobody chose would be kept and compared as another one.
    if (!options.md5 && !options.sha1 && !options.crc)
        throw UsageError("one of --md5, --sha1 and --crc is missing");
    forEachFile(report, options.input, [&](const FileName& file, Data&& bytes, Report& own) {
        print(file.path, digestsOf(bytes, options), own);
    });
}

}  // namespace

Command makeDigestCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print fingerprints of files, in hexadecimal",
        .examples = {"velmo digest --sha1 *.html"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addFileOptions(command, session, options->input, "any files; none, or -, is standard input");
    command.add({
        flag("--md5", options->md5, "MD5"),
        flag("--sha1", options->sha1, "SHA-1"),
        flag("--crc", options->crc, "the library's own CRC-32"),
        jsonFlag(session, "one JSON object a file"),
    });
    return command;
}

}  // namespace velmo::tool
