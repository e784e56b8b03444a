// What the commands that look for something have in common: how units are compared, what is
// told of the hits, and in which colours.
#pragma once

#include <span>
#include <vector>

#include <velmocore/query/Wildcards.h>

#include "frame/Command.h"

namespace velmo::tool {

/// --comparison, -i and --case-sensitive.
std::vector<Option> comparisonOptions(WildcardComparison& comparison);

/// What is told of hits instead of the hits themselves.
struct HitOptions {
    bool countOnly = false, namesOnly = false;
};

/// -c, -l and -q.
std::vector<Option> hitOptions(Session& session, HitOptions& options, std::string countHelp);

/// --color: auto, always or never. Auto, the default, is a terminal that shows colours.
Option colorOption(Session& session);

/// Adds a text as one line, with its hits in colour.
void addHighlighted(Line& line, std::u16string_view text, std::span<const Range> hits);

}  // namespace velmo::tool
