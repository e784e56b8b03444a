#include <velmocore/url/URLRepair.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> texts;
};

void run(Session& session, const Options& options) {
    forEachUrl(options.texts, [&](const String& pasted) {
        const String location = possibleInternetLocation(pasted, true);
        const String formatted = stringByFormattingURL(pasted);
        session.noteHit(!location.isAbsent());
        if (session.json)
            session.printObject({{"text", text(pasted)},
                                 {"location", text(location)},
                                 {"formatted", text(formatted)}});
        else
            session.printLine(
                fmt::format("{} ({})", formatted.utf8(),
                            location.isAbsent() ? "no internet location" : "internet location"));
    });
}

}  // namespace

void addUrlRepairCommand(CLI::App& url, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command =
        url.add_subcommand("repair",
                           "Example: velmo url repair 'Ann Example <ann@example.org>'\n"
                           "Clean pasted URLs, and tell whether they can be internet locations");
    addUrlArguments(*command, options->texts, "TEXT");
    command->add_flag("--json", session.json, "one JSON object a text");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
