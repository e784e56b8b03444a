// The style sheet of a rendered feed.
#pragma once

#include <velmocore/feeds/FeedRendering.h>

namespace velmo::detail {

/// Appends the sheet of the options, linked or as it is; nothing if there is none.
void appendStyleSheet(StringBuilder& out, const FeedDisplayOptions& options, bool linked);

}  // namespace velmo::detail
