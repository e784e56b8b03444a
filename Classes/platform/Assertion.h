// Errors of the program that uses the library end here.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace velmo::detail {

/// Ends the program unless the condition holds, with a line that names the source, the line
/// in it and the expression.
inline void require(bool condition, const char* source, unsigned line, const char* expression) {
    if (condition) return;
    std::fprintf(stderr, "%s:%u: Failed assertion `%s'\n", source, line, expression);
    std::abort();
}

}  // namespace velmo::detail
