// Where a response leads to, and what is asked for there.
#pragma once

#include <velmocore/net/URLRequest.h>
#include <velmocore/net/URLResponse.h>

namespace velmo::detail {

/// Whether a response sends the client elsewhere: a status that says so, and an address.
[[nodiscard]] VELMO_API bool isRedirect(const URLResponse& response);

/// The request that a redirect asks for: absent if its address is no URL. A post becomes a GET
/// unless the status keeps it. Credentials stay with the server that they are for, and a page that
/// came encrypted is not told as a referrer to one that does not.
[[nodiscard]] VELMO_API URLRequest redirectedRequest(const URLRequest& former,
                                                     const URLResponse& response);

}  // namespace velmo::detail
