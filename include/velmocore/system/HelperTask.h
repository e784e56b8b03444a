#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>
#include <velmocore/platform/String.h>
#include <velmocore/system/NamedConnection.h>

namespace velmo {

class ChildProcess;

/// How much of the machine a helper may take from others; any other number is Default.
enum class QualityOfService : std::int64_t {
    Default = -1,          ///< as nice as its owner
    Background = 9,        ///< 10 steps nicer than its owner
    Utility = 17,          ///< 5 steps nicer
    UserInitiated = 25,    ///< as Default
    UserInteractive = 33,  ///< as Default
};

/// How a helper is started and talked to.
struct HelperTaskOptions {
    /// Set for each connection to the helper.
    std::optional<HelperProtocol> protocol = {};
    /// The default of all operations, in seconds; 0 is without end.
    double timeout = 0;
    QualityOfService qualityOfService = QualityOfService::Default;
};

/// A helper process that is started when it is needed, comes back after a crash and is given up
/// after a second failure in a row. The program publishes its object under a name, with
/// HelperService; its owner does risky or heavy work through the proxy.
///
///     auto task = HelperTask::helperTaskWithPath("/no/such/program", u"org.example.converter");
///     auto proxy = task->proxy();    // (starts the program, finds its object)
///     if (proxy) proxy->call(u"text", {PropertyList{String(u"<b>bold</b>")}});
///
/// One thread at a time uses it. A proxy is for the thread that got it; another thread asks for its
/// own. The helper gets no arguments, and the streams and the environment of its owner.
class VELMO_API HelperTask {
public:
    /// As many uses as there may be.
    static constexpr std::uint64_t UnlimitedConnections = 0x7FFFFFFFFFFFFFFF;

    /// Null, with a line in the log, for an empty path or name. Nothing is started yet.
    [[nodiscard]] static std::unique_ptr<HelperTask> helperTaskWithPath(
        Path path, String registeredProxyName, HelperTaskOptions options = {});
    /// Terminates the helper, so that it never outlives its owner.
    ~HelperTask();
    HelperTask(const HelperTask&) = delete;
    HelperTask& operator=(const HelperTask&) = delete;

    /// Starts the helper, after stopping one that runs, and waits up to 5 seconds for its object.
    /// Absent, with a line in the log, if it does not run or publishes nothing; after the second
    /// time in a row nothing is tried any more, and a new task has to be made. Time-outs are
    /// those of the proxy's calls, in seconds.
    std::optional<HelperProxy> launchUsingTimeout(double timeout);
    std::optional<HelperProxy> launch() { return launchUsingTimeout(timeout_); }

    /// The object of the helper that runs, else of one that is started. A use: with the last of
    /// maxConnections() the helper is started anew, for one that leaks.
    std::optional<HelperProxy> proxyUsingTimeout(double timeout);
    std::optional<HelperProxy> proxy() { return proxyUsingTimeout(timeout_); }

    /// The object of a helper that runs; starts none.
    std::optional<HelperProxy> launchedProxyUsingTimeout(double timeout);

    /// Whether a helper that runs says so; false for one that cannot.
    bool stillBusy();
    /// Waits until the helper is no longer busy, for that many seconds at most.
    void waitUntilDone(double seconds);

    /// Stop the helper, by SIGTERM or SIGINT, and invalidate(). One that has not ended 2 seconds
    /// later is killed: its name must be free for the next.
    void terminate();
    void interrupt();
    /// Lets go of the connection of this thread and of the helper, which goes on.
    void invalidate();

    /// The time-out of calls where none is given, in seconds; 0 is without end.
    [[nodiscard]] double timeout() const noexcept { return timeout_; }
    void setTimeout(double seconds) noexcept { timeout_ = seconds; }
    /// After how many uses the helper is started anew.
    [[nodiscard]] std::uint64_t maxConnections() const noexcept { return maxConnections_; }
    /// 0 is unlimited, too.
    void setMaxConnections(std::uint64_t count) noexcept { maxConnections_ = count; }
    /// Uses since the helper was started.
    [[nodiscard]] std::uint64_t numConnections() const noexcept { return numConnections_; }
    /// Failures in a row; given up above 1.
    [[nodiscard]] std::uint64_t failedAttempts() const noexcept { return failedAttempts_; }
    /// The number of the helper's process; 0 if none runs.
    [[nodiscard]] int processNumber() const;

private:
    HelperTask(Path path, String proxyName, HelperTaskOptions options);
    std::optional<HelperProxy> start(double timeout);
    std::optional<HelperProxy> failed(const char* what, const std::string& subject,
                                      const char* verdict);
    void stop(const char* operation, void (ChildProcess::*ask)());

    std::unique_ptr<ChildProcess> task_;
    const String proxyName_;
    const Path path_;
    const std::optional<HelperProtocol> protocol_;
    double timeout_;
    std::uint64_t failedAttempts_ = 0;
    std::uint64_t numConnections_ = 0;
    std::uint64_t maxConnections_ = UnlimitedConnections;
    const QualityOfService qualityOfService_;
};

}  // namespace velmo
