// What names a session: parameters of a query or a path, and whole components of a path.
#pragma once

#include <cstddef>
#include <string_view>

namespace velmo::detail {

/// Whether a parameter whose name is that of a row of sessionRows() names a session. The name of
/// the Cold Fusion id is none there: it is one only beside the token.
bool isValueOfSession(std::size_t row, std::u16string_view value);

/// Whether a component of a path is nothing but a session: "(S(...))" and its like.
bool isSessionComponent(std::u16string_view component);

}  // namespace velmo::detail
