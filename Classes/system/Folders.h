// Folders made with those above them, as several operations need it.
#pragma once

#include <string>

#include "system/FileCalls.h"

namespace velmo::detail {

/// A folder and those above it. If there is something of that name, whether it is a folder.
bool makeFolders(FileCalls& calls, const std::string& path, mode_t mode = 0777);

}  // namespace velmo::detail
