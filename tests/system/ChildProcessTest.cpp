// Child processes: what they get from their parent and what they do not, and every way to their end.
#include <fcntl.h>
#include <velmocore/platform/Log.h>
#include <velmocore/system/ChildProcess.h>

#include <csignal>
#include <filesystem>
#include <thread>

#include "TestSupport.h"

namespace velmo {
namespace {

using Reason = Termination::Reason;

Termination shell(const std::string& line, LaunchOptions options = {}) {
    options.path = "/bin/sh";
    options.arguments = {"-c", line, "sh", "an 'argument' $HOME"};
    ChildProcess child(std::move(options));
    EXPECT_TRUE(child.launch());
    EXPECT_FALSE(child.launch());
    return child.waitUntilExit().value_or(Termination());
}

TEST(ChildProcess, GetsWhatItIsGivenAndNothingElse) {
    std::signal(SIGUSR1, SIG_IGN);
    sigset_t blocked, old;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &old);
    const int file = ::open("/dev/null", O_RDONLY);  // stays open over exec
    ASSERT_GT(file, 2);
    ::setenv("VELMO_TEST_OLD", "old", 1);
    const std::string number = std::to_string(file);
    const std::string nicer = std::to_string(std::min(::nice(0) + 3, 19));
    const struct {
        std::string line;
        Termination expected;
    } cases[] = {
        {"exit 7", {Reason::Exit, 7}},
        {"[ \"$1\" = \"an 'argument' \\$HOME\" ]", {Reason::Exit, 0}},
        {"[ \"$PWD\" = /usr ] && [ \"$(nice)\" = " + nicer + " ]", {Reason::Exit, 0}},
        {"[ \"$VELMO_TEST\" = 'a b' ] && [ \"$VELMO_TEST_OLD\" = new ] && [ -n \"$PATH\" ]", {Reason::Exit, 0}},
        {"[ ! -e /proc/self/fd/" + number + " ]", {Reason::Exit, 0}},
        {"kill -USR1 $$", {Reason::Signal, SIGUSR1}},
        {"kill $$", {Reason::Signal, SIGTERM}},
    };
    for (const auto& [line, expected] : cases)
        EXPECT_EQ(shell(line, {.folder = "/usr",
                               .environment = {{"VELMO_TEST", "a b"}, {"VELMO_TEST_OLD", "new"}},
                               .niceIncrement = 3}),
                  expected)
            << line;
    ::close(file);
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
    std::signal(SIGUSR1, SIG_DFL);
}

TEST(ChildProcess, IsStoppedWhileOthersWait) {
    for (const int signal : {SIGTERM, SIGINT}) {
        ChildProcess child({.path = "/bin/sleep", .arguments = {"60"}});
        EXPECT_FALSE(child.isRunning() || child.termination() || child.waitUntilExit());
        child.terminate();
        ASSERT_TRUE(child.launch());
        EXPECT_TRUE(child.isRunning());
        std::vector<std::optional<Termination>> ends(3);
        {
            std::vector<std::jthread> threads;
            for (auto& end : ends) threads.emplace_back([&] { end = child.waitUntilExit(); });
            signal == SIGTERM ? child.terminate() : child.interrupt();
        }
        for (const auto& end : ends) EXPECT_EQ(end, (Termination{Reason::Signal, signal}));
        EXPECT_FALSE(child.isRunning());
    }
}

TEST(ChildProcess, GoesOnWithoutItsObjectAndLeavesNoZombie) {
    int process = 0;
    {
        ChildProcess child({.path = "/bin/sleep", .arguments = {"60"}});
        ASSERT_TRUE(child.launch());
        process = child.processNumber();
    }
    EXPECT_EQ(::kill(process, SIGKILL), 0);
    for (int i = 0; i < 500 && ::kill(process, 0) == 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        launchTaskAndWaitUntilExitWithLaunchPath("/bin/true");
    }
    EXPECT_NE(::kill(process, 0), 0);
}

TEST(ChildProcess, FailuresAreToldAndLogged) {
    static std::string logged;
    logged.clear();
    setLogHandler([](std::string_view line) { logged += line; });
    const LaunchOptions bad[] = {
        {},
        {.path = "/none"},
        {.path = "/etc/passwd"},
        {.path = "/bin/true", .folder = "/none"},
        {.path = "/bin/true", .arguments = {std::string("a\0b", 3)}},
        {.path = "/bin/true", .environment = {{"A=B", "c"}}},
    };
    for (const LaunchOptions& options : bad) {
        ChildProcess child(options);
        Error error;
        EXPECT_FALSE(child.launch(&error) || child.isRunning());
        EXPECT_EQ(error.domain, u"posix");
    }
    EXPECT_FALSE(launchTaskAndWaitUntilExitWithLaunchPath(""));
    EXPECT_EQ(logged, "");
    EXPECT_FALSE(launchTaskAndWaitUntilExitWithLaunchPath("/none"));
    EXPECT_TRUE(
        logged.starts_with("launchAndWaitUntilExit (ChildProcess): posix 2\n/none: No such file or directory\n"))
        << logged;
    logged.clear();
    EXPECT_FALSE(launchTaskAndWaitUntilExitWithLaunchPath("/bin/false"));
    EXPECT_EQ(logged, "");
    // Who ignores the end of children cannot know how it went, and is not kept waiting.
    std::signal(SIGCHLD, SIG_IGN);
    EXPECT_FALSE(launchTaskAndWaitUntilExitWithLaunchPath("/bin/true"));
    std::signal(SIGCHLD, SIG_DFL);
    setLogHandler(nullptr);
}

}  // namespace
}  // namespace velmo
