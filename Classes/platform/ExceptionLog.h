// The line that tells of an exception which an operation caught and did not pass on.
#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// Logs the operation, the class it belongs to, the name and the reason of the exception, and the
/// calls that led to the one that logs: those to where it was thrown are gone when it is caught.
VELMO_API void logException(std::string_view operation, std::string_view receiver,
                            std::string_view name, std::string_view reason);

}  // namespace velmo::detail
