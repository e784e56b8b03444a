// One thread, the caller's, asks the source, writes to the store and calls the handler; reading a
// page, which takes nearly all of the time, is done by whichever thread is free, the caller's too
// when it has nothing better to do. So one thread alone needs no other, and none exists only to
// wait.
//
// Pages in flight stand in one queue in the order of the source: in front those that are being read
// or were read, behind them those that nobody has taken yet. Only the first leaves it. The queue is
// short, by pages and by bytes, and that is what bounds the memory of a run of any length.
#include <velmocore/gather/Gathering.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "gather/GatherErrors.h"

namespace velmo {
namespace {

/// So many pages for each thread may be in flight: enough that a slow one does not hold up others.
constexpr std::size_t PagesPerThread = 8;
/// And so many bytes of all, before they are read; one page always may.
constexpr std::size_t MostBytesAhead = std::size_t{1} << 24;
/// Between two questions to a source that has nothing and does not wait itself.
constexpr auto Pause = std::chrono::milliseconds(2);

/// A power cut costs no more than the work of so long.
constexpr auto LongestUnsynchronized = std::chrono::seconds(5);

/// A page in flight.
struct Job {
    SourcePage source;
    GatheredPage page;
    Data block = {};       ///< of the store, if it is to be kept
    std::size_t size = 0;  ///< of its bytes when it came
    bool isRead = false;
};

bool isKept(const PageRecord& record, const GatherOptions& options) {
    if (record.isErrorPage && !options.errorPages) return false;
    return !options.keep || options.keep(record);
}

/// An archive keeps what was loaded again and had not changed as a note of that only.
void readRepeated(Job& job, const GatherOptions& options) {
    PageRecord& record = job.page.record;
    record.url = job.source.url;
    record.fetched = job.source.fetched;
    record.key = pageKey(record.url, options.reading.keys);
    const String former = pageKey(*job.source.repeats, options.reading.keys);
    if (former != record.key) job.page.duplicateOf = former;
    job.page.isKept = true;
}

void readJob(Job& job, const GatherOptions& options) {
    SourcePage& source = job.source;
    if (source.complete && !source.error) std::exchange(source.complete, nullptr)(source);
    if (source.error || source.isLeftOut) return;
    if (source.repeats) return readRepeated(job, options);
    PageRecord& record = job.page.record = readPage(std::move(job.source), options.reading);
    job.page.isKept = isKept(record, options);
    if (options.store == nullptr || !job.page.isKept) return;
    if (record.key.isEmpty()) {
        job.source.error = detail::gatherError("it has no address");
        return;
    }
    job.block = dataFromPageRecord(record, options.writing);
    std::ranges::copy(StoredPage(job.block).digest(), record.digest.begin());
}

/// Does all for a page that needs no order. What goes wrong is this page's matter alone.
Job& readGuarded(Job& job, const GatherOptions& options) {
    try {
        readJob(job, options);
    } catch (const std::bad_alloc&) {
        job.source.error = detail::gatherError("not enough memory");
    } catch (const std::exception& exception) {
        job.source.error = detail::gatherError(exception.what());
    } catch (...) {
        job.source.error = detail::gatherError("the page could not be read");
    }
    job.page.name = std::move(job.source.name);
    job.page.error = std::move(job.source.error);
    job.source.bytes = Data();
    if (job.page.error) {
        job.page.record = {};
        job.page.isKept = false;
    }
    return job;
}

/// The pages in flight. Any thread may take one to read it; all else is the caller's.
class Flight {
public:
    explicit Flight(std::size_t threads) : mostPages_(PagesPerThread * threads) {}

    bool isEmpty() const { return jobs_.empty(); }
    bool hasRoom() const {
        return jobs_.empty() || (jobs_.size() < mostPages_ && bytes_ < MostBytesAhead);
    }

    void add(SourcePage&& source) {
        const std::scoped_lock lock(mutex_);
        const std::size_t size = source.bytes.size();
        jobs_.push_back({.source = std::move(source), .page = {}, .size = size});
        bytes_ += size;
        hasWork_.notify_one();
    }

    /// The first page that nobody has taken; null if there is none.
    Job* take() {
        const std::scoped_lock lock(mutex_);
        return taken_ < jobs_.size() ? &jobs_[taken_++] : nullptr;
    }
    /// The same, which waits for one; null at the end.
    Job* await() {
        std::unique_lock lock(mutex_);
        hasWork_.wait(lock, [this] { return isOver_ || taken_ < jobs_.size(); });
        return isOver_ ? nullptr : &jobs_[taken_++];
    }

    void setRead(Job& job) {
        const std::scoped_lock lock(mutex_);
        job.isRead = true;
        if (&job == &jobs_.front()) isFirstRead_.notify_one();
    }

    /// The first page if it was read, else null. It may be changed until it is dropped.
    Job* first() {
        const std::scoped_lock lock(mutex_);
        return !jobs_.empty() && jobs_.front().isRead ? &jobs_.front() : nullptr;
    }
    void awaitFirst() {
        std::unique_lock lock(mutex_);
        isFirstRead_.wait(lock, [this] { return jobs_.front().isRead; });
    }
    void dropFirst() {
        Job first;
        const std::scoped_lock lock(mutex_);
        first = std::move(jobs_.front());
        bytes_ -= first.size;
        jobs_.pop_front();
        --taken_;
    }

