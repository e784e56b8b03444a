// What the commands that look for wildcards have in common: how units are compared, and how
// hits are shown.
#pragma once

#include <string>
#include <string_view>

#include <velmocore/query/Wildcards.h>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace velmo::tool {

/// Adds --comparison: exact, case, diacritics or both, each also with +fuzzy behind it. The
/// value stays as it is if the option is not given.
CLI::Option* addComparisonOption(CLI::App& command, WildcardComparison& comparison);

/// Adds --color: auto, always or never. Auto, the default, is a terminal that is not dumb,
/// with no NO_COLOR in the environment; it is settled when the option is added.
CLI::Option* addColorOption(CLI::App& command, bool& colors);

/// The parts of a hit's line in colours, or as they are.
class Colors {
public:
    explicit Colors(bool on) : on_(on) {}
    std::string hit(std::string_view text) const { return painted("1;31", text); }
    std::string file(std::string_view text) const { return painted("35", text); }
    std::string number(std::string_view text) const { return painted("32", text); }

private:
    std::string painted(std::string_view color, std::string_view text) const;

    bool on_;
};

/// Units as one line for people: line ends and other controls, which a terminal might obey,
/// become blanks; a lone surrogate becomes U+FFFD.
std::string printable(std::u16string_view units);

}  // namespace velmo::tool
