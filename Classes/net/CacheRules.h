// What HTTP says of keeping answers.
#pragma once

#include <velmocore/net/URLCache.h>
#include <velmocore/net/URLRequest.h>
#include <velmocore/net/URLResponse.h>

namespace velmo::detail {

/// Whether a cache may answer a request at all.
[[nodiscard]] bool canUseCache(const URLRequest& request);
/// Whether an answer that is kept is good without asking the server.
[[nodiscard]] VELMO_API bool isUsable(const CachedURLResponse& answer, RequestCachePolicy policy,
                                      Date now);
/// Whether an answer may be kept.
[[nodiscard]] VELMO_API bool isKeepable(const URLResponse& response, Date now);

/// Makes the request ask whether an answer is still right; false if there is no way to.
bool addValidators(URLRequest& request, const URLResponse& kept);
/// The answer after a server has said that it is still right.
[[nodiscard]] VELMO_API CachedURLResponse confirmed(CachedURLResponse kept,
                                                    const URLResponse& notModified, Date now);

}  // namespace velmo::detail
