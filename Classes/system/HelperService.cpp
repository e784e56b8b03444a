// The thread that serves also runs the operations, with nothing handed to another thread: a call
// costs what the bus costs. But a helper that is at work must still greet callers and say that it
// is busy. So a second thread, the guard, sleeps on a timer that an operation sets; when one takes
// longer than that, the guard leads the service until it is done. Operations that are short share a
// timer: when it goes off in a later one, the guard sets it again for that. The bus library is used
// by one thread at a time, under the lock, which is let go of for waiting and for the operations.
#include <velmocore/system/HelperService.h>
#include <velmocore/system/NamedConnection.h>

#include <fmt/core.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "system/Bus.h"
#include "system/BusValues.h"
#include "system/ConnectionFolder.h"
#include "system/ServicePeers.h"

namespace velmo {

using namespace detail;

namespace {

using Clock = std::chrono::steady_clock;

/// How long an operation has the service for itself.
constexpr std::chrono::nanoseconds GuardDelay = std::chrono::milliseconds(20);
/// Calls beyond these are refused.
constexpr std::size_t MostWaiting = 1024;

using Lock = std::unique_lock<std::mutex>;

struct Call {
    Message message;
    const HelperOperation* operation;
    PropertyListArray arguments;

    bool wantsAnswer() const { return sd_bus_message_get_expect_reply(message.get()) > 0; }
    /// A call that was posted is worked on even when its sender has gone.
    bool isWanted() const {
        return !wantsAnswer() || sd_bus_is_open(sd_bus_message_get_bus(message.get())) > 0;
    }
};

bool fail(Error* error, std::u16string_view domain, std::int64_t code, std::string_view text) {
    if (error) *error = {domain, code, String::fromUTF8(text)};
    return false;
}
bool failWith(Error* error, int number) {
    return fail(error, u"posix", number, std::strerror(number));
}

Descriptor newEvent() { return Descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)); }

void signalEvent(const Descriptor& event) noexcept {
    const std::uint64_t one = 1;
    // It can only fail where it is signalled already.
    (void)!::write(event.get(), &one, sizeof one);
}

/// An event or a timer that has gone off is as new.
void clear(const Descriptor& event) {
    std::uint64_t count = 0;
    (void)!::read(event.get(), &count, sizeof count);
}

int answer(sd_bus_message* call, const PropertyList& value) {
    sd_bus_message* made = nullptr;
    int result = sd_bus_message_new_method_return(call, &made);
    const Message reply(made);
    if (result >= 0) result = appendResult(made, value);
    return result < 0 ? result : sd_bus_send(nullptr, made, nullptr);
}

int answerFailure(sd_bus_message* call, const Error& error) {
    sd_bus_message* made = nullptr;
    // The protocol's texts end at a NUL.
    const std::string text = error.text.utf8(), domain = error.domain.utf8();
    int result = sd_bus_message_new_method_errorf(call, &made, FailedName, "%s", text.c_str());
    const Message reply(made);
    if (result >= 0) result = sd_bus_message_append(made, "sx", domain.c_str(), error.code);
    return result < 0 ? result : sd_bus_send(nullptr, made, nullptr);
}

Error errorOfResult(int failure) {
    const auto code = failure == -EMSGSIZE ? HelperError::TooLarge : HelperError::InvalidResult;
    return {HelperErrorDomain, static_cast<std::int64_t>(code),
            String::fromUTF8(std::strerror(-failure))};
}

/// The result; absent, with the error, if the operation failed or threw.
std::optional<PropertyList> resultOf(const Call& call, Error& error) {
    const auto failed = static_cast<std::int64_t>(HelperError::Failed);
    error = {HelperErrorDomain, failed, u"the operation failed"};
    try {
        return (*call.operation)(call.arguments, &error);
    } catch (const std::exception& exception) {
        error = {HelperErrorDomain, failed, String::fromUTF8(exception.what())};
    } catch (...) {
        error = {HelperErrorDomain, failed, u"the operation threw"};
    }
    return std::nullopt;
}

}  // namespace

struct HelperService::State {
    explicit State(HelperServiceOptions own) : options(own) {}

