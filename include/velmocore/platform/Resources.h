#pragma once

#include <string>

#include <velmocore/platform/Export.h>

namespace velmo {

/// The folder of the library's data files, as UTF-8: the one that the environment variable
/// VELMO_RESOURCES names, if it is set and not empty, else the one that was installed with
/// the library, else, where nothing has been installed, that of the source tree.
///
///     LanguageFilter filter(velmoResourcesDirectory());
[[nodiscard]] VELMO_API std::string velmoResourcesDirectory();

}  // namespace velmo
