#pragma once

#include <cstdint>

#include <velmocore/platform/String.h>

namespace velmo {

/// What went wrong. Operations that can tell take an "Error* error = nullptr" as their
/// last parameter and fill it only when they fail.
struct Error {
    String domain;          ///< who says so, as u"velmo.file" or u"posix"
    std::int64_t code = 0;  ///< a number within the domain; errno for u"posix"
    String text;            ///< for people
};

}  // namespace velmo
