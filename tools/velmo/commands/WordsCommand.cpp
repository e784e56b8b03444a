// Counting makes no strings, and a list for people is printed word by word; only an object needs
// all words at once. So the common uses take no memory beyond the text.
#include <fmt/core.h>

#include <memory>

#include <velmocore/words/Words.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    bool list = false;
};

void printList(const std::string& file, const String& content, Report& report) {
    if (report.json()) {
        const std::vector<String> words = wordsUsingDefaultSeparation(content);
        return report.printObject(
            fileObject(file, {{"words", words.size()}, {"list", jsonArray(words)}}));
    }
    report.printHeading(file);
    parseWordsWithHandler(content, [&](std::u16string_view text, Range word) {
        report.printLine(utf8(text.substr(word.location, word.length)));
    });
}

void printCount(const std::string& file, const String& content, Report& report) {
    const std::size_t count = numberOfWordsUsingDefaultSeparation(content);
    if (report.json())
        report.printObject(fileObject(file, {{"words", count}}));
    else
        report.printLine(fmt::format("{:8} {}", count, file));
}

}  // namespace

Command makeWordsCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Count the words of texts and pages",
        .examples = {"velmo words --list notes.txt"},
        .run =
            [options](Report& report) {
                forEachText(report, options->input,
                            [&](const std::string& file, String&& content, Report& own) {
                                (options->list ? printList : printCount)(file, content, own);
                            });
            },
    };
    addContentOptions(command, session, options->input);
    command.add({flag("--list", options->list, "the words themselves"),
                 jsonFlag(session, "one JSON object a file")});
    return command;
}

}  // namespace velmo::tool
