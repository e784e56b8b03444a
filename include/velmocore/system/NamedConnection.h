#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/PropertyList.h>
#include <velmocore/platform/String.h>

namespace velmo {

// Connections to objects that other processes of the same user publish under a name;
// HelperService.h is the side that publishes. They speak the D-Bus protocol from end to end over a
// socket in the folder "velmo" of XDG_RUNTIME_DIR (else "velmo-UID" in the folder for temporary
// files), which only the user can enter. No bus daemon is needed.

/// The domain of the errors of connections, and their codes.
inline constexpr char16_t PortErrorDomain[] = u"velmo.port";
enum class PortError : std::int64_t {
    Timeout = 1,         ///< no answer in time
    InvalidSendPort,     ///< the peer had gone before the call
    InvalidReceivePort,  ///< the connection was invalidated here
    Send,                ///< the peer went while the call was sent
    Receive,             ///< the peer went before it answered
};

/// Whether an error is one of a connection, which the operation called knows nothing of.
///
///     isPortException({PortErrorDomain, 1, {}});           // true
///     isPortTimeoutException({PortErrorDomain, 2, {}});    // false
[[nodiscard]] VELMO_API bool isPortException(const Error& error);
[[nodiscard]] VELMO_API bool isPortTimeoutException(const Error& error);

/// The domain of the errors of calls that reached their object, and their codes. What an operation
/// itself fails with has the domain and the code that it chose.
inline constexpr char16_t HelperErrorDomain[] = u"velmo.helper";
enum class HelperError : std::int64_t {
    UnknownOperation = 1,  ///< the object offers none of that name
    InvalidArguments,      ///< not of a kind that can be sent or is taken: too deep, say
    TooLarge,              ///< above 60 MB
    InvalidResult,         ///< the answer is none
    Failed,                ///< the operation failed and said no more
    NameTaken,             ///< another process serves under the name
    InvalidName,           ///< a name that nothing can have
    Overloaded,            ///< too many calls wait already
};

/// The operations that an object is known to offer, so that it need not be asked.
struct HelperProtocol {
    std::vector<String> operations;  ///< their names
};

class NamedConnection;

/// Stands for the object at the other end of a connection, on the thread that made it.
class VELMO_API HelperProxy {
public:
    /// Of a connection, which must not be null; NamedConnection::rootProxy() makes it.
    explicit HelperProxy(std::shared_ptr<NamedConnection> connection)
        : connection_(std::move(connection)) {}

    /// Calls an operation and waits for its result, for as long as the connection's time-outs say.
    /// Absent if there is none: the error tells whether the connection (isPortException()), the
    /// call (HelperErrorDomain) or the operation itself failed. Lists nest up to 32 levels. An
    /// absent string arrives as an absent value.
    std::optional<PropertyList> call(std::u16string_view operation,
                                     const PropertyListArray& arguments = {},
                                     Error* error = nullptr) const;
    /// Sends a call that nobody waits for the result of; HelperTask::waitUntilDone() waits for all.
    bool post(std::u16string_view operation, const PropertyListArray& arguments = {},
              Error* error = nullptr) const;
    /// Whether the object offers an operation: by the protocol, else by its own introspection,
    /// which is asked once a connection. False, with an error, if it does not answer.
    [[nodiscard]] bool offers(std::u16string_view operation, Error* error = nullptr) const;
    /// The names of all, in order; those of the protocol are not added.
    [[nodiscard]] std::vector<String> operations(Error* error = nullptr) const;

    /// What the object is known to offer, from now on, to all proxies of the connection.
    void setProtocol(HelperProtocol protocol);
    /// The one that it was made with.
    [[nodiscard]] const std::shared_ptr<NamedConnection>& connection() const noexcept {
        return connection_;
    }

private:
    std::shared_ptr<NamedConnection> connection_;
};

/// A connection to the process that serves under a name. One thread uses it: the one that made it.
class VELMO_API NamedConnection : public std::enable_shared_from_this<NamedConnection> {
public:
    /// Looks the name up. Null without an error if nobody serves under it. A peer that does not
    /// answer is given up after the time-out, or after 5 seconds if it is not above 0.
    [[nodiscard]] static std::shared_ptr<NamedConnection> connectionWithRegisteredName(
        std::u16string_view name, double timeout = 0, Error* error = nullptr);
    ~NamedConnection();

    /// Looks whether the peer is still there. That it is not is told to the observers.
    [[nodiscard]] bool isValid();
    /// Closes it. That is no death.
    void invalidate();

    /// The object; absent, with an error, if the connection is not valid.
    [[nodiscard]] std::optional<HelperProxy> rootProxy(Error* error = nullptr);

    /// How long a call may take until it is sent, and from then on to be answered, in seconds; 0,
    /// as at the start, is without end.
    void setRequestTimeout(double seconds) noexcept;
    void setReplyTimeout(double seconds) noexcept;
    [[nodiscard]] double requestTimeout() const noexcept;
    [[nodiscard]] double replyTimeout() const noexcept;

private:
    friend class HelperProxy;
    struct State;
    explicit NamedConnection(std::unique_ptr<State> state);

    const std::unique_ptr<State> state_;
};

/// Is called for each connection that lost its peer, once, on the thread that saw it first. An
/// observer stays for the life of the process, and is kept once; any thread may add one.
using ConnectionObserver = void (*)(const std::shared_ptr<NamedConnection>& connection);
VELMO_API void observeConnectionDidDie(ConnectionObserver observer);

/// The names under which helpers of this user serve now, in order. One too long for a file is
/// listed in the cut form of its file.
[[nodiscard]] VELMO_API std::vector<String> registeredConnectionNames(Error* error = nullptr);

}  // namespace velmo
