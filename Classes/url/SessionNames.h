// What names a session: parameters of a query or a path, and whole components of a path.
#pragma once

#include <string_view>

namespace velmo::detail {

/// Whether a parameter names a session. The name of the Cold Fusion id is none: it is one only
/// beside the token.
bool isSessionParameter(std::u16string_view name, std::u16string_view value);

/// Whether a component of a path is nothing but a session: "(S(...))" and its like.
bool isSessionComponent(std::u16string_view component);

}  // namespace velmo::detail
