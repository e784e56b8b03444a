// Chooses the two units of a wildcard by which a text is searched for it.
#pragma once

#include "query/WildcardPattern.h"

namespace velmo::detail {

/// Anchors of the core of a pattern whose sets end where they seem to. The core is folded
/// through the table, unless it is null.
PatternAnchors anchorsOf(std::u16string_view core, WildcardType type, const ConversionTable* table);

}  // namespace velmo::detail
