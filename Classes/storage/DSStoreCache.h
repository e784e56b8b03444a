// The Finder comment of a file, at a time that is told: in seconds, from any start.
#pragma once

#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>

namespace velmo::detail {

VELMO_API String finderCommentAtPath(const Path& path, double now);

}  // namespace velmo::detail
