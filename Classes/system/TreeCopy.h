// Copies of files, links and folders.
#pragma once

#include <string>

#include "system/FileCalls.h"
#include "system/NewPlace.h"

namespace velmo::detail {

/// Copies what stands under a name to a new place, which is to become something then.
bool copyTree(FileCalls& calls, int folder, const std::string& name, NewPlace& place);

}  // namespace velmo::detail
