// The callers of a service: those who are connected, and the socket at which new ones come.
#pragma once

#include <poll.h>

#include <vector>

#include "system/Bus.h"

namespace velmo::detail {

/// Nothing here locks: who leads the service has it for himself, but for the wait between collect()
/// and dispatch(), in which it may not change.
class ServicePeers {
public:
    /// What each new caller finds: the operations, and what they are called with.
    void setObject(const sd_bus_vtable* operations, void* context) {
        operations_ = operations;
        context_ = context;
    }
    void setListener(Descriptor listener) { listener_ = std::move(listener); }
    [[nodiscard]] bool isPublished() const { return static_cast<bool>(listener_); }

    /// Appends what to wait for.
    void collect(std::vector<pollfd>& waited) const;
    /// How long to wait at most, in milliseconds; -1 is without end.
    [[nodiscard]] int timeout() const;
    /// Works on what has come, by what collect() gave and the wait filled in, and on what is due.
    void dispatch(const pollfd* waited);
    void dropAll() { peers_.clear(); }

private:
    void process(sd_bus* bus) const;
    void accept();
    Bus greeted(Descriptor socket) const;

    const sd_bus_vtable* operations_ = nullptr;
    void* context_ = nullptr;
    Descriptor listener_;
    std::vector<Bus> peers_;
};

}  // namespace velmo::detail
