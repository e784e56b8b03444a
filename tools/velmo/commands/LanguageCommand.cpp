// The lists are read once and shared: a filter never changes while it works, so that all threads
// ask the same one.
#include <fmt/core.h>

#include <memory>

#include <velmocore/platform/Resources.h>

#include "Commands.h"
#include "LanguageLists.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

struct Options {
    InputOptions input;
    std::string lists;
    bool ignoreUmlauts = false;
};

void print(const LanguageFilter& filter, const std::string& file, const String& content,
           Report& report) {
    const String language = filter.languageOfText(content);
    const double ratio = filter.stopWordRatioOfText(content);
    // The ratio belongs to the language that has the most hits, which may be one that does not
    // stand out. Beside an open answer it would speak for a language that is not named.
    const bool decided = !language.isAbsent();
    if (!report.json())
        return report.printLine(
            fmt::format("{:2} {:.3f} {}", decided ? language.utf8() : "-", ratio, file));
    report.printObject(fileObject(
        file, {{"language", language},
               {"iso", decided ? Json(LanguageFilter::ISOCodeForLanguage(language)) : Json()},
               {"ratio", decided ? Json(ratio) : Json()}}));
}

void run(Report& report, const Options& options) {
    const std::string lists = options.lists.empty() ? velmoResourcesDirectory() : options.lists;
    const LanguageFilter filter = readLanguageFilter(report, lists, options.ignoreUmlauts);
    // Told already. Every input would get the same empty answer, and that would look like a
    // result.
    if (filter.languages().empty()) return;
    forEachText(report, options.input, [&](const std::string& file, String&& content, Report& own) {
        print(filter, file, content, own);
    });
}

}  // namespace

Command makeLanguageCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Tell in which language texts and pages are written",
        .examples = {"velmo language page.html"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addContentOptions(command, session, options->input);
    command.add({
        flag("--ignore-umlauts", options->ignoreUmlauts, "compare words without diacritics"),
        text("--lists", "DIR", options->lists, "a folder of StopWordsXX files"),
        jsonFlag(session, "one JSON object a file"),
    });
    return command;
}

}  // namespace velmo::tool