    void listOperations();
    static int onCall(sd_bus_message* message, void* context, sd_bus_error* error);
    int take(sd_bus_message* message, sd_bus_error* error);
    bool isReady() const { return stopped && done && timer && peers.isPublished(); }
    bool lead(Error* error);
    void workOn(Call call, Lock& lock);
    int waitForPeers(Lock& lock, const Descriptor& event, std::vector<pollfd>& waited);
    void guard();
    void leadWhileWorking(Lock& lock);
    void setTimer(std::chrono::nanoseconds delay);
    void onTimer(Lock& lock);

    const HelperServiceOptions options;
    std::map<std::string, HelperOperation, std::less<>> operations;
    std::vector<sd_bus_vtable> table;
    std::optional<ConnectionFolder> folder;
    std::string file;
    std::atomic<bool> isStopped = false;
    Descriptor stopped = newEvent(), done = newEvent();
    Descriptor timer = Descriptor(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));

    std::mutex mutex;  // of all that follows
    ServicePeers peers;
    std::deque<Call> calls;
    std::uint64_t work = 0;  // the number of the operation that runs or ran last
    Clock::time_point workStart;
    bool isWorking = false, timerIsSet = false, guardLeads = false, guardEnds = false;
};

void HelperService::State::listOperations() {
    const auto add = [&](const char* name) {
        table.push_back(SD_BUS_METHOD(name, ArgumentsSignature, ResultSignature, &State::onCall,
                                      SD_BUS_VTABLE_UNPRIVILEGED));
    };
    table.assign({SD_BUS_VTABLE_START(0)});
    for (const auto& [name, operation] : operations) add(name.c_str());
    if (options.answersStillBusy && !operations.contains(StillBusy)) add(StillBusy);
    table.push_back(SD_BUS_VTABLE_END);
    peers.setObject(table.data(), this);
}

int HelperService::State::onCall(sd_bus_message* message, void* context, sd_bus_error* error) {
    // No exception may pass through the bus library.
    try {
        return static_cast<State*>(context)->take(message, error);
    } catch (const std::bad_alloc&) {
        return -ENOMEM;
    }
}

int HelperService::State::take(sd_bus_message* message, sd_bus_error* error) {
    const auto operation = operations.find(sd_bus_message_get_member(message));
    if (operation == operations.end())  // which only stillBusy can be
        return answer(message, {isWorking || !calls.empty()});
    if (calls.size() >= MostWaiting)
        return sd_bus_error_set(error, SD_BUS_ERROR_LIMITS_EXCEEDED, "too many calls wait");
    PropertyListArray arguments;
    if (readArguments(message, arguments) < 0)
        return sd_bus_error_set(error, SD_BUS_ERROR_INVALID_ARGS, "the arguments are no values");
    calls.push_back(
        {Message(sd_bus_message_ref(message)), &operation->second, std::move(arguments)});
    return 1;
}

void HelperService::State::workOn(Call call, Lock& lock) {
    if (!call.isWanted()) return;
    isWorking = true;
    ++work;
    workStart = Clock::now();
    if (!timerIsSet) setTimer(GuardDelay);
    lock.unlock();
    Error error;
    const std::optional<PropertyList> result = resultOf(call, error);
    lock.lock();
    isWorking = false;
    if (guardLeads) signalEvent(done);
    if (!call.wantsAnswer()) return;
    const int sent = result ? answer(call.message.get(), *result) : 0;
    if (sent < 0) error = errorOfResult(sent);
    if (!result || sent < 0) answerFailure(call.message.get(), error);
}

/// One wait, in which the lock is free, until something has come or the event is signalled. 0, or
/// why the system fails.
int HelperService::State::waitForPeers(Lock& lock, const Descriptor& event,
                                       std::vector<pollfd>& waited) {
    waited.assign({{event.get(), POLLIN, 0}});
    peers.collect(waited);
    // Callers are looked at between calls that wait, too, or they would wait for all of these.
    const int timeout = calls.empty() || isWorking ? peers.timeout() : 0;
    lock.unlock();
    const bool isFine = ::poll(waited.data(), waited.size(), timeout) >= 0 || errno == EINTR;
    const int failure = isFine ? 0 : errno;
    lock.lock();
    return failure;
}

