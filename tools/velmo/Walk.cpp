#include "Walk.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>

#include <velmocore/markup/FileTypes.h>

#include "Input.h"

namespace velmo::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t LookedAtForZeros = 8192;

bool isBinary(const std::string& file, const std::string& bytes) {
    return bytes.find('\0') < LookedAtForZeros && !isMarkupFile(String::fromUTF8(file));
}

/// The entries of one folder, the last by name first, as a stack takes them.
std::vector<fs::directory_entry> entriesOf(Session& session, const fs::path& folder) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    for (fs::directory_iterator walk(folder, error), end; !error && walk != end;
         walk.increment(error))
        entries.push_back(*walk);
    if (error) session.fail(folder.string(), error.message());
    std::ranges::sort(entries, [](const auto& a, const auto& b) { return b.path() < a.path(); });
    return entries;
}

void addFolder(Session& session, const fs::path& folder, std::vector<std::string>& files) {
    std::vector<fs::directory_entry> stack = entriesOf(session, folder);
    while (!stack.empty()) {
        const fs::directory_entry entry = std::move(stack.back());
        stack.pop_back();
        std::error_code error;
        const fs::file_type type = entry.symlink_status(error).type();
        if (type == fs::file_type::regular) files.push_back(entry.path().string());
        if (type == fs::file_type::directory)
            std::ranges::move(entriesOf(session, entry.path()), std::back_inserter(stack));
    }
}

std::vector<std::string> pathsOf(const WalkOptions& options) {
    if (!options.paths.empty()) return options.paths;
    return {options.recursive ? "." : "-"};
}

bool isFolder(const std::string& path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

}  // namespace

void addWalkOptions(CLI::App& command, WalkOptions& options) {
    command.add_option("FILE", options.paths,
                       "UTF-8 texts, or pages by their extension; none is standard input");
    command.add_flag("-r,--recursive", options.recursive, "all files in folders and below");
    command.add_option("-j,--jobs", options.jobs, "how many threads read; output stays in order")
        ->check(CLI::Range(1, 1024));
}

void Report::send(Session& session) const {
    for (const auto& [file, reason] : failures_) session.fail(file, reason);
    session.print(out_);
    if (anyHit_) session.noteHit(true);
    if (anyMiss_) session.noteHit(false);
}

std::vector<std::string> listFiles(Session& session, const WalkOptions& options) {
    std::vector<std::string> files;
    for (const std::string& path : pathsOf(options)) {
        if (options.recursive && isFolder(path))
            addFolder(session, path, files);
        else
            files.push_back(path);
    }
    return files;
}

void walkFiles(Session& session, const WalkOptions& options,
               const std::function<void(const std::string&, const std::string&, Report&)>& work) {
    const std::vector<std::string> files = listFiles(session, options);
    const std::vector<std::string> paths = pathsOf(options);
    const std::set<std::string> named(paths.begin(), paths.end());
    std::vector<std::optional<Report>> reports(slotsFor(std::max<std::size_t>(options.jobs, 1)));
    runInOrder(
        files.size(), options.jobs,
        [&](std::size_t i, std::size_t slot) {
            Report& report = reports[slot].emplace(session.json);
            std::string reason;
            const auto bytes = readFile(files[i], reason);
            if (!bytes)
                report.fail(files[i], reason);
            else if (named.contains(files[i]) || !isBinary(files[i], *bytes))
                work(files[i], *bytes, report);
        },
        [&](std::size_t, std::size_t slot) { reports[slot]->send(session); });
}

}  // namespace velmo::tool
