// Three tables as case statements, by the words that name the command: what it is called, what the
// value of an option may be, and what may stand anywhere.
#include <fmt/core.h>

#include "Completions.h"
#include "Manual.h"

namespace velmo::tool {
namespace {

constexpr std::string_view Head =
    R"(# Completion of velmo for bash; made by "velmo completions bash".
_velmo() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    local path=velmo words= kind= topics= i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        [[ $path == velmo && ${COMP_WORDS[i]} == help ]] && { topics="@TOPICS@"; continue; }
        case "$path ${COMP_WORDS[i]}" in
)";

/// Where the names of topics stand in Head.
constexpr std::string_view TopicsMark = "@TOPICS@";

constexpr std::string_view Values = R"(                path+=" ${COMP_WORDS[i]}" ;;
        esac
    done
    case "$path $previous" in
)";

constexpr std::string_view Anywhere = R"(    esac
    if [[ -z $kind ]]; then
        case $path in
)";

constexpr std::string_view Tail = R"(        esac
        [[ $current == -* ]] && kind=
        [[ $path == velmo ]] && words+=$topics
    fi
    case $kind in
        file) compopt -o filenames; COMPREPLY=($(compgen -f -- "$current")) ;;
        folder) compopt -o filenames; COMPREPLY=($(compgen -d -- "$current")) ;;
    esac
    COMPREPLY+=($(compgen -W "$words" -- "$current"))
}
complete -F _velmo velmo
)";

std::string_view kindName(Completed kind) {
    constexpr std::string_view Names[] = {"text", "file", "folder", "text"};
    return Names[static_cast<std::size_t>(kind)];
}

std::string joined(const std::vector<std::string_view>& names) {
    std::string all;
    for (const std::string_view name : names) (all += all.empty() ? "" : " ") += name;
    return all;
}

std::string pathOf(const CompletedCommand& command) {
    return command.name.empty() ? "velmo" : "velmo " + command.name;
}

std::string pathRow(const CompletedCommand& command, bool isLast) {
    return fmt::format("            \"{}\"{}\n", pathOf(command), isLast ? ")" : "|\\");
}

std::string valueRows(const CompletedCommand& command) {
    std::string rows;
    for (const Option& option : command.options) {
        if (option.value.empty() || option.isValueOptional) continue;
        std::string pattern;
        for (const std::string_view name : namesOf(option))
            pattern +=
                fmt::format("{}\"{} {}\"", pattern.empty() ? "" : "|", pathOf(command), name);
        rows += fmt::format("        {}) kind={} words=\"{}\" ;;\n", pattern,
                            kindName(valueOf(option)), joined(option.choices));
    }
    return rows;
}

std::string anywhereRow(const CompletedCommand& command) {
    std::string words;
    for (const Option& option : command.options) words += joined(namesOf(option)) + " ";
    for (const auto& [name, summary] : command.words) words += name + " ";
    return fmt::format("            \"{}\") kind={} words=\"{}\" ;;\n", pathOf(command),
                       kindName(command.operands), words);
}

}  // namespace

std::string bashCompletion(std::span<const CompletedCommand> commands) {
    std::string script(Head), topics;
    for (const Topic& topic : allTopics()) (topics += ' ') += topic.name;
    script.replace(script.find(TopicsMark), TopicsMark.size(), topics);
    for (std::size_t i = 1; i < commands.size(); ++i)
        script += pathRow(commands[i], i + 1 == commands.size());
    script += Values;
    for (const CompletedCommand& command : commands) script += valueRows(command);
    script += Anywhere;
    for (const CompletedCommand& command : commands) script += anywhereRow(command);
    return script += Tail;
}

}  // namespace velmo::tool
