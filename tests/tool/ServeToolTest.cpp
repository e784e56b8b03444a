// The server as a browser meets it.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <csignal>
#include <regex>
#include <thread>

#include "ToolFixture.h"

namespace velmo {
namespace {

class ServeTool : public Tool {
protected:
    void SetUp() override {
        Tool::SetUp();
        write("tea.html", "<title>Tea</title><p>A cup of tea.");
        ASSERT_EQ(run("gather tea.html --store pages.store --base http://h.org/").code, 0);
        ASSERT_EQ(shell("$V serve --port 0 pages.store >address 2>&1 & echo $! >pid").code, 0);
        for (int i = 0; i < 600 && read("address").find('\n') == std::string::npos; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        std::smatch match;
        const std::string said = read("address");
        ASSERT_TRUE(std::regex_search(said, match, std::regex("http://127.0.0.1:(\\d+)/"))) << said;
        port_ = std::stoi(match[1]);
    }
    void TearDown() override {
        ::kill(std::stoi(read("pid")), SIGTERM);
        Tool::TearDown();
    }

    /// What the server says to these bytes, up to where it closes; of what it refuses only the head, as
    /// it waits for better then.
    std::string ask(const std::string& request) const {
        const int file = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(port_));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        std::string answer;
        if (::connect(file, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
            (void)::send(file, request.data(), request.size(), MSG_NOSIGNAL);
            char buffer[4096];
            for (ssize_t count; (count = ::recv(file, buffer, sizeof buffer, 0)) > 0;)
                if (answer.append(buffer, static_cast<std::size_t>(count)).starts_with("HTTP/1.1 4")) break;
        }
        ::close(file);
        return answer;
    }
    std::string request(const std::string& line, const std::string& host) const {
        return ask(line + " HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n\r\n");
    }
    std::string here() const { return "127.0.0.1:" + std::to_string(port_); }

    int port_ = 0;
};

TEST_F(ServeTool, AnswersBrowsersAndStandsTheOthers) {
    const std::string found = request("GET /?q=tea", here());
    EXPECT_TRUE(found.starts_with("HTTP/1.1 200")) << found;
    EXPECT_NE(found.find("A cup of <mark>tea</mark>."), found.npos) << found;
    EXPECT_NE(found.find("Content-Security-Policy: default-src 'none'"), found.npos);
    const struct {
        std::string line, host, status;
    } cases[] = {
        {"GET /", "localhost:" + std::to_string(port_), "200"},
        {"GET /", "rebound.example", "421"},
        {"HEAD /?q=tea", here(), "200"},
        {"POST /", here(), "405"},
        {"GET /%2e%2e/%2e%2e/etc/passwd", here(), "404"},
        {"GET /?q=" + std::string(9000, 'a'), here(), "4"},
        {"GARBAGE", here(), "4"},
    };
    for (const auto& [line, host, status] : cases) {
        const std::string answer = request(line, host);
        EXPECT_TRUE(answer.starts_with("HTTP/1.1 " + status)) << line.substr(0, 40) << "\n" << answer.substr(0, 200);
    }
    for (const std::string& bytes :
         {std::string(100000, 'x'), std::string("\0\r\n\r\n", 5),
          std::string("GET / HTTP/1.1\r\nHost: x\r\n" + std::string(200000, 'h') + ": 1\r\n\r\n")})
        (void)ask(bytes);
    // And it still answers, many at once.
    std::vector<std::jthread> clients;
    std::atomic<int> answered = 0;
    for (int i = 0; i < 40; ++i)
        clients.emplace_back(
            [&] { answered += request("GET /search.json?q=tea", here()).find("\"matching\":1") != std::string::npos; });
    clients.clear();
    EXPECT_EQ(answered, 40);
}

TEST_F(ServeTool, SaysWhyItCannotServe) {
    EXPECT_EQ(run("serve none.store").code, 2);
    const Outcome taken = run("serve --port " + std::to_string(port_) + " pages.store");
    EXPECT_EQ(taken.code, 2);
    EXPECT_NE(taken.err.find("cannot listen on port"), taken.err.npos) << taken.err;
}

}  // namespace
}  // namespace velmo
