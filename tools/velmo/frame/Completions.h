// What a shell offers behind a half-written command line: made from the same data as help and
// parsing, so that nothing is offered that is not taken.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Command.h"

namespace velmo::tool {

/// What a value or an operand is.
enum class Completed : std::uint8_t { Text, File, Folder, Choice };

/// A command as completions see it: "url key", say, with its options; or the actions that "url" is
/// one word for, or all commands under the empty name.
struct CompletedCommand {
    std::string name;
    std::string summary;
    std::vector<Option> options;
    Completed operands = Completed::Text;
    std::vector<std::pair<std::string, std::string>>
        words;  ///< names that may follow, and what they do
};

/// All of them, the empty name first.
std::vector<CompletedCommand> completedCommands(std::span<const CommandEntry> commands,
                                                Session& session);
/// What the value of an option is.
Completed valueOf(const Option& option);
/// "-r" and "--recursive".
std::vector<std::string_view> namesOf(const Option& option);

// Scripts that a shell reads.
std::string bashCompletion(std::span<const CompletedCommand> commands);
std::string zshCompletion(std::span<const CompletedCommand> commands);
std::string fishCompletion(std::span<const CompletedCommand> commands);

}  // namespace velmo::tool
