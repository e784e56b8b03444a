// Whole files in and out of memory. Paths are UTF-8.
#pragma once

#include <optional>
#include <string>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>

namespace velmo::detail {

/// All bytes of a file; absent if it cannot be read. Devices and pipes are read to their end.
VELMO_API std::optional<Data> readFile(const std::string& path);

/// Writes a file, false if that fails. Atomically: the bytes go to a new file beside it that
/// takes its place and its permissions when all is written, so that a reader or a crash
/// never sees half of it; a symbolic link stays one. Otherwise it is written in place.
VELMO_API bool writeFile(const std::string& path, Bytes bytes, bool atomically);

}  // namespace velmo::detail
