// For people a line is printed without its end, as the tool ends all lines alike. Programs get the
// ends as they were: the lines of an object, joined, are the text again.
#include <memory>

#include <velmocore/text/Lines.h>
#include <velmocore/text/Trimming.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

void print(const std::string& file, const String& content, Report& report) {
    const std::vector<String> all = lines(content);
    if (report.json()) return report.printObject(fileObject(file, {{"lines", jsonArray(all)}}));
    for (const String& line : all) report.printLine(stringByTrimmingFeeds(line).utf8());
}

}  // namespace

Command makeLinesCommand(Session& session) {
    auto options = std::make_shared<InputOptions>();
    Command command = {
        .summary = "Take texts and pages apart into lines",
        .examples = {"velmo lines --json notes.txt"},
        .run =
            [options](Report& report) {
                forEachText(report, *options,
                            [](const std::string& file, String&& content, Report& own) {
                                print(file, content, own);
                            });
            },
    };
    addContentOptions(command, session, *options);
    command.add({jsonFlag(session, "one JSON object a file, its lines with their line ends")});
    return command;
}

}  // namespace velmo::tool
