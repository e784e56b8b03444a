#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <utility>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/String.h>

namespace velmo {
namespace detail {

/// What the threads of one lock have waited in all.
class VELMO_API LockWaits {
public:
    explicit LockWaits(String name = {}) noexcept : name_(std::move(name)) {}

    /// Adds a wait and logs a long one. In seconds.
    void add(double wait);
    double measure(const String& label) const;
    void reset() noexcept { total_ = 0; }
    [[nodiscard]] double total() const noexcept { return total_; }
    [[nodiscard]] const String& name() const noexcept VELMO_LIFETIME { return name_; }

private:
    const String name_;
    // Of the lock's holders only one at a time adds to it, but anybody may read and reset it.
    std::atomic<double> total_ = 0;
};

}  // namespace detail

/// A lock that tells where a program contends: it adds up the time that threads waited for it, and
/// logs "NAME locked for 0.123456s" after each wait of more than 0.05 seconds. In all else it is
/// the lock it is made from, and std::scoped_lock, std::unique_lock and their like take it.
///
///     TimedLock lock(u"cache");
///     { std::scoped_lock hold(lock); }
///     lock.totalTime() < 1;    // true
///     lock.measureTime();      // (logs "cache: 0.000000s" and gives the seconds)
///
/// Any thread may call everything; a steady clock measures. tryLock() and unlock() are not
/// measured.
template <class Lock>
class BasicTimedLock {
public:
    BasicTimedLock() = default;
    /// A lock without a name logs "(null)" in its place.
    explicit BasicTimedLock(String name) : waits_(std::move(name)) {}

    /// Waits for the lock, and measures how long.
    void lock() {
        const auto start = std::chrono::steady_clock::now();
        lock_.lock();
        waits_.add(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    /// The caller must hold it.
    void unlock() { lock_.unlock(); }
    /// Takes the lock if that needs no waiting.
    [[nodiscard]] bool tryLock() { return lock_.try_lock(); }
    /// The same, by the name that the standard library asks for.
    [[nodiscard]] bool try_lock() { return lock_.try_lock(); }

    /// As it was given; absent for none.
    [[nodiscard]] const String& name() const noexcept VELMO_LIFETIME { return waits_.name(); }
    /// The time that lock() took in all since the start or the last reset, in seconds.
    [[nodiscard]] double totalTime() const noexcept { return waits_.total(); }
    void resetTime() noexcept { waits_.reset(); }
    /// Logs the total time with the lock's name, or with the label, and gives it.
    double measureTime() const { return waits_.measure(waits_.name()); }
    double measureTime(const String& label) const { return waits_.measure(label); }

private:
    Lock lock_;
    detail::LockWaits waits_;
};

/// One thread holds it, once.
using TimedLock = BasicTimedLock<std::mutex>;
/// The thread that holds it may lock it again.
using TimedRecursiveLock = BasicTimedLock<std::recursive_mutex>;

}  // namespace velmo
