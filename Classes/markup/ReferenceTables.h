// All names of the HTML standard's character references. The table is written by
// scripts/make-references.
#pragma once

#include <span>
#include <string_view>

namespace velmo::detail {

/// 2,125 names, sorted, each with a semicolon behind it or, if it may do without, a space.
std::string_view referenceNames() noexcept;

/// Two units for each name; the second is 0 if there is none.
std::span<const char16_t> referenceUnits() noexcept;

}  // namespace velmo::detail
