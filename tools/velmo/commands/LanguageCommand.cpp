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

    /// --web is one of the options of all contents.
    bool isOfToday() const { return input.content.web.charsets; }
};

void print(const LanguageFilter& filter, bool isOfToday, const std::string& file,
           const String& content, Report& report) {
    const String language = filter.languageOfText(content);
    const String name = isOfToday ? filter.languageTagOfText(content) : language;
    const double ratio = filter.stopWordRatioOfText(content);
    // The ratio belongs to the language that has the most hits, which may be one that does not
    // stand out. Beside an open answer it would speak for a language that is not named.
    const bool decided = !language.isAbsent();
    if (!report.json())
        return report.printLine(
            fmt::format("{:2} {:.3f} {}", decided ? name.utf8() : "-", ratio, file));
    const std::uint16_t iso = LanguageFilter::ISOCodeForLanguage(language);
    JsonObject object = fileObject(file, {{"language", language},
                                          {"iso", iso ? Json(iso) : Json()},
                                          {"ratio", decided ? Json(ratio) : Json()}});
    if (isOfToday) object.push_back({"tag", name});
    report.printObject(object);
}

void run(Report& report, const Options& options) {
    const std::string lists = options.lists.empty() ? velmoResourcesDirectory() : options.lists;
    const bool isOfToday = options.isOfToday();
    if (isOfToday && options.ignoreUmlauts)
        throw UsageError("--ignore-diacritics is not for --web");
    const LanguageFilter filter = isOfToday
                                      ? readLanguageFilterOfToday(report, lists)
                                      : readLanguageFilter(report, lists, options.ignoreUmlauts);
    // Told already. Every input would get the same empty answer, and that would look like a
    // result.
    if (filter.languages().empty()) return;
    forEachText(report, options.input, [&](const std::string& file, String&& content, Report& own) {
        print(filter, isOfToday, file, content, own);
    });
}

}  // namespace

Command makeLanguageCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Tell in which language texts and pages are written",
        .examples = {"velmo language page.html", "velmo language --web --json page.html"},
        .run = [options](Report& report) { run(report, *options); },
    };
    addContentOptions(command, session, options->input);
    command.add({
        flag("--ignore-diacritics", options->ignoreUmlauts, "compare words without diacritics"),
        text("--lists", "FOLDER", options->lists, "a folder of StopWordsXX files"),
        jsonFlag(session, "one JSON object a file"),
    });
    return command;
}

}  // namespace velmo::tool
