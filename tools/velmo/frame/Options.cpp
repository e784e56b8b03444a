// The kinds of options: how the text of a value becomes what a command asks for.
#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <cmath>

#include "Command.h"

namespace velmo::tool {
namespace {

/// The number that a text is, all of it; throws a UsageError if there is none in the bounds.
template <class Number>
Number numberOf(const std::string& value, Number least, Number most) {
    Number number{};
    const char* const end = value.data() + value.size();
    const auto [at, error] = std::from_chars(value.data(), end, number);
    if (error == std::errc() && at == end && number >= least && number <= most) return number;
    throw UsageError(fmt::format("'{}' is not a number from {} to {}", value, least, most));
}

/// The value that an option has before it is given, as its help tells it.
template <class Number>
std::string usualOf(Number value, Number least, Number most) {
    return value == Number() || value < least || value >= most ? "" : fmt::format("{}", value);
}

}  // namespace

Option flag(std::string_view names, bool& target, std::string help) {
    return {.names = names, .value = {}, .help = std::move(help), .take = [&target](const auto&) {
                target = true;
            }};
}

Option offFlag(std::string_view names, bool& target, std::string help) {
    return {.names = names, .value = {}, .help = std::move(help), .take = [&target](const auto&) {
                target = false;
            }};
}

Option text(std::string_view names, std::string_view value, std::string& target, std::string help) {
    return {names, value, std::move(help), [&target](const auto& given) { target = given; }};
}

Option texts(std::string_view names, std::string_view value, std::vector<std::string>& target,
             std::string help) {
    return {names, value, std::move(help),
            [&target](const auto& given) { target.push_back(given); }};
}

Option number(std::string_view names, std::string_view value, std::uint64_t& target,
              std::string help, std::uint64_t least, std::uint64_t most) {
    return {
        .names = names,
        .value = value,
        .help = std::move(help),
        .take = [&target, least,
                 most](const auto& given) { target = numberOf<std::uint64_t>(given, least, most); },
        .usual = usualOf(target, least, most)};
}

Option real(std::string_view names, std::string_view value, double& target, std::string help,
            double least, double most) {
    return {.names = names,
            .value = value,
            .help = std::move(help),
            .take = [&target, least,
                     most](const auto& given) { target = numberOf<double>(given, least, most); },
            .usual = usualOf(target, least, most)};
}

std::size_t indexOfName(std::string_view name, std::span<const std::string_view> names) {
    const auto found = std::ranges::find(names, name);
    if (found != names.end()) return static_cast<std::size_t>(found - names.begin());
    std::string all;
    for (const std::string_view each : names) (all += all.empty() ? "" : ", ") += each;
    throw UsageError(fmt::format("'{}' is none of {}{}", name, all, suggestion(name, names)));
}

Argument required(std::string_view name, std::string& target, std::string help) {
    return {.name = name,
            .help = std::move(help),
            .take = [&target](const auto& given) { target = given; },
            .isRequired = true};
}

Argument list(std::string_view name, std::vector<std::string>& target, std::string help) {
    return {.name = name,
            .help = std::move(help),
            .take = [&target](const auto& given) { target.push_back(given); },
            .isList = true};
}

Option jsonFlag(Session& session, std::string help) {
    return flag("--json", session.json, std::move(help));
}

void Command::add(std::vector<Option> others) {
    std::ranges::move(others, std::back_inserter(options));
}

}  // namespace velmo::tool
