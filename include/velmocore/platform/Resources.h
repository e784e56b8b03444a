#pragma once

#include <string>

#include <velmocore/platform/Export.h>

namespace velmo {

/// The folder of the library's data files: the one that the environment variable
/// VELMO_RESOURCES names, if it is set and not empty; else share/velmocore in the tree in which
/// the library stands, or the program that it is part of, wherever that tree has been moved;
/// else velmocore in a folder of XDG_DATA_DIRS, or of /usr/local/share and /usr/share. Empty
/// if there is none. In bytes of the file system. Any thread, while none changes the environment.
///
///     LanguageFilter filter(velmoResourcesDirectory());
[[nodiscard]] VELMO_API std::string velmoResourcesDirectory();

}  // namespace velmo
