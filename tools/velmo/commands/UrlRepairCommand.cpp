// Two questions about a pasted text that need not agree: whether it can be a place on the net, and
// what is left when what people and mail programs put around it is taken off. Both are shown
// always, as the second may be useful where the first says no.
#include <fmt/core.h>

#include <velmocore/url/URLRepair.h>

#include <memory>

#include "UrlCommands.h"

namespace velmo::tool {
namespace {

void run(Report& report, const std::vector<std::string>& texts) {
    forEachUrl(report, texts, [&](const String& pasted) {
        const String location = possibleInternetLocation(pasted, true);
        const String formatted = stringByFormattingURL(pasted);
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
    auto options = std::make_shared<std::vector<std::string>>();
    Command command = {
        .summary = "Clean pasted URLs, and tell whether they can be internet locations",
        .examples = {"velmo url repair 'Ann Example <ann@example.org>' www.example.org"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addUrlArguments(command, *options, "TEXT");
    command.add({jsonFlag(session, "one JSON object a text")});
    return command;
}

}  // namespace velmo::tool
