// The caller's side of a connection. The bus library would wait for a peer as long as its own
// settings say; here it is turned step by step, so that the time-outs are those of the connection,
// from the first greeting on, and one for the sending and one for the answer.
#include <velmocore/system/NamedConnection.h>

#include <fmt/core.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <set>

#include "system/Bus.h"
#include "system/BusValues.h"
#include "system/ConnectionFolder.h"
#include "system/Introspection.h"

namespace velmo {

using detail::Deadline;

namespace {

/// In seconds, where the caller names no time-out: a peer that hangs must not be waited for without
/// end before there is a connection at all.
constexpr double GreetingTimeout = 5;

Error portError(PortError code, std::string_view text) {
    return {PortErrorDomain, static_cast<std::int64_t>(code), String::fromUTF8(text)};
}
Error helperError(HelperError code, std::string_view text) {
    return {HelperErrorDomain, static_cast<std::int64_t>(code), String::fromUTF8(text)};
}

/// Tells the caller; always false or absent.
std::nullopt_t fail(Error* error, Error reason) {
    if (error) *error = std::move(reason);
    return std::nullopt;
}

class Observers {
public:
    static Observers& all() {
        static auto& observers = *new Observers;  // threads that end after main() may lose peers
        return observers;
    }
    void add(ConnectionObserver observer) {
        const std::lock_guard lock(mutex_);
        if (std::ranges::count(observers_, observer) == 0) observers_.push_back(observer);
    }
    void notify(const std::shared_ptr<NamedConnection>& connection) {
        std::unique_lock lock(mutex_);
        const auto observers = observers_;
        lock.unlock();
        for (const ConnectionObserver observer : observers) observer(connection);
    }

private:
    std::mutex mutex_;
    std::vector<ConnectionObserver> observers_;
};

/// What the error message of an answer says.
Error errorOfAnswer(sd_bus_message* answer) {
    const sd_bus_error& told = *sd_bus_message_get_error(answer);
    const std::string_view name = told.name ? told.name : "";
    const char* text = told.message ? told.message : "";
    const char *own = nullptr, *domain = nullptr;
    std::int64_t code = 0;
    if (name == detail::FailedName && sd_bus_message_read(answer, "ssx", &own, &domain, &code) > 0)
        return {String::fromUTF8(domain), code, String::fromUTF8(own)};
    const std::pair<std::string_view, HelperError> codes[] = {
        {SD_BUS_ERROR_UNKNOWN_METHOD, HelperError::UnknownOperation},
        {SD_BUS_ERROR_UNKNOWN_INTERFACE, HelperError::UnknownOperation},
        {SD_BUS_ERROR_UNKNOWN_OBJECT, HelperError::UnknownOperation},
        {SD_BUS_ERROR_INVALID_ARGS, HelperError::InvalidArguments},
        {SD_BUS_ERROR_LIMITS_EXCEEDED, HelperError::Overloaded},
    };
    for (const auto& [known, meaning] : codes)
        if (name == known) return helperError(meaning, text);
    return helperError(HelperError::Failed, *text ? std::string_view(text) : name);
}

}  // namespace

struct NamedConnection::State {
    detail::Bus bus;
    double requestTimeout = 0, replyTimeout = 0;
    HelperProtocol protocol;
    std::optional<std::set<String, std::less<>>> introspected;
    bool isDead = false;

