#include "SearchOptions.h"

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdlib>
#include <map>

#include <velmocore/platform/String.h>
#include <velmocore/text/CharacterSets.h>

namespace velmo::tool {
namespace {

using enum WildcardComparison;

const std::map<std::string, WildcardComparison> Comparisons = {
    {"exact", Exact},
    {"case", CaseInsensitive},
    {"diacritics", DiacriticsInsensitive},
    {"both", Insensitive},
    {"exact+fuzzy", Exact | Fuzzy},
    {"case+fuzzy", CaseInsensitive | Fuzzy},
    {"diacritics+fuzzy", DiacriticsInsensitive | Fuzzy},
    {"both+fuzzy", Insensitive | Fuzzy},
};

bool isColorTerminal() {
    const char* terminal = std::getenv("TERM");
    const char* refused = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) != 0 && !(refused && *refused) &&
           !(terminal && std::string_view(terminal) == "dumb");
}

}  // namespace

CLI::Option* addComparisonOption(CLI::App& command, WildcardComparison& comparison) {
    return command
        .add_option_function<std::string>(
            "--comparison",
            [&comparison](const std::string& name) { comparison = Comparisons.at(name); },
            "what may differ: nothing (exact), case, diacritics or both; case+fuzzy and so on "
            "for words that are only like the sought ones")
        ->check(CLI::IsMember(Comparisons))
        ->type_name("NAME");
}

CLI::Option* addColorOption(CLI::App& command, bool& colors) {
    colors = isColorTerminal();
    return command
        .add_option_function<std::string>(
            "--color",
            [&colors](const std::string& when) {
                colors = when == "always" || (when == "auto" && isColorTerminal());
            },
            "auto, always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}))
        ->type_name("WHEN");
}

std::string Colors::painted(std::string_view color, std::string_view text) const {
    return on_ ? fmt::format("\x1B[{}m{}\x1B[m", color, text) : std::string(text);
}

std::string printable(std::u16string_view units) {
    std::u16string line(units);
    for (char16_t& unit : line)
        if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || isFeedUnit(unit)) unit = u' ';
    return utf8(line);
}

}  // namespace velmo::tool
