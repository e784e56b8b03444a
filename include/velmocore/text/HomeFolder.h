#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {

/// The user's home folder: the environment's HOME if that is an absolute path, else that of the
/// user's account, else the root. Found once, at first use, and kept: a later change is not seen.
/// It ends in no slash, unless it is the root, and is never empty or absent. Any thread may call
/// this.
///
///     homeDirectory();              // (as /home/ada)
///     homeDirectory().isEmpty();    // false
[[nodiscard]] VELMO_API const String& homeDirectory();

}  // namespace velmo
