// Sites of a server in the test, gathered as a user does, also by a program that is killed; and what
// a robots.txt allows.
#include <csignal>
#include <map>
#include <mutex>
#include <set>

#include <velmocore/gather/PageStore.h>

#include "ToolFixture.h"
#include "net/RawServer.h"

namespace velmo {
namespace {

using test::answerOf;

class SiteTool : public Tool {
protected:
    static constexpr int Pages = 20;

    void answer(test::RawServer::Client& client) {
        const std::string path = client.head.substr(4, client.head.find(' ', 4) - 4);
        if (path == "/robots.txt") return void(client.send(answerOf("User-agent: velmo\nDisallow: /p/13")));
        if (path == "/fails/robots.txt") return void(client.send(answerOf("", "", "500 Broken")));
        if (!path.starts_with("/p/")) return void(client.send(answerOf("", "", "404 Not Found")));
        const std::scoped_lock lock(mutex_);
        asked_.push_back(path);
        if (++requests_ == killedAt_) ::kill(std::stoi(read("pid")), SIGKILL);
        const int number = std::stoi(path.substr(3));
        std::string body = "<title>Page " + path.substr(3) + "</title>";
        for (int next = 2 * number; next <= std::min(2 * number + 1, Pages + 1); ++next)
            body += "<a href=/p/" + std::to_string(next) + ">" + std::to_string(next) + "</a>";
        client.send(number > Pages ? answerOf("", "", "404 Not Found") : answerOf(body, "Content-Type: text/html\r\n"));
    }
    std::set<std::string> stored() const {
        std::set<std::string> paths;
        PageStore::openForReading(folder_.string() + "/s.store").forEachPage([&](const StoredPage& page) {
            paths.insert(std::string(page.address().substr(page.address().find("/p/"))));
            return true;
        });
        return paths;
    }
    std::string gather() const { return "gather " + server_.at("/p/1") + " --delay 0 --store s.store --json"; }

    std::mutex mutex_;
    std::vector<std::string> asked_;
    std::size_t requests_ = 0, killedAt_ = 0;
    test::RawServer server_{[this](auto& client) { answer(client); }};
};

TEST_F(SiteTool, GathersSitesIntoAStore) {
    const Outcome first = shell("$V " + gather());
    EXPECT_EQ(first.code, 0) << first.err;
    const Json summary = first.lines().back()["summary"];
    EXPECT_EQ(summary["added"], Pages - 1);
    EXPECT_EQ(summary["sites"], (Json{{"requests", 20},
                                      {"notModified", 0},
                                      {"forbidden", 1},
                                      {"dead", 1},
                                      {"others", 0},
                                      {"waiting", 0},
                                      {"dropped", 0}}));
    EXPECT_EQ(shell("$V " + gather() + " --depth 1").lines().back()["summary"]["unchanged"], 3);
    const struct {
        const char *line, *complaint;
    } cases[] = {
        {"VELMO_NO_NETWORK=1 $V gather http://127.0.0.1:1/ --store s.store", "VELMO_NO_NETWORK is set"},
        {"$V gather http://127.0.0.1:1/ --store s.store --delay 0 --timeout 0.1", "robots.txt: "},
        {"$V gather http://127.0.0.1:1/ --depth 1", "--store is missing"},
    };
    for (const auto& [line, complaint] : cases) {
        const Outcome outcome = shell(line);
        EXPECT_EQ(outcome.code, 2) << line;
        EXPECT_NE(outcome.err.find(complaint), std::string::npos) << line << outcome.err;
    }
}

TEST_F(SiteTool, GoesOnWhenItWasKilled) {
    for (const std::size_t at : {1, 4, 9, 16}) {
        std::filesystem::remove(folder_ / "s.store");
        requests_ = 0, killedAt_ = at;
        shell("$V " + gather() + " & echo $! >pid; wait $!");
        ASSERT_EQ(requests_, at);
        const std::set<std::string> before = stored();
        EXPECT_GE(before.size() + 3, at);
        asked_.clear();
        EXPECT_EQ(shell("$V " + gather()).code, 0);
        std::size_t again = 0;
        for (const std::string& path : asked_) again += before.contains(path);
        EXPECT_EQ(again, 0u) << at;
        EXPECT_EQ(stored().size(), std::size_t{Pages - 1}) << at;
        EXPECT_EQ(std::set(asked_.begin(), asked_.end()).size(), asked_.size()) << at;
    }
}

TEST_F(SiteTool, TellsWhatARobotsFileAllows) {
    write("robots.txt", "User-agent: mybot\nDisallow: /a\n");
    const struct {
        std::string arguments, input, out;
        int code;
    } cases[] = {
        {"robots.txt mybot/1.0 http://h.org/a http://h.org/b", "",
         "forbidden  http://h.org/a\nallowed    http://h.org/b\n", 1},
        {"robots.txt mybot http://h.org/b", "", "allowed    http://h.org/b\n", 0},
        {"robots.txt other --json http://h.org/a", "", "{\"url\":\"http://h.org/a\",\"allowed\":true}\n", 0},
        {"robots.txt mybot", "http://h.org/a\n", "forbidden  http://h.org/a\n", 1},
        {"- mybot http://h.org/a", "User-agent: *\nDisallow: /", "forbidden  http://h.org/a\n", 1},
        {"- mybot", "", "", 2},
        {"none.txt mybot http://h.org/", "", "", 2},
        {server_.at("/robots.txt") + " velmo http://h.org/p/13", "", "forbidden  http://h.org/p/13\n", 1},
        {server_.at("/none/robots.txt") + " velmo http://h.org/", "", "allowed    http://h.org/\n", 0},
        {server_.at("/fails/robots.txt") + " velmo http://h.org/", "", "forbidden  http://h.org/\n", 1},
    };
    for (const auto& [arguments, input, out, code] : cases) {
        const Outcome outcome =
            run("robots " + (arguments.starts_with("robots") ? folder_.string() + "/" : "") + arguments, input);
        EXPECT_EQ(outcome.out, out) << arguments;
        EXPECT_EQ(outcome.code, code) << arguments << outcome.err;
    }
}

}  // namespace
}  // namespace velmo
