#include "Session.h"

#include <fmt/core.h>

namespace velmo::tool {

void Session::fail(std::string_view file, std::string_view reason) {
    noteFailure();
    console.complain(fmt::format("{}: {}", file, reason));
}

int Session::exitCode() const {
    if (failed_) return Failure;
    return anyMiss_ && !anyHit_ ? NoHit : Done;
}

}  // namespace velmo::tool
