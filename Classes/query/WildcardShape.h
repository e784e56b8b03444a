// The normalising pass over a wildcard, for those who keep it in an array of their own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <velmocore/query/Wildcards.h>

namespace velmo::detail {

struct WildcardShape {
    OptimizedWildcard optimized;
    std::size_t length;  ///< of the compacted wildcard, in units
};

/// See optimizeWildcard(). What is after the new length is left over.
WildcardShape shapeWildcard(char16_t* wildcard, std::size_t length, std::uint64_t minCharacters);

/// The position after the element that begins at one. A set ends at its ], or at the end.
std::size_t afterElement(std::u16string_view wildcard, std::size_t position);

}  // namespace velmo::detail
