// One line for each name that may follow, under the condition that the words before it name a
// command.
#include <fmt/core.h>

#include "Completions.h"
#include "Manual.h"

namespace velmo::tool {
namespace {

constexpr std::string_view Head =
    R"(# Completion of velmo for fish; made by "velmo completions fish".
function __velmo_at --argument-names path
    set -l words
    for word in (commandline -opc)[2..]
        string match -q -- '-*' $word; or set -a words $word
    end
    test "$words[1]" = help; and set -e words[1]
    set -l wanted (string split -n ' ' -- $path)
    set -l count (count $wanted)
    if test $count -eq 0
        test (count $words) -eq 0
    else
        test (count $words) -ge $count; and test "$words[1..$count]" = "$wanted"
    end
end
complete -c velmo -f
)";

std::string quoted(std::string_view text) {
    std::string result = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') result += '\\';
        result += c;
    }
    return result + "'";
}

std::string_view valueFlags(const Option& option) {
    if (option.value.empty() || option.isValueOptional) return "";
    switch (valueOf(option)) {
        case Completed::File:
            return " -r -F";
        case Completed::Folder:
            return " -x -a '(__fish_complete_directories)'";
        default:
            return " -x";
    }
}

std::string optionRow(const std::string& condition, const Option& option) {
    std::string row = condition;
    for (const std::string_view name : namesOf(option))
        row += name.starts_with("--") ? fmt::format(" -l {}", name.substr(2))
                                      : fmt::format(" -s {}", name.substr(1));
    row += valueFlags(option);
    std::string choices;
    for (const std::string_view choice : option.choices)
        (choices += choices.empty() ? "" : " ") += choice;
    if (!choices.empty()) row += " -a " + quoted(choices);
    return row + " -d " + quoted(option.help) + "\n";
}

std::string rowsOf(const CompletedCommand& command) {
    const std::string condition =
        fmt::format("complete -c velmo -n '__velmo_at \"{}\"'", command.name);
    std::string rows;
    for (const auto& [name, summary] : command.words)
        rows += fmt::format("{} -a {} -d {}\n", condition, name, quoted(summary));
    for (const Option& option : command.options) rows += optionRow(condition, option);
    if (command.operands == Completed::File) rows += condition + " -F\n";
    if (command.operands == Completed::Folder)
        rows += condition + " -a '(__fish_complete_directories)'\n";
    return rows;
}

}  // namespace

std::string fishCompletion(std::span<const CompletedCommand> commands) {
    std::string script(Head);
    for (const CompletedCommand& command : commands) script += rowsOf(command);
    for (const Topic& topic : allTopics())
        script += fmt::format(
            "complete -c velmo -n '__velmo_at \"\"; and contains help (commandline -opc)' -a {} -d "
            "{}\n",
            topic.name, quoted(topic.summary));
    return script;
}

}  // namespace velmo::tool
