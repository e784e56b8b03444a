// Files compressed and inflated beside themselves, or to standard output.
#include <velmocore/storage/Compression.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "Commands.h"
#include "Input.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> files;
    bool zlib = false, toStandardOutput = false, force = false;
    int level = DefaultCompressionLevel;
    std::size_t limit = std::size_t{1} << 30;
};

constexpr std::string_view GzipSuffix = ".gz", ZlibSuffix = ".z";

/// Makes a new file; one that is there already is an error unless it is to be replaced. It is
/// replaced by a whole one beside it, so that it is not lost if that fails.
bool writeNewFile(Session& session, const std::string& file, Bytes bytes, bool replace) {
    const std::string target = replace ? file + ".part" : file;
    std::FILE* stream = std::fopen(target.c_str(), replace ? "wb" : "wbx");
    bool done = stream && std::fwrite(bytes.data(), 1, bytes.size(), stream) == bytes.size();
    if (stream && std::fclose(stream) != 0) done = false;
    if (done && replace) done = std::rename(target.c_str(), file.c_str()) == 0;
    if (done) return true;
    session.fail(file, std::strerror(errno));
    if (stream) std::remove(target.c_str());
    return false;
}

void deliver(Session& session, const Options& options, const std::string& file,
             const std::string& output, std::size_t before, Bytes bytes) {
    if (options.toStandardOutput || file == "-") {
        std::fwrite(bytes.data(), 1, bytes.size(), stdout);
        return;
    }
    if (!writeNewFile(session, output, bytes, options.force)) return;
    if (session.json)
        session.printObject({{"file", text(file)},
                             {"output", text(output)},
                             {"before", before},
                             {"after", bytes.size()}});
    else
        session.printLine(
            fmt::format("{} -> {}, {} -> {} bytes", file, output, before, bytes.size()));
}

void pack(Session& session, const Options& options) {
    forEachFile(session, options.files, [&](const std::string& file, const std::string& content) {
        const auto packed = dataByCompressingBytes(Bytes(content), options.level, !options.zlib);
        if (!packed) return session.fail(file, "nothing to compress");
        const auto suffix = options.zlib ? ZlibSuffix : GzipSuffix;
        deliver(session, options, file, file + std::string(suffix), content.size(), *packed);
    });
}

/// The name without the suffix of packed files; with ".unpacked" if it has none.
std::string unpackedName(const std::string& file) {
    for (const std::string_view suffix : {GzipSuffix, ZlibSuffix})
        if (file.size() > suffix.size() && file.ends_with(suffix))
            return file.substr(0, file.size() - suffix.size());
    return file + ".unpacked";
}

void unpack(Session& session, const Options& options) {
    forEachFile(session, options.files, [&](const std::string& file, const std::string& content) {
        const auto inflated = dataByInflatingData(Bytes(content), options.limit);
        if (!inflated)
            return session.fail(file, "not in gzip or zlib format, damaged, or above the limit");
        deliver(session, options, file, unpackedName(file), content.size(), *inflated);
    });
}

/// What both commands share.
CLI::App* addCommand(CLI::App& app, Session& session, Options& options, const char* name,
                     const char* help) {
    CLI::App* command = app.add_subcommand(name, help);
    command->add_option("FILE", options.files, "any files; - goes to standard output")->required();
    command->add_flag("--stdout", options.toStandardOutput, "write to standard output");
    command->add_flag("--force", options.force, "replace files that are there");
    command->add_flag("--json", session.json, "one JSON object a file");
    return command;
}

}  // namespace

void addPackCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = addCommand(app, session, *options, "pack",
                                   "Example: velmo pack --level 9 archive.txt\n"
                                   "Compress each file to FILE.gz");
    command->add_flag("--zlib", options->zlib, "in zlib format, to FILE.z");
    command->add_option("--level", options->level, "1 (fast) to 9 (small)")
        ->check(CLI::Range(1, 9));
    command->callback([&session, options] { pack(session, *options); });
}

void addUnpackCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        addCommand(app, session, *options, "unpack",
                   "Example: velmo unpack archive.txt.gz\n"
                   "Inflate each file, of either format, to its name without suffix");
    command->add_option("--limit", options->limit, "most bytes that a file may become")
        ->capture_default_str();
    command->callback([&session, options] { unpack(session, *options); });
}

}  // namespace velmo::tool
