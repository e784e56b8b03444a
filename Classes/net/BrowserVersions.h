// The versions that the user agent of a browser tells. They come from two files of the browser's
// own system, and where there are none, as a rule, from what was current there.
#pragma once

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo::detail {

/// The version of the system's foundation library, which the choice goes by. Ours is as new as the
/// newest that is told apart.
inline constexpr double FoundationVersion = 1252.0;

/// Of what the file says, or an absent string.
[[nodiscard]] VELMO_API String webKitVersionOf(const String& bundleVersion,
                                               double foundation = FoundationVersion);
[[nodiscard]] VELMO_API String browserVersionOf(const String& bundleVersion,
                                                double foundation = FoundationVersion);

}  // namespace velmo::detail
