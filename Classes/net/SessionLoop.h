// The thread that drives all downloads for which nobody waits.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <velmocore/net/DownloadRequest.h>

#include "net/HttpLoader.h"

namespace velmo::detail {

class DownloadTask;

/// Starts its thread when it is made, and joins it when it goes: what has not ended by then is
/// given up.
class SessionLoop {
public:
    /// The one of the process, made at its first use.
    static SessionLoop& shared();

    SessionLoop();
    ~SessionLoop();
    SessionLoop(const SessionLoop&) = delete;
    SessionLoop& operator=(const SessionLoop&) = delete;

    /// A download that waits for its turn.
    struct Waiting {
        URLRequest request;
        std::shared_ptr<CookieJar> cookies;
        std::function<bool(const URLResponse& response)> acceptResponse;
        DownloadCompletionHandler completionHandler;
    };
    void add(Waiting&& download);
    /// Whether the caller is a completion handler.
    [[nodiscard]] bool isThisThread() const noexcept {
        return std::this_thread::get_id() == thread_.get_id();
    }

private:
    struct Active {
        std::unique_ptr<DownloadTask> task;
        DownloadCompletionHandler completionHandler;
    };

    void run();
    bool admit();
    [[nodiscard]] std::chrono::milliseconds longestWait() const;
    void pollAll();
    static void complete(Active&& ended);

    std::mutex mutex_;
    std::deque<Waiting> waiting_;  // guarded by the mutex, as is the next
    bool isStopping_ = false;
    std::shared_ptr<HttpLoader> loader_;
    std::vector<Active> active_;  // of the thread alone
    std::thread thread_;
};

}  // namespace velmo::detail
