// Each flag is a step; the steps are done in the order in which the flags were given.
#include <velmocore/text/Collapsing.h>
#include <velmocore/text/Normalisation.h>
#include <velmocore/text/Reformatting.h>
#include <velmocore/text/Tabs.h>
#include <velmocore/text/Trimming.h>

#include <map>
#include <memory>

#include "Commands.h"
#include "Input.h"

namespace velmo::tool {
namespace {

using Step = std::function<String(const String&)>;

struct Options {
    std::vector<std::string> files;
    /// What each option of the command does with its value; those that are no step are not here.
    std::map<const CLI::Option*, std::function<Step(const std::string& value)>> steps;
};

const std::map<std::string, NormalizationForm> Forms = {{"c", NormalizationForm::C},
                                                        {"d", NormalizationForm::D},
                                                        {"kc", NormalizationForm::KC},
                                                        {"kd", NormalizationForm::KD}};

/// A step that works in place.
template <class Change>
Step inPlace(Change change) {
    return [change](const String& string) -> String {
        std::u16string units(string);
        change(units);
        return units;
    };
}

/// The steps in the order of the command line, where an option may come several times.
std::vector<Step> stepsInOrder(const CLI::App& command, const Options& options) {
    std::vector<Step> steps;
    std::map<const CLI::Option*, std::size_t> uses;
    for (const CLI::Option* option : command.parse_order()) {
        const auto step = options.steps.find(option);
        if (step == options.steps.end()) continue;
        const auto& values = option->results();
        const std::size_t use = uses[option]++;
        steps.push_back(step->second(use < values.size() ? values[use] : ""));
    }
    return steps;
}

void run(Session& session, const Options& options, const CLI::App& command) {
    const std::vector<Step> steps = stepsInOrder(command, options);
    forEachFile(session, options.files, [&](const std::string& file, const std::string& bytes) {
        String content = readableText(file, bytes);
        for (const Step& step : steps) content = step(content);
        if (session.json)
            session.printObject({{"file", text(file)}, {"text", text(content)}});
        else
            session.printLine(content.utf8());
    });
}

}  // namespace

void addCleanCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<Options>();
    CLI::App* command = app.add_subcommand("clean",
                                           "Example: velmo clean --unwrap --collapse mail.txt\n"
                                           "Clean texts and pages, step by step as the flags say");
    command->add_option("FILE", options->files, "UTF-8 texts, or pages by their extension")
        ->required();
    const auto flag = [&](const char* name, const char* help, Step step) {
        CLI::Option* option = command->add_flag(name)->description(help)->multi_option_policy(
            CLI::MultiOptionPolicy::TakeAll);
        options->steps[option] = [step](const std::string&) { return step; };
    };
    const auto valued = [&](const char* name, const char* help) {
        return command->add_option(name)->description(help)->multi_option_policy(
            CLI::MultiOptionPolicy::TakeAll);
    };
    flag("--trim", "cut spaces and line ends off both ends",
         [](const String& string) { return stringByTrimmingSpacesAndFeeds(string, true); });
    flag("--collapse", "make each run of white space one blank",
         [](const String& string) { return stringByRemovingMultipleWhiteSpaces(string); });
    flag("--feeds", "make each run of line ends one line end", stringByRemovingMultipleFeeds);
    flag("--ligatures", "write Latin ligatures as letters", inPlace(convertLigaturesToCharacters));
    flag("--unwrap", "join the lines of a mail's paragraphs", reformattedMailing);
    CLI::Option* normalize = valued("--normalize", "normalise to form c, d, kc or kd");
    normalize->check(CLI::IsMember(Forms));
    options->steps[normalize] = [](const std::string& value) -> Step {
        return [form = Forms.at(value)](const String& s) { return normalizedString(s, form); };
    };
    CLI::Option* tabs = valued("--tabs", "replace tabs by blanks, in columns of N");
    tabs->check(CLI::Range(1, 1000));
    options->steps[tabs] = [](const std::string& value) {
        return inPlace([width = std::stoul(value)](std::u16string& s) { decodeTabs(s, width); });
    };
    command->add_flag("--json", session.json, "one JSON object a file");
    command->callback([&session, options, command] { run(session, *options, *command); });
}

}  // namespace velmo::tool
