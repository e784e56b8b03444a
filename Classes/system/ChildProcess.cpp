// Child processes by posix_spawn, so that a large program with many threads starts one quickly and
// without a moment in which its locks are copied.
//
// The number of a process is its own only until its status is taken. So the status is taken under a
// lock, and signals are sent under the same one: none can reach another process that got the number
// meanwhile. Waiting is done outside of the lock and leaves the status where it is.
#include <velmocore/system/ChildProcess.h>

#include <fmt/core.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <thread>

#include "platform/ExceptionLog.h"

namespace velmo {
namespace {

using Texts = std::vector<std::string>;

constexpr int FirstFileOfItsOwn = STDERR_FILENO + 1;

/// Pointers as the system wants them, null at the end.
std::vector<char*> pointersTo(Texts& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// A string that the child would get cut is refused.
bool hasNul(const std::string& text) { return text.find('\0') != std::string::npos; }

bool isUsable(const LaunchOptions& options) {
    const auto isBad = [](const auto& variable) {
        return variable.first.empty() || hasNul(variable.first) || hasNul(variable.second) ||
               variable.first.find('=') != std::string::npos;
    };
    return !options.path.bytes().empty() && std::ranges::none_of(options.arguments, hasNul) &&
           std::ranges::none_of(options.environment, isBad);
}

Texts argumentsOf(const LaunchOptions& options) {
    Texts texts = {options.path.bytes()};
    texts.insert(texts.end(), options.arguments.begin(), options.arguments.end());
    return texts;
}

Texts environmentOf(const LaunchOptions& options) {
    Texts texts;
    for (char** variable = environ; variable && *variable; ++variable)
        texts.emplace_back(*variable);
    for (const auto& [name, value] : options.environment) {
        std::erase_if(texts,
                      [start = name + "="](const auto& text) { return text.starts_with(start); });
        texts.push_back(name + "=" + value);
    }
    return texts;
}

/// What is done in the child before it becomes the program.
class SpawnSettings {
public:
    explicit SpawnSettings(const Path& folder) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawnattr_init(&attributes_);
        if (!folder.bytes().empty())
            ::posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
        ::posix_spawn_file_actions_addclosefrom_np(&actions_, FirstFileOfItsOwn);
        sigset_t all, none;
        sigfillset(&all);
        sigemptyset(&none);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnSettings() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    const posix_spawn_file_actions_t* actions() const { return &actions_; }
    const posix_spawnattr_t* attributes() const { return &attributes_; }

private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

/// Does the work on a thread that is nicer to others. A child has that from the thread which starts
/// it; were it changed afterwards, the child's first work, and threads that it has made, would not
/// be concerned. A refusal is no failure, since a child that is as all others are is better than
/// none.
template <class Work>
void runNicely(int increment, Work work) {
    std::thread([&] {
        ::setpriority(PRIO_PROCESS, 0, ::getpriority(PRIO_PROCESS, 0) + increment);
        work();
    }).join();
}

/// 0, or why not.
int spawn(const LaunchOptions& options, pid_t& process) {
    if (!isUsable(options)) return EINVAL;
    std::error_code error;
    const auto program = std::filesystem::absolute(options.path.filesystemPath(), error);
    if (error) return error.value();
    Texts arguments = argumentsOf(options), environment = environmentOf(options);
    const SpawnSettings settings(options.folder);
    int failure = 0;
    const auto start = [&] {
        failure =
            ::posix_spawn(&process, program.c_str(), settings.actions(), settings.attributes(),
                          pointersTo(arguments).data(), pointersTo(environment).data());
    };
    options.niceIncrement == 0 ? start() : runNicely(options.niceIncrement, start);
    return failure;
}

std::string describe(const LaunchOptions& options, int failure) {
    const std::string where = options.folder.bytes().empty() ? "" : " in " + options.folder.bytes();
    return fmt::format("{}{}: {}", options.path.bytes(), where, std::strerror(failure));
}

Termination terminationOf(int status) {
    if (WIFEXITED(status)) return {Termination::Reason::Exit, WEXITSTATUS(status)};
    return {Termination::Reason::Signal, WTERMSIG(status)};
}

/// Children that nobody waits for any more. Their statuses are taken when there is occasion to.
class Abandoned {
public:
    static Abandoned& list() {
        static auto& list = *new Abandoned;  // never freed: objects may outlive main()
        return list;
    }
    void add(pid_t process) {
        const std::lock_guard lock(mutex_);
        processes_.push_back(process);
    }
    void collect() {
        const std::lock_guard lock(mutex_);
        std::erase_if(processes_,
                      [](pid_t process) { return ::waitpid(process, nullptr, WNOHANG) != 0; });
    }

private:
    std::mutex mutex_;
    std::vector<pid_t> processes_;
};

}  // namespace

struct ChildProcess::State {
    explicit State(LaunchOptions all) : options(std::move(all)) {}

    /// Takes the status if there is one. Under the lock.
    void look() {
        if (process == 0 || end) return;
        int status = 0;
        const pid_t found = ::waitpid(process, &status, WNOHANG);
        if (found == process) end = terminationOf(status);
        if (found < 0) end = Termination();
    }
    void send(int signal) {
        const std::lock_guard lock(mutex);
        look();
        if (process != 0 && !end) ::kill(process, signal);
    }

    const LaunchOptions options;
    std::mutex mutex;
    pid_t process = 0;
    std::optional<Termination> end;
};

ChildProcess::ChildProcess(LaunchOptions options)
    : state_(std::make_unique<State>(std::move(options))) {}

ChildProcess::~ChildProcess() {
    if (isRunning()) Abandoned::list().add(state_->process);
}

ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(state_, other.state_);
    return *this;
}

bool ChildProcess::launch(Error* error) {
    Abandoned::list().collect();
    const std::lock_guard lock(state_->mutex);
    const int failure = state_->process ? EALREADY : spawn(state_->options, state_->process);
    if (failure != 0 && error)
        *error = {u"posix", failure, String::fromUTF8(describe(state_->options, failure))};
    return failure == 0;
}

bool ChildProcess::isRunning() const {
    if (!state_) return false;
    const std::lock_guard lock(state_->mutex);
    state_->look();
    return state_->process != 0 && !state_->end;
}

int ChildProcess::processNumber() const noexcept { return state_->process; }

void ChildProcess::terminate() { state_->send(SIGTERM); }
void ChildProcess::interrupt() { state_->send(SIGINT); }

std::optional<Termination> ChildProcess::waitUntilExit() {
    while (isRunning()) {
        siginfo_t info;
        // Whatever this says, whether the child has ended is seen by the next look.
        ::waitid(P_PID, static_cast<id_t>(state_->process), &info, WEXITED | WNOWAIT);
    }
    return termination();
}

std::optional<Termination> ChildProcess::termination() const {
    const std::lock_guard lock(state_->mutex);
    state_->look();
    return state_->end;
}

bool ChildProcess::launchAndWaitUntilExit() {
    Error error;
    if (!launch(&error)) {
        detail::logException("launchAndWaitUntilExit", "ChildProcess",
                             fmt::format("{} {}", error.domain.utf8(), error.code),
                             error.text.utf8());
        return false;
    }
    return waitUntilExit()->isSuccess();
}

bool launchTaskAndWaitUntilExitWithLaunchPath(const Path& path,
                                              std::vector<std::string> arguments) {
    if (path.bytes().empty()) return false;
    return ChildProcess({.path = path, .arguments = std::move(arguments)}).launchAndWaitUntilExit();
}

}  // namespace velmo
