// What a command is: its options, arguments and help as data, and the work that it does.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Report.h"

namespace velmo::tool {

/// The command line asks for something that cannot be; what() tells why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An option of a command.
struct Option {
    std::string_view names;  ///< as "-r,--recursive"
    std::string_view value;  ///< what the help calls its value; empty for a flag
    std::string help;
    /// Is called for each use, in the order of the command line; throws a UsageError for a value
    /// that cannot be. A flag gives an empty one.
    std::function<void(const std::string& value)> take;
    std::string_view excludes = {};  ///< the long name of an option that it does not go with
    /// The value stands behind "=" or is left out, and is empty then.
    bool isValueOptional = false;
    std::vector<std::string_view> choices = {};  ///< the values that it takes, if they are names
    std::string usual = {};  ///< its value if it is not given, where that is one to tell
};

Option flag(std::string_view names, bool& target, std::string help);
/// A flag that switches something off.
Option offFlag(std::string_view names, bool& target, std::string help);
Option text(std::string_view names, std::string_view value, std::string& target, std::string help);
/// One that may be given again.
Option texts(std::string_view names, std::string_view value, std::vector<std::string>& target,
             std::string help);
/// A whole number from the least to the most. What the target holds is told as its usual value,
/// but for 0, which is none, and for what bounds nothing.
Option number(std::string_view names, std::string_view value, std::uint64_t& target,
              std::string help, std::uint64_t least = 0,
              std::uint64_t most = std::numeric_limits<std::int64_t>::max());
/// A number from the least to the most.
Option real(std::string_view names, std::string_view value, double& target, std::string help,
            double least, double most);

/// The name that a value must be; a misspelt one is told the nearest. Gives its place in the list.
std::size_t indexOfName(std::string_view name, std::span<const std::string_view> names);
/// One of several names: the target gets what stands beside it.
template <class Value>
Option choice(std::string_view names, std::string_view value, Value& target, std::string help,
              std::initializer_list<std::pair<std::string_view, Value>> choices) {
    std::vector<std::string_view> keys;
    std::vector<Value> values;
    std::string usual;
    for (const auto& [key, meaning] : choices) {
        keys.push_back(key);
        values.push_back(meaning);
        if (meaning == target && usual.empty()) usual = key;
    }
    return {.names = names,
            .value = value,
            .help = std::move(help),
            .take = [&target, keys,
                     values](const std::string& name) { target = values[indexOfName(name, keys)]; },
            .choices = keys,
            .usual = usual};
}

/// An argument that stands by itself.
struct Argument {
    std::string_view name;
    std::string help;
    std::function<void(const std::string& value)> take;
    bool isRequired = false;
    bool isList = false;  ///< takes all that is left
};

Argument required(std::string_view name, std::string& target, std::string help);
Argument list(std::string_view name, std::vector<std::string>& target, std::string help);

/// A command with all that it knows of itself. What its options refer to lives in the work.
struct Command {
    std::string summary = {};                ///< one line
    std::vector<std::string> examples = {};  ///< whole command lines, which run as they stand
    std::vector<Option> options = {};
    std::vector<Argument> arguments = {};
    std::string more = {};  ///< what the help tells behind the options
    std::function<void(Report& report)> run = {};

    void add(std::vector<Option> others);
};

/// A command in a table: its name and how it is made, or the actions that it is one word for.
struct CommandEntry {
    std::string_view name;
    Command (*make)(Session& session);
    std::span<const CommandEntry> actions = {};
    std::string_view summary = {};   ///< of the actions
    std::string_view operands = {};  ///< what all actions take
};

/// --json, with what it prints.
Option jsonFlag(Session& session, std::string help);

/// Reads the arguments of a command. Throws a UsageError if they are not as it wants them.
/// False if they ask for its help.
bool parseArguments(const Command& command, std::vector<std::string> arguments);

/// What the help says of an option, with its usual value.
std::string helpOf(const Option& option);
/// The help of a command.
std::string helpOf(const Command& command, std::string_view name);

/// The names that are most like a misspelt one; none if none is.
std::vector<std::string_view> nearestNames(std::string_view name,
                                           std::span<const std::string_view> names);
/// "; did you mean NAME?", also of two or three that are as near, or nothing.
std::string suggestion(std::string_view name, std::span<const std::string_view> names);

}  // namespace velmo::tool
