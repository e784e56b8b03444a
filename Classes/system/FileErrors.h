// How operations tell why they failed.
#pragma once

#include <cerrno>
#include <string_view>

#include <velmocore/platform/Error.h>

namespace velmo::detail {

/// The error of the system with that number, about something with a name.
VELMO_API Error systemError(int number, std::string_view about);

/// Passes on whether an operation succeeded; if it did not, errno tells why.
inline bool reported(bool isDone, Error* error, std::string_view about) {
    if (!isDone && error) *error = systemError(errno, about);
    return isDone;
}

/// For "return" where an operation of the system is refused before it is tried.
inline bool refused(int number) {
    errno = number;
    return false;
}

}  // namespace velmo::detail
