#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include <velmocore/platform/String.h>

namespace velmo {

/// What went wrong. Operations that can tell take an "Error* error = nullptr" as their
/// last parameter and fill it only when they fail. A plain value: each thread has its own.
struct Error {
    String domain;          ///< who says so, as u"velmo.file" or u"posix"
    std::int64_t code = 0;  ///< a number within the domain; errno for u"posix"
    String text;            ///< for people
    String path = {};       ///< of the file that it is about, if it is about one
    String reason = {};     ///< why, where the text alone does not tell
};

/// An error for people, in UTF-8.
///
///     printed(Error{u"posix", 2, u"No such file or directory"});    // "posix 2: No such file or directory"
[[nodiscard]] VELMO_API std::string printed(const Error& error);
VELMO_API std::ostream& operator<<(std::ostream& stream, const Error& error);

}  // namespace velmo
