// What the loader asks of the addresses that libcurl is about to use.
#pragma once

#include <sys/socket.h>

#include <velmocore/net/Networks.h>
#include <velmocore/url/URL.h>

namespace velmo::detail {

/// Of an address to connect to; of other families than those of IP OtherNetworks.
[[nodiscard]] NetworkKinds networkOf(const sockaddr& address) noexcept;
/// Of an address in its usual form; of what is none OtherNetworks.
[[nodiscard]] NetworkKinds networkOfNumbers(const char* address) noexcept;
/// Whether the environment names a proxy for the scheme of a URL, by the rules of libcurl.
[[nodiscard]] bool hasProxy(const URL& url);

}  // namespace velmo::detail
