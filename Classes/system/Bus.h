// What the two sides of a named connection share: how the published object is called, and owners
// of what the bus library and the system hand out.
#pragma once

#include <systemd/sd-bus.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>

namespace velmo::detail {

// The object that a helper publishes, the interface that its operations belong to, and their
// signatures: a list of any values in, one out.
inline constexpr char ObjectPath[] = "/";
inline constexpr char HelperInterface[] = "org.velmo.Helper";
inline constexpr char ArgumentsSignature[] = "av";
inline constexpr char ResultSignature[] = "v";
/// The operation itself failed; the domain and the code of its error stand behind the text.
inline constexpr char FailedName[] = "org.velmo.Helper.Failed";
inline constexpr char StillBusy[] = "stillBusy";

template <class Value, Value* (*Free)(Value*)>
struct FreedBy {
    void operator()(Value* value) const noexcept { Free(value); }
};
using Bus = std::unique_ptr<sd_bus, FreedBy<sd_bus, sd_bus_close_unref>>;
using Message = std::unique_ptr<sd_bus_message, FreedBy<sd_bus_message, sd_bus_message_unref>>;
using Slot = std::unique_ptr<sd_bus_slot, FreedBy<sd_bus_slot, sd_bus_slot_unref>>;

/// A file descriptor with an owner.
class Descriptor {
public:
    explicit Descriptor(int number = -1) noexcept : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
    Descriptor& operator=(Descriptor other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }

    explicit operator bool() const noexcept { return number_ >= 0; }
    [[nodiscard]] int get() const noexcept { return number_; }
    [[nodiscard]] int release() noexcept { return std::exchange(number_, -1); }

private:
    int number_;
};

/// A moment until which something may take.
class Deadline {
    using Clock = std::chrono::steady_clock;

public:
    /// In seconds from now; without end if not above 0.
    explicit Deadline(double seconds) {
        // A century is without end, and no overflow.
        constexpr double Longest = 3e9;
        if (seconds > 0 && seconds < Longest)
            end_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                      std::chrono::duration<double>(seconds));
    }

    [[nodiscard]] bool isOver() const { return microseconds() == 0; }
    /// What is left, as the bus library takes it: UINT64_MAX is without end.
    [[nodiscard]] std::uint64_t microseconds() const {
        if (end_ == Clock::time_point::max()) return UINT64_MAX;
        const auto left =
            std::chrono::duration_cast<std::chrono::microseconds>(end_ - Clock::now()).count();
        return left > 0 ? static_cast<std::uint64_t>(left) : 0;
    }

private:
    Clock::time_point end_ = Clock::time_point::max();
};

}  // namespace velmo::detail
