#include "net/SessionLoop.h"

#include <velmocore/platform/Log.h>

#include <algorithm>
#include <chrono>

#include "net/DownloadTask.h"
#include "net/LoadErrors.h"

namespace velmo::detail {
namespace {

/// Downloads under way at once. More would gain nothing, and cost a socket each.
constexpr std::size_t MostActive = 64;
constexpr std::chrono::milliseconds LongestWait{1000};

/// Does something to a task. Want of memory ends that one and not the thread.
template <class Work>
void guard(DownloadTask& task, Work work) {
    try {
        work();
    } catch (const std::exception& error) {
        task.cancelWithError(urlError(URLErrorUnknown, String::fromUTF8(error.what())));
    }
}

}  // namespace

SessionLoop& SessionLoop::shared() {
    // What the thread uses is made before the loop, and so outlives it.
    static_cast<void>(CookieJar::shared());
    static SessionLoop loop;
    return loop;
}

SessionLoop::SessionLoop() : loader_(std::make_shared<HttpLoader>()), thread_([this] { run(); }) {}

SessionLoop::~SessionLoop() {
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
    }
    loader_->wakeUp();
    thread_.join();
}

void SessionLoop::add(Waiting&& download) {
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(download));
    }
    loader_->wakeUp();
}

void SessionLoop::run() {
    while (admit()) {
        loader_->step(longestWait());
        pollAll();
    }
    active_.clear();
}

/// Starts what waits, as far as there is room. False when the program ends.
bool SessionLoop::admit() {
    std::unique_lock lock(mutex_);
    while (!isStopping_ && active_.size() < MostActive && !waiting_.empty()) {
        Waiting next = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        auto task = std::make_unique<DownloadTask>(nullptr, nullptr);
        task->accepts = std::move(next.acceptResponse);
        guard(*task, [&] { task->start(loader_, next.request, std::move(next.cookies)); });
        active_.push_back({std::move(task), std::move(next.completionHandler)});
        lock.lock();
    }
    return !isStopping_;
}

std::chrono::milliseconds SessionLoop::longestWait() const {
    using std::chrono::milliseconds;
    auto wait = LongestWait;
    const auto now = DownloadTask::Clock::now();
    for (const auto& [task, handler] : active_) {
        if (!task->_connection || task->_connection->hasNews()) return milliseconds(0);
        const auto left = std::chrono::ceil<milliseconds>(task->deadline() - now);
        wait = std::clamp(left, milliseconds(0), wait);
    }
    return wait;
}

void SessionLoop::pollAll() {
    std::vector<Active> ended;
    for (Active& active : active_) {
        bool goesOn = false;
        guard(*active.task, [&] { goesOn = active.task->poll(); });
        if (!goesOn) ended.push_back(std::move(active));
    }
    std::erase_if(active_, [](const Active& active) { return !active.task; });
    for (Active& active : ended) complete(std::move(active));
}

void SessionLoop::complete(Active&& ended) {
    DownloadTask& task = *ended.task;
    try {
        ended.completionHandler(std::move(task._resourceData), std::move(task._response),
                                std::move(task._error));
    } catch (...) {
        log("An exception left a completion handler");
    }
}

}  // namespace velmo::detail
