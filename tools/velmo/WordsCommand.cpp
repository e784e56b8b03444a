#include <velmocore/words/Words.h>

#include <memory>

#include "Commands.h"
#include "Input.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> files;
    bool list = false;
};

void runList(Session& session, const std::string& file, const String& content) {
    const std::vector<String> words = wordsUsingDefaultSeparation(content);
    if (!session.json) {
        for (const String& word : words) session.printLine(word.utf8());
        return;
    }
    Json list = Json::array();
    for (const String& word : words) list.push_back(text(word));
    session.printObject({{"file", text(file)}, {"words", words.size()}, {"list", std::move(list)}});
}

void run(Session& session, const Options& options) {
    forEachFile(session, options.files, [&](const std::string& file, const std::string& bytes) {
        const String content = readableText(file, bytes);
        if (options.list) return runList(session, file, content);
        const std::size_t count = numberOfWordsUsingDefaultSeparation(content);
        if (session.json)
            session.printObject({{"file", text(file)}, {"words", count}});
        else
            session.printLine(fmt::format("{:8} {}", count, file));
    });
}

}  // namespace

void addWordsCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("words",
                                           "Example: velmo words --list notes.txt\n"
                                           "Count the words of texts and pages");
    command->add_option("FILE", options->files, "UTF-8 texts, or pages by their extension")
        ->required();
    command->add_flag("--list", options->list, "the words themselves");
    command->add_flag("--json", session.json, "one JSON object a file");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
