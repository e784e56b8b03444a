// Two questions about a pasted text that need not agree: whether it can be a place on the net, and
// what is left when what people and mail programs put around it is taken off. Both are shown
// always, as the second may be useful where the first says no.
#include <fmt/core.h>

#include <velmocore/url/URLRepair.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> texts;
    WebRules web;
};

void run(Report& report, const Options& options) {
    forEachUrl(report, options.texts, [&](const String& pasted) {
        const String location = possibleInternetLocation(pasted, true);
        const String formatted = readText(stringByFormattingURL(pasted), options.web);
        report.noteHit(!location.isAbsent());
        if (report.json())
            report.printObject(
                {{"text", pasted}, {"location", location}, {"formatted", formatted}});
        else
            report.printLine(
                fmt::format("{} ({})", formatted.utf8(),
                            location.isAbsent() ? "no internet location" : "internet location"));
    });
}

}  // namespace

Command makeUrlRepairCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Clean pasted URLs, and tell whether they can be internet locations",
        .examples = {"velmo url repair 'Ann Example <ann@example.org>' www.example.org"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addUrlArguments(command, options->texts, "TEXT");
    command.add({webFlag(options->web, "what is a whole URL is written as browsers do"),
                 jsonFlag(session, "one JSON object a text")});
    return command;
}

}  // namespace velmo::tool
