// The steps and their order are kept to the letter, the counters above all: who owns a helper knows
// it by them. A task that is given up stays so, since only a start could mend it and none is tried.
//
// Beyond them one thing is seen to: a helper that was stopped is gone when the call returns. The
// next one registers the same name, and would find it taken or, worse, its owner would find the old
// one.
#include <velmocore/system/HelperTask.h>

#include <fmt/core.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <exception>
#include <thread>

#include <velmocore/platform/Log.h>
#include <velmocore/system/ChildProcess.h>
#include <velmocore/system/ConnectionTable.h>

#include "platform/ExceptionLog.h"
#include "system/Bus.h"
#include "system/ConnectionFolder.h"
#include "system/HelperWaits.h"

namespace velmo {
namespace {

/// Failures in a row with which a helper is given up.
constexpr std::uint64_t MostFailures = 2;
constexpr const char Class[] = "HelperTask";

int nicenessOf(QualityOfService quality) {
    switch (quality) {
        case QualityOfService::Background:
            return 10;
        case QualityOfService::Utility:
            return 5;
        default:
            return 0;
    }
}

void logFailure(const char* operation, const Error& error) {
    detail::logException(operation, Class, fmt::format("{} {}", error.domain.utf8(), error.code),
                         error.text.utf8());
}

/// Whether the child ends in time.
bool endsWithin(double seconds, const ChildProcess& child) {
    using namespace std::chrono_literals;
    const detail::Deadline deadline(seconds);
    for (auto pause = 1ms; child.isRunning(); pause = std::min(pause * 2, 20ms)) {
        if (deadline.isOver()) return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

/// A socket file that the helper had no time to remove. A look-up removes it.
void removeTracesOf(const String& name) {
    int failure = 0;
    if (const auto folder = detail::ConnectionFolder::open())
        (void)folder->connect(detail::fileOfRegisteredName(name), failure);
}

std::string lastComponent(const Path& path) { return path.filesystemPath().filename().string(); }

}  // namespace

detail::HelperWaits& detail::helperWaits() noexcept {
    static HelperWaits waits;
    return waits;
}

std::unique_ptr<HelperTask> HelperTask::helperTaskWithPath(Path path, String registeredProxyName,
                                                           HelperTaskOptions options) {
    if (!path.bytes().empty() && !registeredProxyName.isEmpty())
        return std::unique_ptr<HelperTask>(
            new HelperTask(std::move(path), std::move(registeredProxyName), std::move(options)));
    log(fmt::format("Helper missing: {}",
                    registeredProxyName.isAbsent() ? "(null)" : registeredProxyName.utf8()));
    return nullptr;
}

HelperTask::HelperTask(Path path, String proxyName, HelperTaskOptions options)
    : proxyName_(std::move(proxyName)),
      path_(std::move(path)),
      protocol_(std::move(options.protocol)),
      timeout_(options.timeout),
      qualityOfService_(options.qualityOfService) {}

HelperTask::~HelperTask() { terminate(); }

std::optional<HelperProxy> HelperTask::failed(const char* what, const std::string& subject,
                                              const char* verdict) {
    ++failedAttempts_;
    log(fmt::format("{}{}{}.{}", what, subject, verdict,
                    failedAttempts_ == MostFailures ? " Giving up." : ""));
    return std::nullopt;
}

std::optional<HelperProxy> HelperTask::start(double timeout) {
    task_ = std::make_unique<ChildProcess>(
        LaunchOptions{.path = path_, .niceIncrement = nicenessOf(qualityOfService_)});
    task_->launch();
    if (!task_->isRunning()) {
        task_.reset();
        return failed("Couldn't launch ", path_.bytes(), "");
    }
    Error error;
    RootProxyWait wait;
    wait.timeout = timeout;
    wait.protocol = protocol_;
    wait.interval = detail::helperWaits().registration;
    auto proxy = waitForRootProxyForConnectionWithRegisteredName(proxyName_, wait, &error);
    if (!proxy && !error.domain.isAbsent()) {
        logFailure("launchUsingTimeout:", error);
        interrupt();
    } else if (!proxy) {
        return failed("Connection to ", lastComponent(path_), " failed");
    } else {
        failedAttempts_ = 0;
        ++numConnections_;
    }
    return proxy;
}

std::optional<HelperProxy> HelperTask::launchUsingTimeout(double timeout) {
    interrupt();
    if (failedAttempts_ >= MostFailures) return std::nullopt;
    try {
        return start(timeout);
    } catch (const std::exception& exception) {
        detail::logException("launchUsingTimeout:", Class, "std::exception", exception.what());
        interrupt();
    }
    return std::nullopt;
}

std::optional<HelperProxy> HelperTask::proxyUsingTimeout(double timeout) {
    const bool isLimited = maxConnections_ != 0 && maxConnections_ != UnlimitedConnections;
    if (isLimited && ++numConnections_ >= maxConnections_) interrupt();
    auto proxy = launchedProxyUsingTimeout(timeout);
    return proxy ? proxy : launchUsingTimeout(timeout);
}

std::optional<HelperProxy> HelperTask::launchedProxyUsingTimeout(double timeout) {
    Error error;
    auto proxy = rootProxyForConnectionWithRegisteredName(
        proxyName_, {.timeout = timeout, .protocol = protocol_}, &error);
    if (!proxy && !error.domain.isAbsent()) logFailure("launchedProxyUsingTimeout:", error);
    return proxy;
}

bool HelperTask::stillBusy() {
    const auto proxy = launchedProxyUsingTimeout(timeout_);
    if (!proxy || !proxy->offers(u"stillBusy")) return false;
    const auto answer = proxy->call(u"stillBusy");
    const bool* isBusy = answer ? std::get_if<bool>(&answer->value) : nullptr;
    return isBusy && *isBusy;
}

void HelperTask::waitUntilDone(double seconds) {
    constexpr double Step = 0.05;
    // What fails on the way is no longer waited for, and is not told either.
    for (double waited = 0; waited < seconds && stillBusy(); waited += Step)
        std::this_thread::sleep_for(std::chrono::duration<double>(Step));
}

void HelperTask::stop(const char* operation, void (ChildProcess::*ask)()) {
    if (!task_) return;
    try {
        if (task_->isRunning()) {
            ((*task_).*ask)();
            const bool hasEnded = endsWithin(detail::helperWaits().ending, *task_);
            if (!hasEnded) ::kill(task_->processNumber(), SIGKILL);
            task_->waitUntilExit();
        }
        removeTracesOf(proxyName_);
    } catch (const std::exception& exception) {
        detail::logException(operation, Class, "std::exception", exception.what());
    }
    invalidate();
}

void HelperTask::terminate() { stop("terminate", &ChildProcess::terminate); }
void HelperTask::interrupt() { stop("interrupt", &ChildProcess::interrupt); }

void HelperTask::invalidate() {
    removeConnectionRegisteredWithName(proxyName_);
    task_.reset();
    numConnections_ = 0;
}

int HelperTask::processNumber() const {
    return task_ && task_->isRunning() ? task_->processNumber() : 0;
}

}  // namespace velmo
