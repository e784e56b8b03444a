// Two names and not one: what a page says of itself and what it was decoded with often differ, and
// who looks into garbled text needs to see both. The decoding is that of all commands, so that the
// answer is what the others work with.
#include <fmt/core.h>

#include <memory>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

void print(const std::string& file, const Content& content, Report& report) {
    if (report.json())
        return report.printObject(
            fileObject(file, {{"charset", content.encoding}, {"declared", content.declared}}));
    report.printLine(fmt::format(
        "{}: {} ({})", file, content.encoding,
        content.declared.isAbsent() ? "none declared" : "declared " + content.declared.utf8()));
}

}  // namespace

Command makeCharsetCommand(Session& session) {
    auto options = std::make_shared<InputOptions>();
    Command command = {
        .summary = "Tell the charset that a page or text is decoded with, and the one it names",
        .examples = {"velmo charset --http-charset koi8-r page.html"},
        .run =
            [options](Report& report) {
                forEachContent(report, *options,
                               [](const FileName& file, Content&& content, Report& own) {
                                   print(file.path, content, own);
                               });
            },
    };
    addContentOptions(command, session, *options, Kind::Page);
    command.add({jsonFlag(session, "one JSON object a file")});
    return command;
}

}  // namespace velmo::tool
