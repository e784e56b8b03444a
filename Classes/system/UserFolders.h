// Where the user's folders are, by an environment.
#pragma once

#include <string>
#include <vector>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

#include "text/HomeFolder.h"

namespace velmo::detail {

struct UserFolders {
    String home, desktop, downloads, library, preferences, caches, applicationSupport;
    String userHome, userLibrary, iCloud, temporary;
    std::vector<String> dropbox;
};

/// Looks everything up. Reads user-dirs.dirs and the settings of Dropbox, if they are there.
VELMO_API UserFolders findUserFolders(EnvironmentVariable variable);

}  // namespace velmo::detail
