// The help of a command, and what a misspelt name was perhaps meant to be.
#include <fmt/ranges.h>

#include <algorithm>
#include <numeric>

#include "Command.h"

namespace velmo::tool {
namespace {

constexpr std::size_t HelpColumn = 30, LastColumn = 96;

/// A name and its explanation, wrapped at words beside it.
std::string row(std::string_view name, std::string_view help) {
    std::string out = fmt::format("  {:{}}", name, HelpColumn - 2);
    std::size_t column = std::max(HelpColumn, name.size() + 2);
    if (name.size() + 3 > HelpColumn) column = LastColumn;  // begins on a line of its own
    while (!help.empty()) {
        const std::string_view word = help.substr(0, help.find(' '));
        help.remove_prefix(std::min(help.size(), word.size() + 1));
        if (column + word.size() > LastColumn) {
            while (out.back() == ' ') out.pop_back();
            out += '\n' + std::string(HelpColumn, ' ');
            column = HelpColumn;
        }
        (out += word) += ' ';
        column += word.size() + 1;
    }
    while (out.back() == ' ') out.pop_back();
    return out + "\n";
}

/// The long option below its short one's column, so that all names begin alike.
std::string shownNames(const Option& option) {
    std::string names(option.names);
    if (const std::size_t comma = names.find(','); comma != names.npos)
        names.insert(comma + 1, " ");
    else
        names.insert(0, "    ");
    if (option.isValueOptional) return fmt::format("{}[={}]", names, option.value);
    return option.value.empty() ? names : fmt::format("{} {}", names, option.value);
}

std::string usageOf(const Command& command, std::string_view name) {
    std::string usage = fmt::format("Usage: velmo {} [OPTION...]", name);
    for (const Argument& argument : command.arguments) {
        const std::string shown = std::string(argument.name) + (argument.isList ? "..." : "");
        usage += argument.isRequired ? " " + shown : " [" + shown + "]";
    }
    return usage + "\n";
}

/// How many letters must be changed, added, left out or swapped with their neighbour to make
/// one word of the other.
std::size_t distanceOf(std::string_view a, std::string_view b) {
    // Three rows of the table of distances are enough: a swap looks two rows back.
    std::vector<std::size_t> before, row(b.size() + 1), next(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        next[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            next[j + 1] = std::min({row[j + 1] + 1, next[j] + 1, row[j] + (a[i] != b[j])});
            if (i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j])
                next[j + 1] = std::min(next[j + 1], before[j - 1] + 1);
        }
        before = row;
        row.swap(next);
    }
    return row.back();
}

}  // namespace

std::string helpOf(const Option& option) {
    return option.usual.empty() ? option.help
                                : fmt::format("{} (default: {})", option.help, option.usual);
}

std::string helpOf(const Command& command, std::string_view name) {
    std::string help;
    for (const std::string& example : command.examples)
        help += (help.empty() ? "Example: " : "         ") + example + "\n";
    help += command.summary + "\n\n" + usageOf(command, name);
    if (!command.arguments.empty()) help += "\nArguments:\n";
    for (const Argument& argument : command.arguments) help += row(argument.name, argument.help);
    help += "\nOptions:\n";
    for (const Option& option : command.options) help += row(shownNames(option), helpOf(option));
    help += row("-h, --help", "this help");
    if (!command.more.empty()) help += "\n" + command.more + "\n";
    return help + fmt::format("\nman velmo-{} tells more.", name.substr(0, name.find(' ')));
}

std::vector<std::string_view> nearestNames(std::string_view name,
                                           std::span<const std::string_view> names) {
    std::vector<std::string_view> nearest;
    // A third of the letters may differ; a name farther off would be a riddle and no help.
    std::size_t least = std::max<std::size_t>(name.size() / 3, 1);
    for (const std::string_view each : names) {
        const std::size_t distance = distanceOf(name, each);
        if (distance > least) continue;
        if (distance < least) nearest.clear();
        least = distance;
        nearest.push_back(each);
    }
    return nearest;
}

std::string suggestion(std::string_view name, std::span<const std::string_view> names) {
    const auto nearest = nearestNames(name, names);
    // Names that many are like are too short to tell anything by.
    if (nearest.empty() || nearest.size() > 3) return "";
    return fmt::format("; did you mean {}?", fmt::join(nearest, " or "));
}

}  // namespace velmo::tool
