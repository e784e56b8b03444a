#pragma once

#include <cstdint>

#include <velmocore/platform/Export.h>
#include <velmocore/url/URL.h>

namespace velmo {

// Whether a host could be reached, by the resolver and the routing table. Nothing is sent to the
// host. A name that is not resolved within four seconds counts as one that cannot be. Any thread
// may call these.
//
//     isURLOnline(URL::URLWithString(u"file:///etc/motd"));    // true
//     isLocalURL(URL::URLWithString(u"http://127.0.0.1/"));    // true
//     connectionFlagsForHost(nullptr);                         // 0

/// What is known of the way to a host; 0 if nothing is. Numbers that programs keep.
enum ConnectionFlags : std::uint32_t {
    ConnectionReachable = 1U << 1,             ///< there is a way
    ConnectionRequired = 1U << 2,              ///< never set; for programs that ask
    ConnectionInterventionRequired = 1U << 4,  ///< never set likewise
    ConnectionIsLocalAddress = 1U << 16,       ///< an address of this machine
    ConnectionIsDirect = 1U << 17,             ///< in a network of this machine, without a gateway
};

/// The flags of a host name or address; null is none.
[[nodiscard]] VELMO_API std::uint32_t connectionFlagsForHost(const char* host);

/// Whether the host can be reached. A file URL, and any without a host, always can.
[[nodiscard]] VELMO_API bool isURLOnline(const URL& url);
/// Whether the host is this machine or in a network of it. A file URL is, and any without a host.
[[nodiscard]] VELMO_API bool isLocalURL(const URL& url);

}  // namespace velmo
