// Pages of a server in the test: fetched, kept, and read by the other commands in the place of files.
#include "ToolFixture.h"
#include "net/RawServer.h"

namespace velmo {
namespace {

using namespace std::string_literals;
using test::answerOf;

class FetchTool : public Tool {
protected:
    static void answer(test::RawServer::Client& client) {
        const std::string path = client.head.substr(4, client.head.find(' ', 4) - 4);
        const bool isPost = client.head.starts_with("POST");
        if (path == "/old") return void(client.send(answerOf("", "Location: /new.html\r\n", "301 Moved")));
        if (path == "/none") return void(client.send(answerOf("none", "", "404 Not Found")));
        if (path == "/slow") return client.wait(std::chrono::seconds(5));
        if (path == "/echo" || isPost) return void(client.send(answerOf(client.head)));
        if (path == "/odd")
            return void(client.send(answerOf("<p>\xC3\xA4", "Content-Type: text/html; charset=klingon\r\n")));
        if (path == "/raw")
            return void(client.send(answerOf("<p>\xC1\xC2", "Content-Type: text/html; charset=koi8-r\r\n")));
        client.send(answerOf("<p>A cat", "Content-Type: text/html\r\nLast-Modified: yesterday\r\n"));
    }
    test::RawServer server_{answer};
};

TEST_F(FetchTool, TellsWhatCame) {
    const Outcome outcome = run("fetch --json --timeout 0.3 " + server_.at("/old") + " " + server_.at("/none") + " " +
                                server_.at("/slow") + " file:///etc/passwd");
    EXPECT_EQ(outcome.code, 2);
    const std::vector<Json> lines = outcome.lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], (Json{{"url", server_.at("/old")},
                              {"status", 200},
                              {"type", "text/html"},
                              {"charset", nullptr},
                              {"lastModified", "yesterday"},
                              {"length", 8},
                              {"forward", server_.at("/new.html")},
                              {"error", nullptr},
                              {"bytes", 8},
                              {"file", nullptr}}));
    EXPECT_EQ(lines[1]["error"], "HTTP status 404");
    EXPECT_EQ(lines[1]["status"], 404);
    EXPECT_EQ(lines[2]["error"], "timed out");
    EXPECT_EQ(lines[3]["error"], "not a URL of the web");
    EXPECT_NE(outcome.err.find("velmo: " + server_.at("/slow") + ": timed out\n"), std::string::npos);
    const std::string echo = run("fetch --stdout --referrer http://h.org/ " + server_.at("/echo")).out;
    EXPECT_NE(echo.find("User-Agent: velmo/"), std::string::npos);
    EXPECT_NE(echo.find("Referer: http://h.org/"), std::string::npos);
    EXPECT_EQ(run("fetch --stdout --post a=b " + server_.at("/echo")).out.substr(0, 5), "POST ");
    EXPECT_EQ(run("fetch --post \xC3\xA4 " + server_.at("/echo")).code, 2);
}

TEST_F(FetchTool, KeepsPagesByTheirAddresses) {
    EXPECT_EQ(run("fetch --output mirror " + server_.at("/a.html") + " " + server_.at("/B/c.html") + " " +
                  server_.at("/none"))
                  .code,
              2);
    EXPECT_EQ(read("mirror/1/0/0/127/a.html"), "<p>A cat");
    EXPECT_EQ(read("mirror/1/0/0/127/B/c.html"), "<p>A cat");
    EXPECT_EQ(run("fetch --output one.html " + server_.at("/a.html")).code, 0);
    EXPECT_EQ(read("one.html"), "<p>A cat");
    EXPECT_EQ(run("fetch --output one.html " + server_.at("/a.html")).code, 2);
    EXPECT_EQ(run("fetch --force --output one.html " + server_.at("/raw")).code, 0);
    EXPECT_EQ(read("one.html"), "<p>\xC1\xC2");
    EXPECT_EQ(std::distance(std::filesystem::recursive_directory_iterator(folder_), {}), 9);
}

TEST_F(FetchTool, FeedsAllCommands) {
    EXPECT_EQ(run("text " + server_.at("/raw")).out, "\xD0\xB0\xD0\xB1\n");
    EXPECT_EQ(run("text " + server_.at("/odd")).out, "\xC3\xA4\n");
    EXPECT_EQ(run("charset --http-charset utf-8 --json " + server_.at("/a")).lines().at(0)["charset"], "utf-8");
    EXPECT_EQ(run("match cat --files-from -", server_.at("/new.html") + "\n").code, 0);
    EXPECT_EQ(run("digest --crc " + server_.at("/a")).out.substr(0, 8),
              run("digest --crc", "<p>A cat").out.substr(0, 8));
    EXPECT_EQ(shell("$V store append s.store " + server_.at("/a") + " >list; $V store get s.store 0").out, "<p>A cat");
    EXPECT_EQ(run("words " + server_.at("/none")).err, "velmo: " + server_.at("/none") + ": HTTP status 404\n");
    const Outcome refused = shell("VELMO_NO_NETWORK=1 $V text " + server_.at("/a"));
    EXPECT_EQ(refused.err, "velmo: " + server_.at("/a") + ": VELMO_NO_NETWORK is set\n");
    EXPECT_EQ(refused.code, 2);
}

TEST_F(FetchTool, ShowsForms) {
    const std::string part = "--B\r\nContent-Disposition: form-data; name=\"", end = "\r\n--B--\r\n";
    const auto form =
        run("form --boundary B --json", part + "a\"; filename=\"f\"\r\n\r\n\xFF\r\n" + part + "b\"\r\n\r\nx" + end)
            .lines()
            .at(0);
    EXPECT_EQ(form["fields"], Json::parse(R"([{"name":"a","filename":"f","bytes":1,"text":null},
                                              {"name":"b","filename":null,"bytes":1,"text":"x"}])"));
    EXPECT_EQ(run("form --boundary C", "x").err, "velmo: -: no form with this boundary\n");
    EXPECT_EQ(run("form", "x").code, 2);
}

}  // namespace
}  // namespace velmo
