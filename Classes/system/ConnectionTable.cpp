#include <velmocore/system/ConnectionTable.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <thread>

namespace velmo {
namespace {

using Table = std::map<String, std::shared_ptr<NamedConnection>>;
using Seconds = std::chrono::duration<double>;

Table& table() {
    thread_local Table own;
    return own;
}

void setTimeouts(NamedConnection& connection, double timeout) {
    if (!(timeout > 0)) return;
    connection.setRequestTimeout(timeout);
    connection.setReplyTimeout(timeout);
}

std::optional<HelperProxy> proxyByTable(const String& name, double timeout) {
    const auto connection = connectionRegisteredWithName(name);
    if (!connection) return std::nullopt;
    auto proxy = connection->rootProxy();
    if (proxy)
        setTimeouts(*connection, timeout);
    else
        removeConnectionRegisteredWithName(name);
    return proxy;
}

/// The greeting of a new connection may take that long, in seconds.
std::optional<HelperProxy> proxyWithin(double greeting, const String& name,
                                       const RootProxyOptions& options, Error* error) {
    if (auto known = proxyByTable(name, options.timeout)) return known;
    const auto connection = NamedConnection::connectionWithRegisteredName(name, greeting, error);
    if (!connection) return std::nullopt;
    setConnectionRegisteredWithName(connection, name);
    setTimeouts(*connection, options.timeout);
    auto proxy = connection->rootProxy(error);
    if (proxy && options.protocol) proxy->setProtocol(*options.protocol);
    return proxy;
}

}  // namespace

std::optional<HelperProxy> rootProxyForConnectionWithRegisteredName(const String& name,
                                                                    const RootProxyOptions& options,
                                                                    Error* error) {
    return proxyWithin(options.timeout, name, options, error);
}

std::optional<HelperProxy> waitForRootProxyForConnectionWithRegisteredName(
    const String& name, const RootProxyWait& wait, Error* error) {
    constexpr double Step = 0.01;
    double waited = 0;
    while (wait.interval > waited) {
        std::this_thread::sleep_for(Seconds(Step));
        // A look-up takes no time, but for a peer that is there and silent: then it counts, too, or
        // a thousand of them would take a thousand time-outs.
        const auto start = std::chrono::steady_clock::now();
        const double left = wait.interval - waited;
        Error failure;
        const double greeting = wait.timeout > 0 ? std::min(wait.timeout, left) : left;
        if (auto proxy = proxyWithin(greeting, name, wait, &failure)) return proxy;
        if (!failure.domain.isAbsent()) {
            if (error) *error = failure;
            return std::nullopt;
        }
        waited += Step + Seconds(std::chrono::steady_clock::now() - start).count();
    }
    return std::nullopt;
}

std::shared_ptr<NamedConnection> connectionRegisteredWithName(const String& name) {
    if (name.isEmpty()) return nullptr;
    const auto found = table().find(name);
    if (found == table().end()) return nullptr;
    // Kept beyond its entry: looking whether it is valid may remove that.
    std::shared_ptr<NamedConnection> connection = found->second;
    if (connection->isValid()) return connection;
    table().erase(name);
    return nullptr;
}

void setConnectionRegisteredWithName(std::shared_ptr<NamedConnection> connection,
                                     const String& name) {
    if (name.isEmpty()) return;
    if (!connection || !connection->isValid()) return removeConnectionRegisteredWithName(name);
    static std::once_flag subscribed;
    std::call_once(subscribed, observeConnectionDidDie, &connectionDidDie);
    table()[name] = std::move(connection);
}

void removeConnectionRegisteredWithName(const String& name) { table().erase(name); }

void removeConnection(const std::shared_ptr<NamedConnection>& connection) {
    const auto found =
        std::ranges::find(table(), connection, [](const auto& entry) { return entry.second; });
    if (found != table().end()) table().erase(found);
}

void connectionDidDie(const std::shared_ptr<NamedConnection>& connection) {
    removeConnection(connection);
}

}  // namespace velmo
