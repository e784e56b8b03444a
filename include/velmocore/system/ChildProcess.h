#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <velmocore/platform/Error.h>
#include <velmocore/platform/Export.h>
#include <velmocore/platform/Path.h>

namespace velmo {

/// What a child process is started with.
struct LaunchOptions {
    /// The program. It is not searched for: a relative path is taken from the current folder of the
    /// caller, whatever the folder below is.
    Path path = {};
    /// Bytes as the program gets them; no shell looks at them. The name of the program is not one.
    std::vector<std::string> arguments = {};
    /// Where the child works; the caller's folder if absent.
    Path folder = {};
    /// Variables, with their values, that the child has besides those of the caller, or instead.
    std::vector<std::pair<std::string, std::string>> environment = {};
    /// By how much the child is nicer to other processes than the caller.
    int niceIncrement = 0;
};

/// How a child process came to its end.
struct Termination {
    /// What ended it.
    enum class Reason {
        Exit,     ///< by itself; the status is what it exited with
        Signal,   ///< by a signal, whose number the status is
        Unknown,  ///< somebody else has taken its status, as a program does that ignores SIGCHLD
    };
    Reason reason = Reason::Unknown;
    int status = 0;  ///< as the reason tells

    /// Whether it exited by itself and with 0.
    [[nodiscard]] bool isSuccess() const noexcept { return reason == Reason::Exit && status == 0; }
    friend bool operator==(const Termination&, const Termination&) noexcept = default;
};

/// A program that runs beside the caller: launched once, waited for or stopped.
///
/// The child has the caller's standard streams and none of its other files; no signal is blocked or
/// ignored in it. Only this child is ever waited for, so that the program may have others. Whoever
/// lets go of the object leaves the child to itself: it goes on, and does not become a zombie that
/// stays.
///
///     ChildProcess child({.path = "/bin/sh", .arguments = {"-c", "exit 3"}});
///     child.launch();                    // true
///     child.waitUntilExit()->status;     // 3
///     child.isRunning();                 // false
///
/// One thread launches; then any may ask, stop and wait, several at once.
class VELMO_API ChildProcess {
public:
    /// Starts nothing yet.
    explicit ChildProcess(LaunchOptions options);
    ~ChildProcess();
    ChildProcess(ChildProcess&&) noexcept;
    ChildProcess& operator=(ChildProcess&&) noexcept;

    /// False if the program could not be started (u"posix" tells why), or has been before.
    bool launch(Error* error = nullptr);
    /// False before the launch too.
    [[nodiscard]] bool isRunning() const;
    /// The number of the process; 0 before the launch. Another's perhaps, once the child has ended.
    [[nodiscard]] int processNumber() const noexcept;

    /// Asks a running child to end, by SIGTERM or SIGINT; it may refuse. Does nothing if none runs.
    void terminate();
    void interrupt();

    /// Waits for the end; absent if the child was never launched.
    std::optional<Termination> waitUntilExit();
    /// Absent while the child runs, and before the launch.
    [[nodiscard]] std::optional<Termination> termination() const;

    /// Launches, waits, and tells whether the child exited with 0. That it could not be launched is
    /// logged.
    bool launchAndWaitUntilExit();

private:
    struct State;
    std::unique_ptr<State> state_;
};

/// The same for a program and its arguments; false for an absent or empty path.
///
///     launchTaskAndWaitUntilExitWithLaunchPath("/bin/true");    // true
VELMO_API bool launchTaskAndWaitUntilExitWithLaunchPath(const Path& path,
                                                        std::vector<std::string> arguments = {});

}  // namespace velmo
