// Every caller is taken for one that means no good: it gets one message a turn, so that no other
// starves; one that sends no messages but noise, or never takes its answers, is
// dropped; and there are only so many. That the caller is of the same user is seen to by the
// folder, and again by the greeting of the protocol.
#include "system/ServicePeers.h"

#include <sys/socket.h>
#include <time.h>

#include <algorithm>
#include <cerrno>
#include <thread>

namespace velmo::detail {
namespace {

constexpr std::size_t MostPeers = 256;
/// Answers that wait to be read.
constexpr std::uint64_t MostUnread = 4096;

std::uint64_t microsecondsNow() {
    timespec now;
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000 +
           static_cast<std::uint64_t>(now.tv_nsec) / 1000;
}

/// When the peer wants to be looked at though nothing has come; UINT64_MAX is never.
std::uint64_t timeOf(const Bus& peer) {
    std::uint64_t time = UINT64_MAX;
    return sd_bus_get_timeout(peer.get(), &time) >= 0 ? time : UINT64_MAX;
}

}  // namespace

void ServicePeers::collect(std::vector<pollfd>& waited) const {
    // Whoever comes when all places are taken waits until there is one.
    const bool hasPlace = peers_.size() < MostPeers;
    waited.push_back({hasPlace ? listener_.get() : -1, POLLIN, 0});
    for (const Bus& peer : peers_)
        waited.push_back({sd_bus_get_fd(peer.get()),
                          static_cast<short>(std::max(sd_bus_get_events(peer.get()), 0)), 0});
}

int ServicePeers::timeout() const {
    std::uint64_t first = UINT64_MAX;
    for (const Bus& peer : peers_) first = std::min(first, timeOf(peer));
    if (first == UINT64_MAX) return -1;
    const std::uint64_t now = microsecondsNow();
    return first <= now
               ? 0
               : static_cast<int>(std::min<std::uint64_t>((first - now) / 1000, 60000)) + 1;
}

void ServicePeers::dispatch(const pollfd* waited) {
    const std::uint64_t now = microsecondsNow();
    for (std::size_t i = 0; i < peers_.size(); ++i)
        if (waited[i + 1].revents != 0 || timeOf(peers_[i]) <= now) process(peers_[i].get());
    std::erase_if(peers_, [](const Bus& peer) { return sd_bus_is_open(peer.get()) <= 0; });
    if (waited[0].revents != 0) accept();
}

void ServicePeers::process(sd_bus* bus) const {
    // A second look would mostly find nothing, and the call that has come waits for it.
    if (sd_bus_process(bus, nullptr) < 0) sd_bus_close(bus);
    std::uint64_t unread = 0;
    if (sd_bus_get_n_queued_write(bus, &unread) >= 0 && unread > MostUnread) sd_bus_close(bus);
}

void ServicePeers::accept() {
    Descriptor socket(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket && (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM))
        // The caller goes on waiting to be let in, and would be asked about without a pause.
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (!socket) return;
    if (Bus bus = greeted(std::move(socket))) peers_.push_back(std::move(bus));
}

Bus ServicePeers::greeted(Descriptor socket) const {
    sd_bus* made = nullptr;
    if (sd_bus_new(&made) < 0) return nullptr;
    Bus bus(made);
    sd_id128_t identity;
    const int number = socket.get();
    if (sd_id128_randomize(&identity) < 0 || sd_bus_set_fd(made, number, number) < 0)
        return nullptr;
    (void)socket.release();  // the bus closes it
    const bool isReady = sd_bus_set_server(made, 1, identity) >= 0 && sd_bus_start(made) >= 0 &&
                         sd_bus_add_object_vtable(made, nullptr, ObjectPath, HelperInterface,
                                                  operations_, context_) >= 0;
    return isReady ? std::move(bus) : nullptr;
}

}  // namespace velmo::detail
