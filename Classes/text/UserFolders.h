// Where the user's folders are, by an environment.
#pragma once

#include <string>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/FunctionRef.h>
#include <velmocore/platform/String.h>

namespace velmo::detail {

struct UserFolders {
    String home, desktop, downloads, library, preferences, caches, applicationSupport;
    String userHome, userLibrary, iCloud, temporary;
    std::vector<String> dropbox;
};

/// A variable of the environment; null if it is not set.
using EnvironmentVariable = FunctionRef<const char*(const char* name)>;

/// Looks everything up. Reads user-dirs.dirs and the settings of Dropbox, if they are there.
VELMO_API UserFolders findUserFolders(EnvironmentVariable variable);

}  // namespace velmo::detail
