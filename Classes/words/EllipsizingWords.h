// Shortening where scripts without spaces have words too.
#pragma once

#include <cstddef>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

#include "words/UnspacedScripts.h"

namespace velmo::detail {

/// See stringByEllipsizingAfterNCharacters().
VELMO_API String ellipsizedAfterWord(const String& text, std::size_t n,
                                     const UnspacedScripts* unspaced);

}  // namespace velmo::detail