    void end() {
        const std::scoped_lock lock(mutex_);
        isOver_ = true;
        hasWork_.notify_all();
    }

private:
    // The caller is the only one who adds and drops, and may look at these without the lock.
    std::deque<Job> jobs_;
    std::size_t bytes_ = 0;
    const std::size_t mostPages_;
    std::mutex mutex_;
    std::condition_variable hasWork_, isFirstRead_;
    std::size_t taken_ = 0;
    bool isOver_ = false;
};

/// Threads that read; they end with it.
class Readers {
public:
    Readers(Flight& flight, const GatherOptions& options, std::size_t count) : flight_(flight) {
        threads_.reserve(count);
        try {
            while (threads_.size() < count)
                threads_.emplace_back([&flight, &options] {
                    while (Job* job = flight.await()) flight.setRead(readGuarded(*job, options));
                });
        } catch (const std::system_error&) {
            // Those that are there do the work, and the caller's own thread.
        }
    }
    ~Readers() { flight_.end(); }
    Readers(const Readers&) = delete;
    Readers& operator=(const Readers&) = delete;

private:
    Flight& flight_;
    std::vector<std::jthread> threads_;
};

std::size_t threadsFor(const GatherOptions& options) {
    return options.threads > 0 ? options.threads
                               : std::max(1U, std::thread::hardware_concurrency());
}

using Clock = std::chrono::steady_clock;
using Handler = FunctionRef<bool(GatheredPage&)>;

class Run {
public:
    Run(PageSource& source, const GatherOptions& options, Handler handler)
        : source_(source), options_(options), handler_(handler), flight_(threadsFor(options)) {}

    GatherSummary run() {
        {
            const Readers readers(flight_, options_, threadsFor(options_) - 1);
            while (!isOver_ && step()) {
            }
        }
        if (options_.store != nullptr && !options_.store->synchronize()) summary_.isStored = false;
        return summary_;
    }

private:
    /// Does what is most urgent; false if nothing is left to do.
    bool step() {
        if (Job* first = flight_.first())
            deliver(*first);
        else if (isAsking_ && flight_.hasRoom())
            ask();
        else if (Job* job = flight_.take())
            flight_.setRead(readGuarded(*job, options_));
        else if (flight_.isEmpty())
            return false;
        else
            flight_.awaitFirst();
        return true;
    }

    void ask() {
        if (options_.shouldStop && options_.shouldStop()) {
            isOver_ = true;
            return;
        }
        SourcePage page;
        switch (source_.next(page)) {
            case PageSource::State::Page:
                return flight_.add(std::move(page));
            case PageSource::State::Wait:
                // The next one may be found by those in flight, so they come first.
                if (flight_.isEmpty())
                    std::this_thread::sleep_for(Pause);
                else
                    isAsking_ = false;
                return;
            case PageSource::State::End:
                hasEnded_ = true;
                isAsking_ = false;
                return;
        }
    }

    void deliver(Job& job) {
        GatheredPage& page = job.page;
        if (!job.source.isLeftOut) {
            store(job);
            count(page);
            synchronizeNowAndThen();
            if (!handler_(page)) isOver_ = true;
        }
        source_.didRead(page.record);
        flight_.dropFirst();
        isAsking_ = !hasEnded_;
        if (options_.limit > 0 && kept_ >= options_.limit) isOver_ = true;
    }

    void store(Job& job) {
        GatheredPage& page = job.page;
        if (options_.store == nullptr || !page.isKept) return;
        if (!job.source.repeats) {
            page.stored = options_.store->put(page.record, job.block);
            if (page.stored == PutResult::Duplicate)
                page.duplicateOf = options_.store->keyOfText(page.record.digest);
        } else {
            page.stored = page.duplicateOf.isAbsent() ? PutResult::Unchanged : PutResult::Duplicate;
        }
    }

    void synchronizeNowAndThen() {
        const auto now = Clock::now();
        if (options_.store == nullptr || now - synchronized_ < LongestUnsynchronized) return;
        synchronized_ = now;
        if (options_.store->synchronize()) return;
        summary_.isStored = false;
        isOver_ = true;
    }

    void count(const GatheredPage& page) {
        ++(page.error ? summary_.failed : summary_.pages);
        if (page.error) return;
        if (!page.isKept) ++summary_.leftOut;
        if (page.isKept && page.stored != PutResult::Duplicate) ++kept_;
        if (page.stored) countStored(*page.stored);
    }

    void countStored(PutResult result) {
        switch (result) {
            case PutResult::Added:
                ++summary_.added;
                return;
            case PutResult::Replaced:
                ++summary_.replaced;
                return;
            case PutResult::Unchanged:
                ++summary_.unchanged;
                return;
            case PutResult::Duplicate:
                ++summary_.duplicates;
                return;
            case PutResult::Failed:
                summary_.isStored = false;
                isOver_ = true;
                return;
        }
    }

    PageSource& source_;
    const GatherOptions& options_;
    const Handler handler_;
    Flight flight_;
    GatherSummary summary_;
    Clock::time_point synchronized_ = Clock::now();
    std::size_t kept_ = 0;
    bool isAsking_ = true, hasEnded_ = false, isOver_ = false;
};

}  // namespace

GatherSummary gatherPages(PageSource& source, const GatherOptions& options,
                          FunctionRef<bool(GatheredPage& page)> handler) {
    return Run(source, options, handler).run();
}

}  // namespace velmo
