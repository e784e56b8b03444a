#include "net/AddressCheck.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include <velmocore/text/Comparison.h>

namespace velmo::detail {
namespace {

template <class Address>
NetworkKinds networkOfBytes(const Address& address) noexcept {
    return networkOfAddress({reinterpret_cast<const std::uint8_t*>(&address), sizeof address});
}

}  // namespace

NetworkKinds networkOf(const sockaddr& address) noexcept {
    if (address.sa_family == AF_INET)
        return networkOfBytes(reinterpret_cast<const sockaddr_in&>(address).sin_addr);
    if (address.sa_family == AF_INET6)
        return networkOfBytes(reinterpret_cast<const sockaddr_in6&>(address).sin6_addr);
    return OtherNetworks;
}

NetworkKinds networkOfNumbers(const char* address) noexcept {
    in_addr v4 = {};
    if (::inet_pton(AF_INET, address, &v4) == 1) return networkOfBytes(v4);
    in6_addr v6 = {};
    return ::inet_pton(AF_INET6, address, &v6) == 1 ? networkOfBytes(v6) : OtherNetworks;
}

bool hasProxy(const URL& url) {
    const auto isSet = [](const char* name) {
        const char* const value = std::getenv(name);
        return value && *value;
    };
    // HTTP_PROXY is none: servers set it from a field of whoever asks them.
    const bool isEncrypted = isEqualToStringNoCase(url.scheme(), u"https");
    const bool hasOwn =
        isEncrypted ? isSet("https_proxy") || isSet("HTTPS_PROXY") : isSet("http_proxy");
    return hasOwn || isSet("all_proxy") || isSet("ALL_PROXY");
}

}  // namespace velmo::detail
