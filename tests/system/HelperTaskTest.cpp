// Helpers that are started, crash, hang, come late or never come: what their owner gets, what it logs,
// and that nothing of them is left.
#include <velmocore/system/ConnectionTable.h>
#include <velmocore/system/HelperService.h>
#include <velmocore/system/HelperTask.h>

#include <signal.h>
#include <sys/wait.h>

#include "LoggedLines.h"
#include "ServiceFixture.h"
#include "system/HelperWaits.h"

namespace velmo {
namespace {

using Lines = std::vector<std::string>;

class HelperTaskTest : public test::ServiceFixture {
protected:
    void TearDown() override {
        ::unsetenv("VELMO_HELPER");
        detail::helperWaits().registration = 5.0;
        detail::helperWaits().ending = 2.0;
        // Neither a child nor what one has left to be collected.
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
        ServiceFixture::TearDown();
    }
    static std::unique_ptr<HelperTask> task(const char* mode, Path path = VELMO_TEST_HELPER) {
        ::setenv("VELMO_HELPER", mode, 1);
        return HelperTask::helperTaskWithPath(path, u"test.helper", {.timeout = 20});
    }
    static std::int64_t processOf(const std::optional<HelperProxy>& proxy) {
        const auto number = proxy ? proxy->call(u"process") : std::nullopt;
        return number ? *number->as<std::int64_t>() : 0;
    }
    static bool runs(std::int64_t process) { return ::kill(static_cast<pid_t>(process), 0) == 0; }

    const test::LoggedLines logged_;
};
using Task = HelperTaskTest;

TEST_F(Task, NeedsAPathAndAName) {
    EXPECT_FALSE(HelperTask::helperTaskWithPath("", u"name"));
    EXPECT_FALSE(HelperTask::helperTaskWithPath("/bin/true", u""));
    EXPECT_FALSE(HelperTask::helperTaskWithPath("/bin/true", {}));
    EXPECT_EQ(logged_.lines(), (Lines{"Helper missing: name", "Helper missing: ", "Helper missing: (null)"}));
}

TEST_F(Task, LivesAsLongAsItsOwner) {
    auto owner = task("");
    EXPECT_FALSE(owner->launchedProxyUsingTimeout(1));
    const std::int64_t process = processOf(owner->proxy());
    EXPECT_EQ(process, owner->processNumber());
    EXPECT_EQ(processOf(owner->proxy()), process);
    EXPECT_EQ(owner->numConnections(), 1u);  // uses count only where they are limited
    EXPECT_EQ(processOf(owner->launchedProxyUsingTimeout(0)), process);
    const std::int64_t second = processOf(owner->launch());
    EXPECT_TRUE(second != process && !runs(process) && runs(second));
    owner.reset();
    EXPECT_FALSE(runs(second));
    EXPECT_EQ(logged_.lines(), Lines());
}

TEST_F(Task, ComesBackAfterACrash) {
    const auto owner = task("");
    std::int64_t process = processOf(owner->proxy());
    for (int round = 0; round < 3; ++round) {
        Error error;
        if (round > 0) {
            ::kill(static_cast<pid_t>(process), SIGKILL);
            siginfo_t info;
            ::waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOWAIT);
        } else {
            EXPECT_FALSE(owner->proxy()->call(u"crash", {}, &error));
            EXPECT_TRUE(isPortException(error));
        }
        const std::int64_t next = processOf(owner->proxy());
        EXPECT_TRUE(next != 0 && next != process) << round;
        process = next;
    }
    EXPECT_EQ(owner->failedAttempts(), 0u);
}

TEST_F(Task, IsRecycledAfterItsUses) {
    const auto owner = task("");
    owner->setMaxConnections(3);
    std::vector<std::int64_t> processes = {processOf(owner->launch())};
    for (int use = 0; use < 5; ++use) processes.push_back(processOf(owner->proxy()));
    for (std::size_t i = 1; i < processes.size(); ++i)
        EXPECT_EQ(processes[i] == processes[i - 1], i != 2 && i != 4) << i;
}

TEST_F(Task, GivesUpAfterTheSecondFailure) {
    detail::helperWaits().registration = 0.2;
    const std::tuple<const char*, const char*, Lines> cases[] = {
        {"", "/no/such/helper", {"Couldn't launch /no/such/helper.", "Couldn't launch /no/such/helper. Giving up."}},
        {"silent",
         VELMO_TEST_HELPER,
         {"Connection to velmo-test-helper failed.", "Connection to velmo-test-helper failed. Giving up."}},
    };
    for (const auto& [mode, path, lines] : cases) {
        const auto owner = task(mode, path);
        for (int attempt = 0; attempt < 4; ++attempt) EXPECT_FALSE(owner->proxy());
        EXPECT_EQ(logged_.lines(), lines);
        EXPECT_EQ(owner->failedAttempts(), 2u);
        EXPECT_EQ(owner->processNumber(), 0);
    }
    const auto owner = task("silent");
    EXPECT_FALSE(owner->proxy());
    EXPECT_TRUE(runs(owner->processNumber()));  // left running
    ::setenv("VELMO_HELPER", "late", 1);
    detail::helperWaits().registration = 5.0;
    EXPECT_NE(processOf(owner->proxy()), 0);
    EXPECT_EQ(owner->failedAttempts(), 0u);
    EXPECT_EQ(logged_.lines(), Lines{"Connection to velmo-test-helper failed."});
}

TEST_F(Task, StopsAHelperThatHangs) {
    auto hung = task("hung");
    EXPECT_FALSE(hung->launchUsingTimeout(0.2));
    const Lines lines = logged_.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].starts_with("launchUsingTimeout: (HelperTask): velmo.port 1\nno greeting in time\n"))
        << lines[0];
    EXPECT_EQ(hung->processNumber(), 0);
    EXPECT_EQ(hung->failedAttempts(), 0u);

    detail::helperWaits().ending = 0.1;
    auto stubborn = task("stubborn");
    const std::int64_t process = processOf(stubborn->proxy());
    EXPECT_TRUE(runs(process));
    stubborn.reset();
    EXPECT_FALSE(runs(process));
}

TEST_F(Task, WaitsWhileTheHelperIsBusy) {
    for (const bool tells : {true, false}) {
        const auto owner = task(tells ? "" : "plain");
        const auto proxy = owner->proxy();
        ASSERT_TRUE(proxy);
        EXPECT_FALSE(owner->stillBusy());
        EXPECT_TRUE(proxy->post(u"sleep", {{1.2}}));
        if (tells) {
            EXPECT_TRUE(owner->stillBusy());
            owner->waitUntilDone(0.1);
            EXPECT_TRUE(owner->stillBusy());
            owner->waitUntilDone(20);
        }
        EXPECT_FALSE(owner->stillBusy());
        if (!tells) owner->interrupt();
    }
}

TEST_F(Task, LetsGoOfAHelper) {
    const auto owner = task("");
    const std::int64_t process = processOf(owner->proxy());
    owner->invalidate();
    EXPECT_TRUE(runs(process));
    EXPECT_EQ(owner->processNumber(), 0);
    EXPECT_EQ(processOf(owner->proxy()), process);  // which still serves under the name
    ::kill(static_cast<pid_t>(process), SIGKILL);
    ::waitpid(static_cast<pid_t>(process), nullptr, 0);
    EXPECT_EQ(sockets(), 1u);
    EXPECT_EQ(registeredConnectionNames(), Strings());  // which removes what was left
}

}  // namespace
}  // namespace velmo