bool HelperService::State::lead(Error* error) {
    Lock lock(mutex);
    std::vector<pollfd> waited;
    while (!isStopped) {
        const int failure = waitForPeers(lock, stopped, waited);
        if (failure != 0) return failWith(error, failure);
        peers.dispatch(waited.data() + 1);
        if (calls.empty()) continue;
        Call next = std::move(calls.front());
        calls.pop_front();
        workOn(std::move(next), lock);
    }
    return true;
}

void HelperService::State::leadWhileWorking(Lock& lock) {
    const std::uint64_t watched = work;
    const auto isAtIt = [&] { return isWorking && work == watched && !guardEnds; };
    std::vector<pollfd> waited;
    guardLeads = true;
    while (isAtIt()) {
        const int failure = waitForPeers(lock, done, waited);
        // The operation may have come to its end meanwhile, and what was waited for may be gone.
        if (failure != 0 || !isAtIt()) break;
        peers.dispatch(waited.data() + 1);
    }
    guardLeads = false;
}

void HelperService::State::setTimer(std::chrono::nanoseconds delay) {
    const itimerspec once = {{}, {0, static_cast<long>(delay.count())}};
    timerIsSet = ::timerfd_settime(timer.get(), 0, &once, nullptr) == 0;
}

void HelperService::State::onTimer(Lock& lock) {
    clear(timer);
    timerIsSet = false;
    if (!isWorking) return;
    const auto left = GuardDelay - (Clock::now() - workStart);
    if (left.count() > 0)
        setTimer(left);
    else
        leadWhileWorking(lock);
}

void HelperService::State::guard() {
    Lock lock(mutex);
    while (!guardEnds) {
        lock.unlock();
        pollfd events[] = {{timer.get(), POLLIN, 0}, {done.get(), POLLIN, 0}};
        ::poll(events, 2, -1);
        clear(done);
        lock.lock();
        if (events[0].revents != 0) onTimer(lock);
    }
}

HelperService::HelperService(HelperServiceOptions options)
    : state_(std::make_unique<State>(options)) {}

HelperService::~HelperService() {
    if (state_->folder && state_->peers.isPublished()) state_->folder->withdraw(state_->file);
}

bool HelperService::addOperation(std::u16string_view name, HelperOperation operation) {
    std::string member = utf8(name);
    if (member.find('\0') != member.npos || sd_bus_member_name_is_valid(member.c_str()) <= 0 ||
        !operation)
        return false;
    state_->operations[std::move(member)] = std::move(operation);
    return true;
}

bool HelperService::publish(const String& name, Error* error) {
    const auto code = [](HelperError reason) { return static_cast<std::int64_t>(reason); };
    if (name.isEmpty() || state_->peers.isPublished())
        return fail(error, HelperErrorDomain, code(HelperError::InvalidName),
                    name.isEmpty() ? "a name is missing" : "the object has a name already");
    state_->folder = ConnectionFolder::open(error);
    if (!state_->folder) return false;
    state_->file = fileOfRegisteredName(name);
    Error reason;
    Descriptor listener = state_->folder->publish(state_->file, &reason);
    if (!listener && reason.code == EADDRINUSE)
        return fail(error, HelperErrorDomain, code(HelperError::NameTaken),
                    name.utf8() + ": another process has the name");
    if (!listener && error) *error = std::move(reason);
    state_->peers.setListener(std::move(listener));
    return state_->peers.isPublished();
}

bool HelperService::serve(Error* error) {
    if (!state_->isReady()) return failWith(error, ENOTCONN);
    state_->listOperations();
    std::thread guard(&State::guard, state_.get());
    const bool isStopped = state_->lead(error);
    {
        const Lock lock(state_->mutex);
        state_->guardEnds = true;
    }
    signalEvent(state_->done);
    guard.join();
    state_->guardEnds = false;
    state_->calls.clear();
    state_->peers.dropAll();
    clear(state_->stopped);
    state_->isStopped = false;
    return isStopped;
}

void HelperService::stop() noexcept {
    state_->isStopped = true;
    signalEvent(state_->stopped);
}

}  // namespace velmo
