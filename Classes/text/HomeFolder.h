// Where the user's home folder is, by an environment.
#pragma once

#include <string_view>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/text/HomeFolder.h>

namespace velmo::detail {

/// A variable of the environment; null if it is not set.
using EnvironmentVariable = FunctionRef<const char*(const char* name)>;

/// The folder that a path names, without slashes at its end; absent unless the path is absolute,
/// as the conventions for such variables demand.
VELMO_API String absoluteFolder(std::string_view path);

/// That of a variable; absent if it is not set, too.
VELMO_API String folderOfVariable(EnvironmentVariable variable, const char* name);

VELMO_API String homeFolderOf(EnvironmentVariable variable);

}  // namespace velmo::detail
