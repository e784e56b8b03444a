// The system answers all of this without a packet to the host: connecting a datagram socket only
// looks up the route and the own address on it.
#include <velmocore/net/Networks.h>
#include <velmocore/net/Reachability.h>

#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <future>
#include <memory>
#include <span>
#include <system_error>
#include <thread>
#include <vector>

namespace velmo {
namespace {

constexpr std::uint32_t OnlineMask = 22, LocalMask = 0x30000;
constexpr std::chrono::seconds LongestResolving{4};
/// Names being resolved at once whose callers may have gone.
constexpr int MostResolvers = 64;
constexpr in_port_t DiscardPort = 9;

/// An address of either family.
struct Address {
    sockaddr_storage storage = {};
    socklen_t length = 0;

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&storage); }
    sockaddr* get() { return reinterpret_cast<sockaddr*>(&storage); }
    /// The bytes of the address itself.
    std::span<const std::uint8_t> bytes() const { return bytesOf(get()); }

    static std::span<const std::uint8_t> bytesOf(const sockaddr* address) {
        if (address->sa_family == AF_INET) {
            const auto* v4 = reinterpret_cast<const sockaddr_in*>(address);
            return {reinterpret_cast<const std::uint8_t*>(&v4->sin_addr), sizeof v4->sin_addr};
        }
        if (address->sa_family != AF_INET6) return {};
        const auto* v6 = reinterpret_cast<const sockaddr_in6*>(address);
        return {reinterpret_cast<const std::uint8_t*>(&v6->sin6_addr), sizeof v6->sin6_addr};
    }
};

using Addresses = std::vector<Address>;

Addresses resolvedNow(const std::string& host, int flags) {
    addrinfo hints = {};
    hints.ai_socktype = SOCK_DGRAM;
    hints.ai_flags = flags;
    addrinfo* list = nullptr;
    Addresses addresses;
    if (::getaddrinfo(host.c_str(), nullptr, &hints, &list) != 0) return addresses;
    const std::unique_ptr<addrinfo, void (*)(addrinfo*)> owner(list, ::freeaddrinfo);
    for (const addrinfo* info = list; info; info = info->ai_next) {
        if (info->ai_addrlen > sizeof(sockaddr_storage)) continue;
        Address& address = addresses.emplace_back();
        std::memcpy(&address.storage, info->ai_addr, info->ai_addrlen);
        address.length = info->ai_addrlen;
    }
    return addresses;
}

/// Resolves on a thread of its own, as nothing else can bound the time that it takes. What comes
/// late is for nobody; of a resolver that answers nothing, no more threads are made than so many.
Addresses resolved(const std::string& host) {
    Addresses numeric = resolvedNow(host, AI_NUMERICHOST);
    if (!numeric.empty()) return numeric;
    static std::atomic<int>& resolvers = *new std::atomic<int>(0);
    if (resolvers.fetch_add(1) >= MostResolvers) {
        --resolvers;
        return {};
    }
    std::promise<Addresses> promise;
    std::future<Addresses> answer = promise.get_future();
    try {
        std::thread([host, promise = std::move(promise)]() mutable {
            promise.set_value(resolvedNow(host, 0));
            --resolvers;
        }).detach();
    } catch (const std::system_error&) {
        --resolvers;  // no thread can be made
        return {};
    }
    const auto status = answer.wait_for(LongestResolving);
    return status == std::future_status::ready ? answer.get() : Addresses();
}

void setPort(Address& address) {
    if (address.storage.ss_family == AF_INET)
        reinterpret_cast<sockaddr_in*>(&address.storage)->sin_port = htons(DiscardPort);
    else
        reinterpret_cast<sockaddr_in6*>(&address.storage)->sin6_port = htons(DiscardPort);
}

/// The own address on the way to another one; of length 0 if there is no way.
Address ownAddressFor(Address address) {
    setPort(address);
    Address own;
    const int file = ::socket(address.storage.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (file < 0) return own;
    socklen_t length = sizeof own.storage;
    if (::connect(file, address.get(), address.length) == 0 &&
        ::getsockname(file, own.get(), &length) == 0)
        own.length = length;
    ::close(file);
    return own;
}

/// Whether an address is in the network of an interface.
bool isInNetwork(std::span<const std::uint8_t> address, const ifaddrs& interface) {
    if (!interface.ifa_addr || !interface.ifa_netmask || (interface.ifa_flags & IFF_POINTOPOINT))
        return false;
    const auto own = Address::bytesOf(interface.ifa_addr);
    const auto mask = Address::bytesOf(interface.ifa_netmask);
    if (own.size() != address.size() || mask.size() != address.size()) return false;
    for (std::size_t i = 0; i < address.size(); ++i)
        if ((address[i] & mask[i]) != (own[i] & mask[i])) return false;
    return std::ranges::any_of(mask, [](std::uint8_t byte) { return byte != 0; });
}

bool isDirect(const Address& address) {
    ifaddrs* list = nullptr;
    if (::getifaddrs(&list) != 0) return false;
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(list, ::freeifaddrs);
    for (const ifaddrs* interface = list; interface; interface = interface->ifa_next)
        if (isInNetwork(address.bytes(), *interface)) return true;
    return false;
}

std::uint32_t flagsOf(const Address& address) {
    const Address own = ownAddressFor(address);
    if (own.length == 0) return 0;
    std::uint32_t flags = ConnectionReachable;
    if (std::ranges::equal(own.bytes(), address.bytes())) flags |= ConnectionIsLocalAddress;
    if (isDirect(address)) flags |= ConnectionIsDirect;
    return flags;
}

/// As the resolver takes it, without brackets.
std::string hostOf(const URL& url) {
    const std::string host = url.host().utf8();
    const bool isBracketed = host.starts_with('[') && host.ends_with(']');
    return isBracketed ? host.substr(1, host.size() - 2) : host;
}

std::uint32_t flagsOfHost(const URL& url) { return connectionFlagsForHost(hostOf(url).c_str()); }

bool hasNoHost(const URL& url) { return url.isFileURL() || url.host().isEmpty(); }

}  // namespace

std::uint32_t connectionFlagsForHost(const char* host) {
    if (!host || !*host) return 0;
    for (const Address& address : resolved(host))
        if (const std::uint32_t flags = flagsOf(address)) return flags;
    return 0;
}

bool isURLOnline(const URL& url) {
    return hasNoHost(url) || (flagsOfHost(url) & OnlineMask) == ConnectionReachable;
}

NetworkKinds networksOfHost(const URL& url) {
    NetworkKinds kinds = NoNetwork;
    if (url.host().isEmpty()) return kinds;
    for (const Address& address : resolved(hostOf(url)))
        kinds = kinds | networkOfAddress(Bytes(address.bytes()));
    return kinds;
}

bool isLocalURL(const URL& url) { return hasNoHost(url) || (flagsOfHost(url) & LocalMask) != 0; }

}  // namespace velmo
