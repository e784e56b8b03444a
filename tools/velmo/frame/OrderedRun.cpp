// A number is handed out to the next thread that is free, and its report is written when all
// before it are: by its own thread if it has too much to keep, else by whichever thread finishes
// the one before it. So no thread exists only to write, and the lowest number at work never
// waits, which is why the others may.
#include "OrderedRun.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

namespace velmo::tool {
namespace {

using Work = FunctionRef<void(std::size_t, Report&)>;

/// So many numbers for each thread may be at work or wait to be written: enough that a slow one
/// does not hold up the others.
constexpr std::size_t AheadPerThread = 4;

/// Thrown through work whose turn will never come.
struct Stopped {};

class Run {
public:
    Run(Session& session, std::size_t count, std::size_t jobs, Work work)
        : session_(session), count_(count), ahead_(AheadPerThread * jobs), work_(work) {}

    /// Works until nothing is left to begin.
    void workOn() {
        while (const auto i = begin()) {
            try {
                auto report = std::make_unique<Report>(session_, [this, n = *i] { awaitTurn(n); });
                work_(*i, *report);
                finish(*i, std::move(report));
            } catch (const Stopped&) {
                return;
            } catch (...) {
                return stop(std::current_exception());
            }
        }
    }
    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }
    void stop(std::exception_ptr failure) {
        const std::scoped_lock lock(mutex_);
        if (!failure_) failure_ = failure;
        stopped_ = true;
        changed_.notify_all();
    }

private:
    std::optional<std::size_t> begin() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return isOver() || next_ < turn_ + ahead_; });
        if (isOver()) return std::nullopt;
        return next_++;
    }

    bool isOver() const { return stopped_ || next_ == count_ || session_.isSettled(); }

    void awaitTurn(std::size_t i) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return stopped_ || turn_ == i; });
        if (stopped_) throw Stopped();
    }

    /// Keeps the report, and writes all that now have their turn.
    void finish(std::size_t i, std::unique_ptr<Report> report) {
        std::unique_lock lock(mutex_);
        done_.emplace(i, std::move(report));
        for (auto first = done_.find(turn_); first != done_.end(); first = done_.find(turn_)) {
            const auto node = done_.extract(first);
            lock.unlock();
            node.mapped()->flush();
            session_.console.showProgress(node.key() + 1, count_);
            lock.lock();
            ++turn_;
            changed_.notify_all();
        }
    }

    Session& session_;
    const std::size_t count_, ahead_;
    const Work work_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t next_ = 0, turn_ = 0;
    std::map<std::size_t, std::unique_ptr<Report>> done_;
    bool stopped_ = false;
    std::exception_ptr failure_;
};

/// Threads beside this one, as many as can be made of those that are wanted.
std::vector<std::jthread> makeThreads(Run& run, std::size_t wanted) {
    std::vector<std::jthread> threads;
    threads.reserve(wanted);
    try {
        while (threads.size() < wanted) threads.emplace_back([&run] { run.workOn(); });
    } catch (const std::system_error&) {
        // Those that are there do the work.
    }
    return threads;
}

}  // namespace

std::size_t defaultJobs() { return std::max(1u, std::thread::hardware_concurrency()); }

void runInOrder(Session& session, std::size_t count, std::size_t jobs, Work work) {
    if (count == 0) return;
    jobs = std::clamp<std::size_t>(count, 1, std::max<std::size_t>(jobs, 1));
    Run run(session, count, jobs, work);
    {
        const std::vector<std::jthread> threads = makeThreads(run, jobs - 1);
        run.workOn();
    }
    run.rethrow();
}

}  // namespace velmo::tool
