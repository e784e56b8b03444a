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
        options.directory.empty() ? String() : String::fromUTF8(options.directory);
    if (options.direct || options.simplified)
        return pathRelativeToDirectory(
            url, directory,
            {.simplified = options.simplified, .defaultPathComponent = !options.noDefault});
    InvertedPathOptions inverted = options.inverted;
    inverted.removeSessionIDs = !options.keepSessions;
    inverted.letterCase = options.caseSensitive ? Case::Sensitive : Case::Insensitive;
    inverted.pathExtension = String::fromUTF8(options.extension);
    return invertedPathRelativeToDirectory(url, directory, inverted);
}

void run(Session& session, const Options& options) {
    forEachUrl(options.urls, [&](const String& string) {
        const URL url = URLWithNormalizedStringURL(string);
        if (url.isAbsent()) return session.fail(string.utf8(), "not a URL");
        const String path = pathOf(url, options);
        if (session.json)
            session.printObject({{"url", text(string)}, {"path", text(path)}});
        else
            session.printLine(path.utf8());
    });
}

}  // namespace

void addUrlPathCommand(CLI::App& url, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        url.add_subcommand("path",
                           "Example: velmo url path --directory=mirror https://www.example.org/a/\n"
                           "Tell where a mirror keeps pages: the parts of the host inverted");
    addUrlArguments(*command, options->urls);
    command->add_option("--directory", options->directory, "the folder of the mirror");
    command->add_option("--extension", options->extension, "appended to the path");
    command->add_option("--max-host", options->inverted.maxHostComponents,
                        "join host parts beyond so many; 0 for none");
    command->add_option("--max-path", options->inverted.maxPathComponents,
                        "join components beyond so many; 0 for none");
    command->add_flag("--keep-sessions", options->keepSessions, "keep parameters of sessions");
    command->add_flag("--case-sensitive", options->caseSensitive, "keep capitals");
    command->add_flag("--direct", options->direct, "the host as it stands, and then the path");
    command->add_flag("--simplified", options->simplified,
                      "the host as it stands, and one file name for the rest");
    command->add_flag("--no-default", options->noDefault,
                      "with --direct, no index.html for a folder");
    command->add_flag("--json", session.json, "one JSON object a URL");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
