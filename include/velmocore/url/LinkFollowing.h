#pragma once

#include <cstdint>

#include <velmocore/platform/Export.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// How far a gatherer goes from the page it began with. Values from FollowLevels on limit
/// the depth: with FollowLevels + n it follows links up to the level n + 1, wherever they lead.
enum FollowMode : std::int64_t {
    FollowNothing = 0,      ///< no link
    FollowSameHost = 1,     ///< links to the host of the base
    FollowSameFolder = 2,   ///< of the same host
    FollowSameFolders = 3,  ///< those whose path begins with that of the base's folder
    FollowEverything = 4,   ///< all links
    FollowLevels = 5,       ///< all links up to a depth
};

/// Whether a gatherer follows a link of the given depth that was found under the base. A
/// mode that is no FollowMode and below FollowLevels follows nothing. Any thread.
///
///     const URL base = URL::URLWithString(u"http://h.org/docs/index.html");
///     const URL link = URL::URLWithString(u"http://h.org/x/y.html");
///     shouldFollowLink(link, FollowSameFolders, 1, base);   // false
///     shouldFollowLink(link, FollowSameHost, 1, base);      // true
[[nodiscard]] VELMO_API bool shouldFollowLink(const URL& link, std::int64_t mode,
                                              std::int64_t level, const URL& base);

/// The same where no base is known: only the depth limits.
[[nodiscard]] VELMO_API bool shouldFollowLink(std::int64_t mode, std::int64_t level);

}  // namespace velmo