    bool isOpen() const { return bus && sd_bus_is_open(bus.get()) > 0; }
    int start(detail::Descriptor socket, double timeout);
    bool wait(const Deadline& deadline);
    bool flush(const Deadline& deadline);
    detail::Message newCall(const char* interface, std::u16string_view operation) const;
    detail::Message newHelperCall(std::u16string_view operation, const PropertyListArray& arguments,
                                  Error* error) const;
    detail::Message exchange(sd_bus_message* call, Error* error);
    bool send(sd_bus_message* call, Error* error);
    Error lost(PortError code, const Deadline& deadline) const;
};

/// 0 when the peer has greeted, or why it has not.
int NamedConnection::State::start(detail::Descriptor socket, double timeout) {
    sd_bus* made = nullptr;
    if (const int result = sd_bus_new(&made); result < 0) return -result;
    bus.reset(made);
    const int number = socket.get();
    int result = sd_bus_set_fd(made, number, number);
    if (result < 0) return -result;
    (void)socket.release();  // the bus closes it
    if (result = sd_bus_start(made); result < 0) return -result;
    const Deadline deadline(timeout > 0 ? timeout : GreetingTimeout);
    while ((result = sd_bus_is_ready(made)) == 0)
        if (!wait(deadline)) return sd_bus_is_open(made) > 0 ? ETIMEDOUT : ECONNRESET;
    return std::max(-result, 0);
}

/// One step of the bus. False when the time is over or the peer has gone.
bool NamedConnection::State::wait(const Deadline& deadline) {
    // Waiting comes first: there is nothing yet of an answer to what was sent just now. A peer that
    // sends anything but an answer does not get more time by it.
    const std::uint64_t left = deadline.microseconds();
    if (left == 0) return false;
    const int count = sd_bus_wait(bus.get(), left);
    if (count == 0 || (count < 0 && count != -EINTR)) return false;
    const int done = sd_bus_process(bus.get(), nullptr);
    // What is no message has no end at which another one could begin.
    if (done < 0) sd_bus_close(bus.get());
    return done >= 0;
}

bool NamedConnection::State::flush(const Deadline& deadline) {
    std::uint64_t queued = 0;
    while (sd_bus_get_n_queued_write(bus.get(), &queued) >= 0 && queued > 0)
        if (!wait(deadline)) return false;
    return isOpen();
}

detail::Message NamedConnection::State::newCall(const char* interface,
                                                std::u16string_view operation) const {
    const std::string name = utf8(operation);
    sd_bus_message* call = nullptr;
    // A NUL would cut the name short, and its beginning may be that of another operation.
    if (name.find('\0') == name.npos && sd_bus_member_name_is_valid(name.c_str()) > 0)
        sd_bus_message_new_method_call(bus.get(), &call, nullptr, detail::ObjectPath, interface,
                                       name.c_str());
    return detail::Message(call);
}

detail::Message NamedConnection::State::newHelperCall(std::u16string_view operation,
                                                      const PropertyListArray& arguments,
                                                      Error* error) const {
    if (!isOpen()) {
        fail(error, bus ? portError(PortError::InvalidSendPort, "the peer has gone")
                        : portError(PortError::InvalidReceivePort, "the connection is closed"));
        return nullptr;
    }
    detail::Message call = newCall(detail::HelperInterface, operation);
    if (!call) {
        fail(error, helperError(HelperError::UnknownOperation, "no name of an operation"));
        return nullptr;
    }
    const int result = detail::appendArguments(call.get(), arguments);
    if (result >= 0) return call;
    fail(error,
         helperError(result == -EMSGSIZE ? HelperError::TooLarge : HelperError::InvalidArguments,
                     std::strerror(-result)));
    return nullptr;
}

Error NamedConnection::State::lost(PortError code, const Deadline& deadline) const {
    if (isOpen() && deadline.isOver()) return portError(PortError::Timeout, "no answer in time");
    return portError(code, "the peer has gone");
}

bool NamedConnection::State::send(sd_bus_message* call, Error* error) {
    const Deadline request(requestTimeout);
    sd_bus_message_set_expect_reply(call, 0);
    if (sd_bus_send(bus.get(), call, nullptr) >= 0 && flush(request)) return true;
    fail(error, lost(PortError::Send, request));
    return false;
}

detail::Message NamedConnection::State::exchange(sd_bus_message* call, Error* error) {
    sd_bus_message* answer = nullptr;
    const auto keep = [](sd_bus_message* message, void* place, sd_bus_error*) {
        *static_cast<sd_bus_message**>(place) = sd_bus_message_ref(message);
        return 1;
    };
    const Deadline request(requestTimeout);
    sd_bus_slot* waiting = nullptr;
    const int result = sd_bus_call_async(bus.get(), &waiting, call, keep, &answer, UINT64_MAX);
    // Dropping the slot makes a late answer one that nobody waits for.
    const detail::Slot slot(waiting);
    if (result < 0 || !flush(request)) {
        fail(error, lost(PortError::Send, request));
        return detail::Message(answer);
    }
    const Deadline reply(replyTimeout);
    while (!answer)
        if (!wait(reply)) break;
    detail::Message owned(answer);
    if (owned && isOpen()) return owned;
    // A peer that has gone is told by an answer that the bus itself makes up.
    if (owned && sd_bus_message_is_method_error(owned.get(), nullptr) <= 0) return owned;
    fail(error, lost(PortError::Receive, reply));
    return nullptr;
}

NamedConnection::NamedConnection(std::unique_ptr<State> state) : state_(std::move(state)) {}
NamedConnection::~NamedConnection() = default;

std::shared_ptr<NamedConnection> NamedConnection::connectionWithRegisteredName(
    std::u16string_view name, double timeout, Error* error) {
    if (name.empty()) return nullptr;
    const auto folder = detail::ConnectionFolder::open(error);
    if (!folder) return nullptr;
    int failure = 0;
    detail::Descriptor socket = folder->connect(detail::fileOfRegisteredName(name), failure);
    auto state = std::make_unique<State>();
    if (socket) failure = state->start(std::move(socket), timeout);
    if (failure == 0 && state->bus)
        return std::shared_ptr<NamedConnection>(new NamedConnection(std::move(state)));
    if (failure == ETIMEDOUT || failure == EAGAIN)
        fail(error, portError(PortError::Timeout, "no greeting in time"));
    else if (failure != 0)
        fail(error, portError(PortError::InvalidSendPort, std::strerror(failure)));
    return nullptr;
}

bool NamedConnection::isValid() {
    if (!state_->bus) return false;
    // What the peer sent last is still to be read, but nothing more can be asked of it.
    pollfd socket = {sd_bus_get_fd(state_->bus.get()), POLLRDHUP, 0};
    const bool hasHungUp =
        socket.fd >= 0 && ::poll(&socket, 1, 0) > 0 && (socket.revents & (POLLRDHUP | POLLHUP));
    if (state_->isOpen() && !hasHungUp) return true;
    if (hasHungUp) sd_bus_close(state_->bus.get());
    if (!std::exchange(state_->isDead, true)) Observers::all().notify(shared_from_this());
    return false;
}

void NamedConnection::invalidate() { state_->bus.reset(); }

std::optional<HelperProxy> NamedConnection::rootProxy(Error* error) {
    if (isValid()) return HelperProxy(shared_from_this());
    return fail(error, portError(PortError::InvalidSendPort, "the peer has gone"));
}

void NamedConnection::setRequestTimeout(double seconds) noexcept {
    state_->requestTimeout = seconds;
}
void NamedConnection::setReplyTimeout(double seconds) noexcept { state_->replyTimeout = seconds; }
double NamedConnection::requestTimeout() const noexcept { return state_->requestTimeout; }
double NamedConnection::replyTimeout() const noexcept { return state_->replyTimeout; }

std::optional<PropertyList> HelperProxy::call(std::u16string_view operation,
                                              const PropertyListArray& arguments,
                                              Error* error) const {
    NamedConnection::State& state = *connection_->state_;
    const detail::Message call = state.newHelperCall(operation, arguments, error);
    if (!call) return std::nullopt;
    const detail::Message answer = state.exchange(call.get(), error);
    if (!answer) {
        if (!state.isOpen()) (void)connection_->isValid();  // which tells of the death
        return std::nullopt;
    }
    if (sd_bus_message_is_method_error(answer.get(), nullptr) > 0)
        return fail(error, errorOfAnswer(answer.get()));
    PropertyList value;
    if (detail::readResult(answer.get(), value) < 0)
        return fail(error, helperError(HelperError::InvalidResult, "the answer is no value"));
    return value;
}

bool HelperProxy::post(std::u16string_view operation, const PropertyListArray& arguments,
                       Error* error) const {
    NamedConnection::State& state = *connection_->state_;
    const detail::Message call = state.newHelperCall(operation, arguments, error);
    if (call && state.send(call.get(), error)) return true;
    if (!state.isOpen()) (void)connection_->isValid();
    return false;
}

std::vector<String> HelperProxy::operations(Error* error) const {
    NamedConnection::State& state = *connection_->state_;
    if (!state.introspected) {
        const char* text = nullptr;
        const detail::Message call =
            state.isOpen() ? state.newCall("org.freedesktop.DBus.Introspectable", u"Introspect")
                           : state.newHelperCall(u"Introspect", {}, error);  // which says why not
        if (!call) return {};
        const detail::Message answer = state.exchange(call.get(), error);
        if (!answer) {
            if (!state.isOpen()) (void)connection_->isValid();
            return {};
        }
        // An object that does not tell what it offers is called to find out.
        if (sd_bus_message_is_method_error(answer.get(), nullptr) > 0 ||
            sd_bus_message_read(answer.get(), "s", &text) <= 0)
            text = "";
        state.introspected = detail::operationsOfIntrospection(text);
    }
    return {state.introspected->begin(), state.introspected->end()};
}

bool HelperProxy::offers(std::u16string_view operation, Error* error) const {
    NamedConnection::State& state = *connection_->state_;
    const auto isIt = [&](const String& known) { return known == operation; };
    if (std::ranges::any_of(state.protocol.operations, isIt)) return true;
    (void)operations(error);
    return state.introspected && state.introspected->contains(operation);
}

void HelperProxy::setProtocol(HelperProtocol protocol) {
    connection_->state_->protocol = std::move(protocol);
}

bool isPortException(const Error& error) {
    return error.domain == PortErrorDomain &&
           error.code >= static_cast<std::int64_t>(PortError::Timeout) &&
           error.code <= static_cast<std::int64_t>(PortError::Receive);
}

bool isPortTimeoutException(const Error& error) {
    return isPortException(error) && error.code == static_cast<std::int64_t>(PortError::Timeout);
}

void observeConnectionDidDie(ConnectionObserver observer) { Observers::all().add(observer); }

std::vector<String> registeredConnectionNames(Error* error) {
    std::vector<String> names;
    const auto folder = detail::ConnectionFolder::open(error);
    if (!folder) return names;
    for (const std::string& file : folder->files())
        if (String name = detail::registeredNameOfFile(file); !name.isAbsent())
            names.push_back(std::move(name));
    return names;
}

}  // namespace velmo
