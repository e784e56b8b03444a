#include "Completions.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>

namespace velmo::tool {
namespace {

constexpr std::string_view FileNames[] = {"FILE", "PATH", "STORE", "ARCHIVE", "PROGRAM", "TO"};
constexpr std::string_view FolderNames[] = {"FOLDER"};

Completed kindOfName(std::string_view name) {
    if (std::ranges::find(FileNames, name) != std::end(FileNames)) return Completed::File;
    if (std::ranges::find(FolderNames, name) != std::end(FolderNames)) return Completed::Folder;
    return Completed::Text;
}

CompletedCommand completed(std::string name, Command&& command) {
    CompletedCommand result = {.name = std::move(name),
                               .summary = std::move(command.summary),
                               .options = std::move(command.options),
                               .words = {}};
    result.options.push_back(
        {.names = "-h,--help", .value = {}, .help = "the help of the command", .take = {}});
    for (const Argument& argument : command.arguments)
        result.operands = std::max(result.operands, kindOfName(argument.name));
    return result;
}

void addAll(std::vector<CompletedCommand>& all, CompletedCommand group,
            std::span<const CommandEntry> entries, Session& session) {
    const std::string prefix = group.name.empty() ? "" : group.name + " ";
    const std::size_t place = all.size();
    all.push_back(std::move(group));
    for (const CommandEntry& entry : entries) {
        const std::string name = prefix + std::string(entry.name);
        const std::size_t at = all.size();
        if (entry.make)
            all.push_back(completed(name, entry.make(session)));
        else
            addAll(
                all,
                {.name = name, .summary = std::string(entry.summary), .options = {}, .words = {}},
                entry.actions, session);
        all[place].words.emplace_back(entry.name, all[at].summary);
    }
}

}  // namespace

std::vector<CompletedCommand> completedCommands(std::span<const CommandEntry> commands,
                                                Session& session) {
    std::vector<CompletedCommand> all;
    addAll(all, {}, commands, session);
    all.front().words.emplace_back("help", "Tell the options of a command, or of a topic");
    return all;
}

Completed valueOf(const Option& option) {
    return option.choices.empty() ? kindOfName(option.value) : Completed::Choice;
}

std::vector<std::string_view> namesOf(const Option& option) {
    const std::size_t comma = option.names.find(',');
    if (comma == option.names.npos) return {option.names};
    return {option.names.substr(0, comma), option.names.substr(comma + 1)};
}

}  // namespace velmo::tool
