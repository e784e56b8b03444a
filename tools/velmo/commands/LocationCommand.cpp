// Files that hold a URL: read and made.
#include <fmt/core.h>

#include <filesystem>
#include <memory>

#include <velmocore/storage/InternetLocations.h>

#include "Commands.h"
#include "frame/FileBytes.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    std::string url;
    bool isText = false, force = false;
};

/// Standard input has no name that tells its form; each is tried.
InternetLocation locationOfInput() {
    const Data bytes = readFile("-");
    const InternetLocation listed = resolveInternetLocationData({bytes, u"webloc"});
    return listed ? listed : resolveInternetLocationData({bytes, u"url"});
}

InternetLocation locationOf(const std::string& path) {
    if (path == "-") return locationOfInput();
    // The library tells nothing of why a file cannot be read.
    readHead(path, 1);
    return resolveInternetLocation(path);
}

/// Folders hold other files besides, and those in which archives keep the forks of files.
bool isLeftOut(const FileName& file) {
    if (file.wasNamed()) return false;
    const std::string name = std::filesystem::path(file.path).filename();
    return name.starts_with("._") || !isInternetLocationFile(file.path);
}

void printLocation(const FileName& file, Report& report) {
    if (isLeftOut(file)) return;
    const InternetLocation found = locationOf(file.path);
    report.noteHit(!found.url.isEmpty());
    if (report.json())
        return report.printObject(
            fileObject(file.path, {{"url", found.url}, {"name", found.name}}));
    if (found.url.isEmpty()) return;
    std::string line = report.session().hasSeveralInputs ? file.path + ": " : "";
    line += found.url.utf8();
    report.printLine(found.name.isEmpty() ? line : line + "  " + found.name.utf8());
}

void createLocation(const FileName& file, const Options& options, Report& report) {
    std::error_code error;
    const std::filesystem::path path(file.path);
    // A link is there even if it leads nowhere.
    if (!options.force && std::filesystem::exists(std::filesystem::symlink_status(path, error)))
        throw InputError("is there already; --force replaces it");
    const String url = String::fromUTF8(options.url);
    const bool isText = options.isText || path.extension() == ".url";
    if (!(isText ? createURL(url, path) : createInternetLocation(url, path)))
        throw InputError("cannot be written");
    if (report.json()) return report.printObject(fileObject(file.path, {{"url", url}}));
    report.printLine(fmt::format("{}: {}", file.path, options.url));
}

void run(Report& report, const Options& options) {
    forEachName(report, options.input, [&](const FileName& file, Report& own) {
        if (options.url.empty())
            printLocation(file, own);
        else
            createLocation(file, options, own);
    });
}

}  // namespace

Command makeLocationCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Print the URLs that location files hold, or make such files",
        .examples = {"velmo location bookmark.webloc",
                     "velmo location --create https://example.org/ example.webloc"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addFileOptions(command, session, options->input,
                   "files such as .webloc and .url; none, or -, is standard input");
    command.add({
        text("--create", "URL", options->url, "make each FILE one that holds the URL"),
        flag("--shortcut", options->isText,
             "make the text of a shortcut, as for names in .url, and no property list"),
        flag("-f,--force", options->force, "replace files that are there already"),
        jsonFlag(session, "one JSON object a file"),
    });
    return command;
}

}  // namespace velmo::tool
