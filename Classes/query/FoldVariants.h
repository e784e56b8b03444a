// The other way through a conversion table: what units become a given one.
#pragma once

#include <span>

#include <velmocore/text/ConversionTables.h>

namespace velmo::detail {

/// All units that a table folds to the given one, in their order. The table is one of those
/// that a WildcardComparison can name. Made at first use.
std::span<const char16_t> unitsFoldedTo(char16_t unit, const ConversionTable& table);

}  // namespace velmo::detail
