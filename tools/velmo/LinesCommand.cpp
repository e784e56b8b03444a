#include <velmocore/text/Lines.h>
#include <velmocore/text/Trimming.h>

#include <memory>

#include "Commands.h"
#include "Input.h"

namespace velmo::tool {
namespace {

void run(Session& session, const std::vector<std::string>& files) {
    forEachFile(session, files, [&](const std::string& file, const std::string& bytes) {
        const std::vector<String> all = lines(readableText(file, bytes));
        if (!session.json) {
            for (const String& line : all) session.printLine(stringByTrimmingFeeds(line).utf8());
            return;
        }
        Json list = Json::array();
        for (const String& line : all) list.push_back(text(line));
        session.printObject({{"file", text(file)}, {"lines", std::move(list)}});
    });
}

}  // namespace

void addLinesCommand(CLI::App& app, Session& session) {
    auto files = std::make_shared<std::vector<std::string>>();
    CLI::App* command = app.add_subcommand("lines",
                                           "Example: velmo lines --json notes.txt\n"
                                           "Take texts and pages apart into lines");
    command->add_option("FILE", *files, "UTF-8 texts, or pages by their extension")->required();
    command->add_flag("--json", session.json,
                      "one JSON object a file, its lines with their line ends");
    command->callback([&session, files] { run(session, *files); });
}

}  // namespace velmo::tool
