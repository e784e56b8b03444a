#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>
#include <velmocore/system/NamedConnection.h>

namespace velmo {

// The connections of the current thread, each under the name that its peer is registered with. No
// thread sees those of another one. A connection that lost its peer is never handed out, and leaves
// the table when that is seen.

/// What a connection is set to.
struct RootProxyOptions {
    /// For sending a call and for its answer, in seconds; not above 0 leaves the connection's own.
    double timeout = 0;
    /// Set for a new connection.
    std::optional<HelperProtocol> protocol = {};
};

/// The same, and how long an object is waited for.
struct RootProxyWait : RootProxyOptions {
    /// How long to try, in seconds.
    double interval = 5.0;
};

/// The object that is published under a name: by the table, or over a new connection that enters
/// it. Absent if there is none; the error tells of a peer that does not answer.
///
///     auto proxy = rootProxyForConnectionWithRegisteredName(u"org.example.nobody", {.timeout = 1});
///     if (proxy) proxy->call(u"text", {PropertyList{String(u"<b>bold</b>")}});
[[nodiscard]] VELMO_API std::optional<HelperProxy> rootProxyForConnectionWithRegisteredName(
    const String& name, const RootProxyOptions& options = {}, Error* error = nullptr);

/// Tries every 0.01 seconds until the interval is over; one that is not above 0 gives absent at
/// once. A peer that does not answer ends it.
[[nodiscard]] VELMO_API std::optional<HelperProxy> waitForRootProxyForConnectionWithRegisteredName(
    const String& name, const RootProxyWait& wait = {}, Error* error = nullptr);

/// The connection in the table; null if there is none, if it is no longer valid, and for an absent
/// or empty name.
[[nodiscard]] VELMO_API std::shared_ptr<NamedConnection> connectionRegisteredWithName(
    const String& name);
/// Enters it; one that is not valid, or null, removes what is there. An empty name does nothing.
VELMO_API void setConnectionRegisteredWithName(std::shared_ptr<NamedConnection> connection,
                                               const String& name);
/// Nothing happens where none is.
VELMO_API void removeConnectionRegisteredWithName(const String& name);
/// Removes the first entry of that very connection.
VELMO_API void removeConnection(const std::shared_ptr<NamedConnection>& connection);
/// What is called for a connection that lost its peer: removes it from the table of this thread.
VELMO_API void connectionDidDie(const std::shared_ptr<NamedConnection>& connection);

}  // namespace velmo
