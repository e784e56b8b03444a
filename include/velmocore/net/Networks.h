#pragma once

#include <cstdint>

#include <velmocore/platform/Bytes.h>
#include <velmocore/platform/Export.h>
#include <velmocore/url/URL.h>

namespace velmo {

/// Kinds of networks, as bits of a set: who follows links that others wrote should reach no other
/// kind than that which he began with. Ours.
enum NetworkKinds : std::uint8_t {
    NoNetwork = 0,         ///< none of them
    PublicNetwork = 1,     ///< all others: the web
    PrivateNetwork = 2,    ///< of a house or a provider: RFC 1918, 6598 and 4193
    LinkLocalNetwork = 4,  ///< of a cable; clouds tell secrets there
    LoopbackNetwork = 8,   ///< this machine
    OtherNetworks = 16,    ///< no network of pages: multicast, reserved, examples, tunnels
    AllNetworks = 31,      ///< any of them
};
[[nodiscard]] constexpr NetworkKinds operator|(NetworkKinds a, NetworkKinds b) noexcept {
    return static_cast<NetworkKinds>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}

/// The kind of an address, of 4 or 16 bytes in the order of the network; other lengths are of
/// OtherNetworks. An IPv6 address that stands for one of IPv4 (mapped, NAT64, 6to4) is of its kind.
/// Any thread.
///
///     const std::uint8_t home[] = {192, 168, 1, 1};
///     networkOfAddress(home) == PrivateNetwork;    // true
[[nodiscard]] VELMO_API NetworkKinds networkOfAddress(Bytes address) noexcept;

/// The kinds of all addresses of the host of a URL, which is looked up; NoNetwork without a host,
/// and if that takes longer than four seconds or fails. Any thread.
///
///     networksOfHost(URL::URLWithString(u"http://127.0.0.1/")) == LoopbackNetwork;    // true
[[nodiscard]] VELMO_API NetworkKinds networksOfHost(const URL& url);

/// What can be told without a look-up: the kind if the host is an address, in any of the forms that
/// programs take for one ("127.1", "0x7F000001"); what a name may be of that is for this machine or
/// its own network only (localhost, .local); else PublicNetwork, also without a host.
[[nodiscard]] VELMO_API NetworkKinds networksOfHostName(const URL& url);

}  // namespace velmo
