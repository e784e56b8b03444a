// The words that name the command are taken off the line; what is left is described to _arguments,
// or, where another name is to follow, to _describe.
#include <fmt/core.h>

#include "Completions.h"
#include "Manual.h"

namespace velmo::tool {
namespace {

constexpr std::string_view Head = R"(#compdef velmo
# Completion of velmo for zsh; made by "velmo completions zsh".
_velmo() {
    local at=velmo
    local -a names topics
    [[ $words[2] == help && CURRENT -gt 2 ]] && {
        shift words; (( CURRENT-- )); topics=(@TOPICS@)
    }
    while (( CURRENT > 2 )); do
        case "$at $words[2]" in
)";

/// Where the names of topics stand in Head.
constexpr std::string_view TopicsMark = "@TOPICS@";

constexpr std::string_view Cases =
    R"(                at+=" $words[2]"; shift words; (( CURRENT-- )) ;;
            *) break ;;
        esac
    done
    case $at in
)";

constexpr std::string_view Tail = R"(    esac
}
_velmo "$@"
)";

/// In single quotes, where brackets and colons have a meaning.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '\'')
            result += "'\\''";
        else if (c == '[' || c == ']' || c == ':' || c == '\\')
            (result += '\\') += c;
        else
            result += c;
    }
    return result;
}

std::string actionOf(const Option& option) {
    switch (valueOf(option)) {
        case Completed::File:
            return "_files";
        case Completed::Folder:
            return "_files -/";
        case Completed::Text:
            return " ";
        case Completed::Choice:
            break;
    }
    std::string choices;
    for (const std::string_view choice : option.choices)
        (choices += choices.empty() ? "" : " ") += choice;
    return "(" + choices + ")";
}

std::string optionRow(const Option& option) {
    const bool hasValue = !option.value.empty() && !option.isValueOptional;
    const std::string value =
        hasValue ? fmt::format(":{}:{}", escaped(option.value), actionOf(option)) : "";
    std::string rows;
    for (const std::string_view name : namesOf(option))
        rows += fmt::format(" \\\n                '*{}[{}]{}'", name, escaped(option.help), value);
    return rows;
}

std::string operandsOf(const CompletedCommand& command) {
    switch (command.operands) {
        case Completed::File:
            return " \\\n                '*:file:_files'";
        case Completed::Folder:
            return " \\\n                '*:folder:_files -/'";
        default:
            return " \\\n                '*: : '";
    }
}

std::string namesRow(const CompletedCommand& command, std::string_view path) {
    std::string row = fmt::format("        \"{}\") names=(", path);
    for (const auto& [name, summary] : command.words)
        row += fmt::format("\n                '{}:{}'", name, escaped(summary));
    return row + (command.name.empty() ? " $topics" : "") +
           ")\n            _describe command names ;;\n";
}

std::string rowOf(const CompletedCommand& command) {
    const std::string path = command.name.empty() ? "velmo" : "velmo " + command.name;
    if (!command.words.empty()) return namesRow(command, path);
    std::string row = fmt::format("        \"{}\") _arguments -s", path);
    for (const Option& option : command.options) row += optionRow(option);
    return row + operandsOf(command) + " ;;\n";
}

}  // namespace

std::string zshCompletion(std::span<const CompletedCommand> commands) {
    std::string script(Head), topics;
    for (const Topic& topic : allTopics())
        topics += fmt::format("'{}:{}' ", topic.name, escaped(topic.summary));
    script.replace(script.find(TopicsMark), TopicsMark.size(), topics);
    for (std::size_t i = 1; i < commands.size(); ++i)
        script += fmt::format("            \"velmo {}\"{}\n", commands[i].name,
                              i + 1 == commands.size() ? ")" : "|\\");
    script += Cases;
    for (const CompletedCommand& command : commands) script += rowOf(command);
    return script += Tail;
}

}  // namespace velmo::tool
