// Excerpts on a terminal.
#pragma once

#include <span>
#include <string>

#include <velmocore/platform/String.h>
#include <velmocore/query/Wildcards.h>

#include "SearchOptions.h"

namespace velmo::tool {

/// A text as printable() makes it one line, with the hits of the wildcards in colour.
std::string highlighted(std::u16string_view text, std::span<const String> wildcards,
                        WildcardComparison comparison, Colors colors);

}  // namespace velmo::tool
