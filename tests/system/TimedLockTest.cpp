#include <velmocore/system/TimedLock.h>

#include <cmath>
#include <future>
#include <thread>

#include "TestSupport.h"
#include "system/LoggedLines.h"

namespace velmo {
namespace {

using namespace std::chrono_literals;

TEST(TimedLock, LogsOnlyWhatTookLonger) {
    const test::LoggedLines capture;
    detail::LockWaits waits(u"l\u00F6ck"), unnamed;
    for (const double wait : {0.0, 0.05, std::nextafter(0.05, 1), 1.5}) waits.add(wait);
    unnamed.add(0.25);
    waits.measure(u"label"), unnamed.measure(unnamed.name());
    EXPECT_EQ(capture.lines(),
              (std::vector<std::string>{"l\u00F6ck locked for 0.050000s", "l\u00F6ck locked for 1.500000s",
                                        "(null) locked for 0.250000s", "label: 1.600000s", "(null): 0.250000s"}));
}

template <class Lock>
void contend() {
    const test::LoggedLines capture;
    Lock lock(u"lock"), other;
    int counter = 0;
    std::unique_lock hold(lock);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] {
            for (int turn = 0; turn < 500; ++turn) {
                const std::scoped_lock both(lock, other);
                ++counter;
                if (turn == 200) lock.resetTime();
            }
            lock.measureTime();
        });
    EXPECT_EQ(counter, 0);
    std::this_thread::sleep_for(120ms);
    EXPECT_FALSE(std::async(std::launch::async, [&] { return lock.tryLock(); }).get());
    hold.unlock();
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 2000);
    EXPECT_TRUE(std::ranges::any_of(capture.lines(),
                                    [](const std::string& line) { return line.starts_with("lock locked for "); }));
    lock.resetTime();
    EXPECT_EQ(lock.totalTime(), 0);
}

TEST(TimedLock, KeepsThreadsApart) { contend<TimedLock>(), contend<TimedRecursiveLock>(); }

TEST(TimedLock, LocksAgainOnlyIfRecursive) {
    TimedRecursiveLock lock;
    const std::scoped_lock first(lock), second(lock);
    EXPECT_TRUE(lock.try_lock());
    lock.unlock();
}

}  // namespace
}  // namespace velmo
