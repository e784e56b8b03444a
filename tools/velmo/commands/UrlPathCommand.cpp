// Where a mirror keeps a page, in one of three layouts. Inverted is the usual one: the parts of
// the host go from the most general to the most special, so that all pages of a site lie together.
#include <velmocore/url/InvertedPaths.h>
#include <velmocore/url/URLConstruction.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> urls;
    std::string directory, extension;
    InvertedPathOptions inverted;
    bool keepSessions = false, caseSensitive = false;
    bool direct = false, simplified = false, noDefault = false;
};

String pathOf(const URL& url, const Options& options) {
    const String directory =
        // Absent is no directory at all, and the path has no start; an empty one would be a
        // directory.
        options.directory.empty() ? String() : String::fromUTF8(options.directory);
    if (options.direct || options.simplified)
        return pathRelativeToDirectory(
            url, directory,
            {.simplified = options.simplified, .defaultPathComponent = !options.noDefault});
    InvertedPathOptions inverted = options.inverted;
    inverted.removeSessionIDs = !options.keepSessions;
    if (options.caseSensitive) inverted.letterCase = Case::Sensitive;
    inverted.pathExtension = String::fromUTF8(options.extension);
    return invertedPathRelativeToDirectory(url, directory, inverted);
}

void run(Report& report, const Options& options) {
    forEachUrl(report, options.urls, [&](const String& string) {
        const URL url = URLWithNormalizedStringURL(string);
        if (url.isAbsent()) return report.fail(string.utf8(), "not a URL");
        const String path = pathOf(url, options);
        if (report.json())
            report.printObject({{"url", string}, {"path", path}});
        else
            report.printLine(path.utf8());
    });
}

}  // namespace

Command makeUrlPathCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Tell where a mirror keeps pages: the parts of the host inverted",
        .examples = {"velmo url path --directory=mirror https://www.example.org/a/"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addUrlArguments(command, options->urls);
    InvertedPathOptions& inverted = options->inverted;
    command.add({
        text("--directory", "FOLDER", options->directory, "the folder of the mirror"),
        text("--extension", "EXT", options->extension, "appended to the path"),
        number("--max-host", "N", inverted.maxHostComponents,
               "join host parts beyond so many, 0 for none"),
        number("--max-path", "N", inverted.maxPathComponents,
               "join components beyond so many, 0 for none"),
        flag("--keep-sessions", options->keepSessions, "keep parameters of sessions"),
        flag("--case-sensitive", options->caseSensitive, "keep upper-case letters"),
        flag("--direct", options->direct, "the host as it stands, and then the path"),
        flag("--simplified", options->simplified,
             "the host as it stands, and one file name for the rest"),
        flag("--no-default", options->noDefault, "with --direct, no index.html for a folder"),
        jsonFlag(session, "one JSON object a URL"),
    });
    return command;
}

}  // namespace velmo::tool
