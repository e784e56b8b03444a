#include "OrderedRun.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace velmo::tool {
namespace {

using Step = std::function<void(std::size_t, std::size_t)>;

class Run {
public:
    Run(std::size_t count, std::size_t jobs, const Step& work)
        : count_(count), slots_(slotsFor(jobs)), work_(work), isDone_(slots_, false) {
        threads_.reserve(jobs);
        for (std::size_t i = 0; i < jobs; ++i) threads_.emplace_back([this] { doWork(); });
    }
    ~Run() { stop(nullptr); }

    void useAll(const Step& use) {
        for (std::size_t i = 0; i < count_; ++i) {
            const std::size_t slot = i % slots_;
            {
                std::unique_lock lock(mutex_);
                becameDone_.wait(lock, [&] { return isDone_[slot] || failure_; });
                if (failure_) std::rethrow_exception(failure_);
            }
            use(i, slot);
            const std::scoped_lock lock(mutex_);
            isDone_[slot] = false;
            ++used_;
            becameFree_.notify_one();
        }
    }

private:
    void doWork() {
        std::unique_lock lock(mutex_);
        for (;;) {
            becameFree_.wait(lock, [&] { return stopped_ || next_ == count_ || hasRoom(); });
            if (stopped_ || next_ == count_) return;
            const std::size_t i = next_++;
            lock.unlock();
            try {
                work_(i, i % slots_);
            } catch (...) {
                return stop(std::current_exception());
            }
            lock.lock();
            isDone_[i % slots_] = true;
            becameDone_.notify_one();
            if (next_ == count_) becameFree_.notify_all();
        }
    }

    bool hasRoom() const { return next_ < used_ + slots_; }

    void stop(std::exception_ptr failure) {
        const std::scoped_lock lock(mutex_);
        if (!failure_) failure_ = failure;
        stopped_ = true;
        becameDone_.notify_all();
        becameFree_.notify_all();
    }

    const std::size_t count_, slots_;
    const Step& work_;
    std::mutex mutex_;
    std::condition_variable becameDone_, becameFree_;
    std::size_t next_ = 0, used_ = 0;
    std::vector<bool> isDone_;
    bool stopped_ = false;
    std::exception_ptr failure_;
    std::vector<std::jthread> threads_;  // the last member: it joins before the others go
};

}  // namespace

std::size_t defaultJobs() { return std::max(1u, std::thread::hardware_concurrency()); }

void runInOrder(std::size_t count, std::size_t jobs, const Step& work, const Step& use) {
    jobs = std::clamp<std::size_t>(count, 1, std::max<std::size_t>(jobs, 1));
    if (jobs == 1) {
        for (std::size_t i = 0; i < count; ++i) {
            work(i, 0);
            use(i, 0);
        }
        return;
    }
    Run(count, jobs, work).useAll(use);
}

}  // namespace velmo::tool
