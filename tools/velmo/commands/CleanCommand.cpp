// Each flag is a step; the steps are done in the order in which the flags were given, on one
// buffer, so that a large text stands in memory once.
#include <memory>

#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Normalisation.h>
#include <velmocore/text/Reformatting.h>
#include <velmocore/text/Tabs.h>
#include <velmocore/text/Trimming.h>

#include "Commands.h"
#include "frame/FileRun.h"

namespace velmo::tool {
namespace {

using Step = std::function<void(std::u16string& text)>;

struct Options {
    InputOptions input;
    std::vector<Step> steps;
};

constexpr std::string_view FormNames[] = {"c", "d", "kc", "kd"};
constexpr NormalizationForm Forms[] = {NormalizationForm::C, NormalizationForm::D,
                                       NormalizationForm::KC, NormalizationForm::KD};
constexpr std::uint64_t WidestTabs = 1000;

void trim(std::u16string& text) {
    const Range kept = trimSpacesInRange(text, {0, text.size()}, true);
    text.erase(kept.end());
    text.erase(0, kept.location);
}

/// Makes one paragraph after the other of the lines of a mail.
void unwrap(std::u16string& text) {
    const String mail = std::exchange(text, {});
    text = reformattedMailing(mail);
}

void run(Report& report, const Options& options) {
    forEachText(report, options.input, [&](const std::string& file, String&& content, Report& own) {
        std::u16string text(std::exchange(content, String()));
        for (const Step& step : options.steps) step(text);
        if (own.json()) return own.printObject(fileObject(file, {{"text", String(text)}}));
        own.printText(text);
    });
}

Option stepFlag(std::vector<Step>& steps, std::string_view name, std::string help, Step step) {
    return {
        .names = name, .value = {}, .help = std::move(help), .take = [&steps, step](const auto&) {
            steps.push_back(step);
        }};
}

std::vector<Option> stepOptions(std::vector<Step>& steps) {
    return {
        stepFlag(steps, "--trim", "cut spaces and line ends off both ends", trim),
        stepFlag(steps, "--collapse", "make each run of white space one space",
                 [](std::u16string& text) { removeMultipleWhiteSpaces(text); }),
        stepFlag(steps, "--feeds", "make each run of line ends one line end", removeMultipleFeeds),
        stepFlag(steps, "--ligatures", "write Latin ligatures as letters",
                 convertLigaturesToCharacters),
        stepFlag(steps, "--unwrap", "join the lines of a mail's paragraphs", unwrap),
        {"--normalize", "FORM", "normalise to form c, d, kc or kd",
         [&steps](const std::string& name) {
             const NormalizationForm form = Forms[indexOfName(name, FormNames)];
             steps.push_back([form](std::u16string& text) { normalizeString(text, form); });
         }},
        {"--tabs", "N", "replace tabs by spaces, in columns of N",
         [&steps](const std::string& given) {
             std::uint64_t width = 0;
             number("--tabs", "N", width, "", 1, WidestTabs).take(given);
             steps.push_back([width](std::u16string& text) { decodeTabs(text, width); });
         }},
    };
}

}  // namespace

Command makeCleanCommand(Session& session) {
    auto options = std::make_shared<Options>();
    Command command = {
        .summary = "Clean texts and pages, step by step as the flags say",
        .examples = {"velmo clean --unwrap --collapse mail.txt"},
        .run = [options](Report& report) { run(report, *options); },
    };
    command.add(stepOptions(options->steps));
    addContentOptions(command, session, options->input);
    command.add({jsonFlag(session, "one JSON object a file")});
    return command;
}

}  // namespace velmo::tool
