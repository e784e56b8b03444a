#include "gather/WorkThreads.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace velmo::detail {
namespace {

class Work {
public:
    Work(std::size_t count, FunctionRef<void(std::size_t)> work) : count_(count), work_(work) {}

    void workOn() {
        try {
            for (std::size_t i; (i = next_++) < count_;) work_(i);
        } catch (...) {
            next_ = count_;
            const std::scoped_lock lock(mutex_);
            if (!failure_) failure_ = std::current_exception();
        }
    }
    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

private:
    const std::size_t count_;
    FunctionRef<void(std::size_t)> work_;
    std::atomic<std::size_t> next_ = 0;
    std::mutex mutex_;
    std::exception_ptr failure_;
};

}  // namespace

void workOnThreads(std::size_t count, std::size_t threads, FunctionRef<void(std::size_t i)> task) {
    if (threads == 0) threads = std::max(1u, std::thread::hardware_concurrency());
    Work work(count, task);
    {
        std::vector<std::jthread> others;
        try {
            while (others.size() + 1 < std::min(threads, count))
                others.emplace_back([&] { work.workOn(); });
        } catch (const std::system_error&) {
            // Those that there are do it all.
        }
        work.workOn();
    }
    work.rethrow();
}

}  // namespace velmo::detail
