// The only source that knows the argument parser. It is handed the options as they are, takes
// the command line apart and calls them back; the complaints are our own, so that all begin
// alike and name what was perhaps meant.
#include <fmt/core.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "Command.h"

namespace velmo::tool {
namespace {

/// Whether the next argument is its value.
bool takesNext(const Option& option) { return !option.value.empty() && !option.isValueOptional; }

/// The parser takes an argument in brackets for a list of its own, and apart. What ends with NUL, which
/// no argument can hold, is none.
void hideBrackets(std::vector<std::string>& arguments) {
    for (std::string& argument : arguments)
        if (argument.starts_with('[') && argument.ends_with(']')) argument += '\0';
}
std::string shownBrackets(std::string argument) {
    if (argument.ends_with('\0')) argument.pop_back();
    return argument;
}

/// The parser gives "true" for a flag without a value.
std::string valueOf(const Option& option, const std::string& given) {
    const bool isLeftOut = !takesNext(option) && (option.value.empty() || given == "true");
    return isLeftOut ? std::string() : given;
}

void addOption(CLI::App& app, const Option& option) {
    const auto run = [&option](const std::vector<std::string>& values) {
        try {
            option.take(shownBrackets(valueOf(option, values.back())));
        } catch (const UsageError& error) {
            const auto longName = option.names.substr(option.names.find("--"));
            throw UsageError(fmt::format("{}: {}", longName, error.what()));
        }
        return true;
    };
    CLI::Option* added = app.add_option(std::string(option.names), run);
    // Called for each use and in the order of the command line, as some options are steps.
    added->trigger_on_parse()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    added->type_size(takesNext(option) ? 1 : 0);
    added->expected(takesNext(option) ? 1 : 0);
}

std::vector<std::string_view> longNamesOf(const Command& command) {
    std::vector<std::string_view> names = {"--help"};
    for (const Option& option : command.options)
        names.push_back(option.names.substr(option.names.find("--")));
    return names;
}

[[noreturn]] void complainOfExtra(const Command& command, const std::string& extra) {
    const std::string name = extra.substr(0, extra.find('='));
    const bool takesText = !command.arguments.empty() && command.arguments.front().isRequired;
    throw UsageError(fmt::format(
        "unknown option {}{}{}", name, suggestion(name, longNamesOf(command)),
        takesText
            ? fmt::format("; put -- before a {} that begins with -", command.arguments.front().name)
            : ""));
}

/// Gives each argument its values: one for each, and all that is left for a list.
void distribute(const Command& command, const std::vector<std::string>& values) {
    std::size_t used = 0;
    for (const Argument& argument : command.arguments) {
        if (used == values.size() && argument.isRequired)
            throw UsageError(fmt::format("{} is missing", argument.name));
        do {
            if (used < values.size()) argument.take(shownBrackets(values[used++]));
        } while (argument.isList && used < values.size());
    }
    if (used < values.size())
        throw UsageError(fmt::format("unexpected argument {}", shownBrackets(values[used])));
}

void checkExclusions(const Command& command, const CLI::App& app) {
    for (const Option& option : command.options) {
        const std::string name(option.names.substr(option.names.find("--")));
        if (!option.excludes.empty() && app.count(name) > 0 &&
            app.count(std::string(option.excludes)) > 0)
            throw UsageError(fmt::format("{} does not go with {}", name, option.excludes));
    }
}

}  // namespace

bool parseArguments(const Command& command, std::vector<std::string> arguments) {
    CLI::App app;
    app.allow_extras();
    for (const Option& option : command.options) addOption(app, option);
    std::vector<std::string> values;
    app.add_option("arguments",
                   [&values](const std::vector<std::string>& given) {
                       values = given;
                       return true;
                   })
        ->expected(-1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    hideBrackets(arguments);
    // The parser takes them from the back.
    std::ranges::reverse(arguments);
    try {
        app.parse(arguments);
    } catch (const CLI::CallForHelp&) {
        return false;
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    for (const std::string& extra : app.remaining())
        if (extra != "--") complainOfExtra(command, extra);
    checkExclusions(command, app);
    distribute(command, values);
    return true;
}

}  // namespace velmo::tool
