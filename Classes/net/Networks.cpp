// An address is of the kind of the first row that it is in, so that exceptions stand in front of
// what they are exceptions from. Addresses of IPv6 beyond these rows are public only in 2000::/3,
// the part of the space that is given out.
#include <velmocore/net/Networks.h>

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <string>

#include <velmocore/text/Comparison.h>

namespace velmo {
namespace {

struct Row {
    std::uint8_t prefix[16];
    unsigned bits;
    NetworkKinds kind;
    int embedded = -1;  ///< where an address of IPv4 stands in it, whose kind counts
};

/// The registries of special addresses, as of 2024: 15 rows.
constexpr Row Rows4[] = {
    {{0}, 8, OtherNetworks},
    {{10}, 8, PrivateNetwork},
    {{100, 64}, 10, PrivateNetwork},  // shared by the customers of a provider
    {{127}, 8, LoopbackNetwork},
    {{169, 254}, 16, LinkLocalNetwork},
    {{172, 16}, 12, PrivateNetwork},
    {{192, 0, 0}, 24, OtherNetworks},
    {{192, 0, 2}, 24, OtherNetworks},    // examples
    {{192, 88, 99}, 24, OtherNetworks},  // relays of 6to4
    {{192, 168}, 16, PrivateNetwork},
    {{198, 18}, 15, OtherNetworks},       // measurements
    {{198, 51, 100}, 24, OtherNetworks},  // examples
    {{203, 0, 113}, 24, OtherNetworks},   // examples
    {{224}, 4, OtherNetworks},            // multicast
    {{240}, 4, OtherNetworks},            // reserved, and broadcast
};

/// The same for IPv6: 12 rows.
constexpr Row Rows6[] = {
    {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, 128, LoopbackNetwork},
    {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF}, 96, PublicNetwork, 12},  // mapped
    {{0x00, 0x64, 0xFF, 0x9B}, 96, PublicNetwork, 12},                    // NAT64
    {{0x20, 0x01, 0x00}, 23, OtherNetworks},        // protocols, with the tunnels of Teredo
    {{0x20, 0x01, 0x0D, 0xB8}, 32, OtherNetworks},  // examples
    {{0x20, 0x02}, 16, PublicNetwork, 2},           // 6to4
    {{0x3F, 0xFF}, 20, OtherNetworks},              // examples
    {{0x20}, 3, PublicNetwork},
    {{0xFC}, 7, PrivateNetwork},
    {{0xFE, 0x80}, 10, LinkLocalNetwork},
    {{0xFE, 0xC0}, 10, PrivateNetwork},  // of a site, as it was once
    {{0}, 0, OtherNetworks},
};

bool isIn(Bytes address, const Row& row) {
    for (unsigned bit = 0; bit < row.bits; bit += 8) {
        const unsigned rest = std::min(row.bits - bit, 8U);
        const auto mask = static_cast<std::uint8_t>(0xFF00U >> rest);
        if ((address[bit / 8] & mask) != (row.prefix[bit / 8] & mask)) return false;
    }
    return true;
}

NetworkKinds kindOfV4(Bytes address) {
    const auto row =
        std::ranges::find_if(Rows4, [&](const Row& one) { return isIn(address, one); });
    return row == std::end(Rows4) ? PublicNetwork : row->kind;
}

NetworkKinds kindOfV6(Bytes address) {
    const auto row =
        std::ranges::find_if(Rows6, [&](const Row& one) { return isIn(address, one); });
    if (row->embedded < 0) return row->kind;
    return kindOfV4(address.subspan(static_cast<std::size_t>(row->embedded), 4));
}

template <class Address>
Bytes bytesOf(const Address& address) {
    return {reinterpret_cast<const std::uint8_t*>(&address), sizeof address};
}

NetworkKinds networksOfName(const String& name) {
    if (isEqualToStringNoCase(name, u"localhost") || hasSuffixNoCase(name, u".localhost"))
        return LoopbackNetwork;
    if (hasSuffixNoCase(name, u".local"))
        return PrivateNetwork | LinkLocalNetwork | LoopbackNetwork;
    return PublicNetwork;
}

}  // namespace

NetworkKinds networkOfAddress(Bytes address) noexcept {
    if (address.size() == sizeof(in_addr)) return kindOfV4(address);
    return address.size() == sizeof(in6_addr) ? kindOfV6(address) : OtherNetworks;
}

NetworkKinds networksOfHostName(const URL& url) {
    std::string host = url.host().utf8();
    while (host.ends_with('.')) host.pop_back();
    in_addr v4 = {};
    if (::inet_aton(host.c_str(), &v4) != 0) return kindOfV4(bytesOf(v4));
    if (!host.starts_with('[') || !host.ends_with(']'))
        return networksOfName(String::fromUTF8(host));
    in6_addr v6 = {};
    const std::string inside = host.substr(1, host.find_first_of("%]") - 1);
    return ::inet_pton(AF_INET6, inside.c_str(), &v6) == 1 ? kindOfV6(bytesOf(v6)) : OtherNetworks;
}

}  // namespace velmo
