#include <velmocore/platform/Resources.h>
#include <velmocore/words/LanguageFilter.h>

#include <memory>

#include "Commands.h"
#include "Input.h"

namespace velmo::tool {
namespace {

struct Options {
    std::vector<std::string> files;
    std::string lists;
    bool ignoreUmlauts = false;
};

void run(Session& session, const Options& options) {
    const std::string lists = options.lists.empty() ? velmoResourcesDirectory() : options.lists;
    const LanguageFilter filter(lists, options.ignoreUmlauts);
    if (filter.languages().empty()) return session.fail(lists, "no lists of stop words");
    forEachFile(session, options.files, [&](const std::string& file, const std::string& bytes) {
        const String content = readableText(file, bytes);
        const String language = filter.languageOfText(content);
        const double ratio = filter.stopWordRatioOfText(content);
        if (!session.json)
            return session.printLine(fmt::format(
                "{:2} {:.3f} {}", language.isAbsent() ? "-" : language.utf8(), ratio, file));
        const bool decided = !language.isAbsent();
        session.printObject(
            {{"file", text(file)},
             {"language", text(language)},
             {"iso", decided ? Json(LanguageFilter::ISOCodeForLanguage(language)) : Json(nullptr)},
             {"ratio", decided ? Json(ratio) : Json(nullptr)}});
    });
}

}  // namespace

void addLanguageCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("language",
                                           "Example: velmo language page.html\n"
                                           "Tell in which language texts and pages are written");
    command->add_option("FILE", options->files, "UTF-8 texts, or pages by their extension")
        ->required();
    command->add_flag("--ignore-umlauts", options->ignoreUmlauts,
                      "compare words without diacritics");
    command->add_option("--lists", options->lists, "a folder of StopWordsXX files");
    command->add_flag("--json", session.json, "one JSON object a file");
    command->callback([&session, options] { run(session, *options); });
}

}  // namespace velmo::tool
