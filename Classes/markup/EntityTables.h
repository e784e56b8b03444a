// The named character references of HTML 4, both ways.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace velmo::detail {

struct EntityRow {
    std::string_view name;
    char16_t unit;
};

/// The list in its order.
std::span<const EntityRow> entityRows() noexcept;

/// The longest name in the list.
inline constexpr std::size_t MaxEntityName = 8;

/// The unit of a name, with regard to case; 0 if the list does not have it.
char16_t unitOfEntity(std::string_view name) noexcept;

/// The name of a unit; empty if it has none.
std::string_view entityOfUnit(char16_t unit) noexcept;

}  // namespace velmo::detail
