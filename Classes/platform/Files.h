// Whole files in and out of memory. Paths are bytes of the file system, UTF-8 as a rule; an
// empty one, or one with a NUL in it, names no file.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// All bytes of a file; absent if it cannot be read. Devices and pipes are read to their end.
VELMO_API std::optional<Data> readFile(const std::string& path);

/// The same of a regular file of at most so many bytes; absent for anything else. For settings
/// and lists, whose names may lead to what never ends: neither a pipe nor a device is waited
/// for.
VELMO_API std::optional<Data> readRegularFile(const std::string& path, std::size_t limit);

/// Writes a file, false if that fails. Atomically: the bytes go to a new file beside it that
/// takes its place and its permissions when all is written, so that a reader or a crash
/// never sees half of it; a symbolic link stays one, and what it leads to is written or made.
/// What is there and no regular file is not replaced: false. Otherwise the file is written in
/// place, and what a failure leaves of it is any part of the bytes.
VELMO_API bool writeFile(const std::string& path, Bytes bytes, bool atomically);

}  // namespace velmo::detail
