// velmo gather with --store and --lines; ToolTest has what it does without them.
#include <numeric>

#include "ToolFixture.h"

namespace velmo {
namespace {

class GatherTool : public Tool {
protected:
    std::vector<std::string> resultsOf(const std::string& arguments) const {
        std::vector<std::string> results;
        for (const Json& line : shell("$V gather --json --store s " + arguments).lines())
            if (line.contains("result"))
                results.push_back(line["result"].get<std::string>() + " " +
                                  (line.contains("url") ? line["url"] : line["name"]).get<std::string>());
        return results;
    }
};

using Lines = std::vector<std::string>;

TEST_F(GatherTool, StoresWhatIsNewAndTellsTheRest) {
    std::filesystem::create_directory(folder_ / "site");
    write("site/a.html", "<title>A</title><p>The cat is on the mat and it is not a dog");
    write("site/b.html", "<title>B</title><p>Die Katze ist auf der Matte und sie ist nicht der Hund");
    const std::string base = "--base http://h.org/ site";
    EXPECT_EQ(resultsOf(base), (Lines{"added http://h.org/a.html", "added http://h.org/b.html"}));
    write("site/b.html", "<title>B</title><p>changed");
    write("site/c.html", "<title>A</title><p>The cat is on the mat and it is not a dog");
    write("site/d.html.gz", "\x1F\x8B\x08 damaged");
    const Outcome outcome = shell("$V gather --store s " + base);
    EXPECT_EQ(outcome.out,
              "unchanged http://h.org/a.html\nreplaced  http://h.org/b.html\n"
              "duplicate http://h.org/c.html of http://h.org/a.html\n\n"
              "3 pages: 0 added, 1 replaced, 1 unchanged, 1 duplicates, 0 left out, 1 failed; 2 in the store\n");
    EXPECT_EQ(outcome.err, "velmo: site/d.html.gz: damaged gzip data\n");
    EXPECT_EQ(outcome.code, 2);
    const Json summary = shell("$V gather --json --store s " + base).lines().back()["summary"];
    EXPECT_EQ(summary, Json::parse(R"({"pages":3,"added":0,"replaced":0,"unchanged":2,"duplicates":1,"leftOut":0,
        "failed":1,"stored":2})"));
}

TEST_F(GatherTool, KeepsWhatIsAskedFor) {
    std::filesystem::create_directories(folder_ / "site/de");
    write("site/a.html", "<title>A</title><p>The cat is on the mat and it is not a dog");
    write("site/de/b.html", "<title>B</title><p>Die Katze ist auf der Matte und sie ist nicht der Hund");
    write("site/n.txt", "notes of a cat");
    const std::string a = "added http://h.org/a.html", b = "added http://h.org/de/b.html",
                      n = "added http://h.org/n.txt";
    const auto out = [](const std::string& line) { return "left out" + line.substr(5); };
    const std::pair<const char*, Lines> cases[] = {
        {"", {a, b, n}},
        {"--limit 2", {a, b}},
        {"--include '*.html'", {a, b}},
        {"--include 'http://*/de/*'", {out(a), b, out(n)}},
        {"--exclude de --exclude '*/a.*'", {out(a), n}},
        {"--language de", {out(a), b, out(n)}},
        {"--query 'cat NOT notes'", {a, out(b), out(n)}},
    };
    for (const auto& [options, expected] : cases) {
        EXPECT_EQ(resultsOf("-j2 --base http://h.org/ site " + std::string(options)), expected) << options;
        std::filesystem::remove(folder_ / "s");
    }
    EXPECT_EQ(shell("$V gather --store s --query zyzzyva site").code, 1);
    EXPECT_EQ(shell("$V gather --store s --base http://h.org/p -", "<title>T</title>").out.substr(0, 23),
              "added     http://h.org/");
    EXPECT_EQ(shell("$V gather --store s -", "<title>T</title>").err, "velmo: -: it has no address\n");
    EXPECT_EQ(shell("$V gather --store none/s site").code, 2);
    EXPECT_EQ(shell("echo no store at all, but long enough to be seen > t; $V gather --store t none").code, 2);
}

TEST_F(GatherTool, LinesInAreLinesOutHoweverTheyAreSplit) {
    Lines lines = {
        R"({"url":"http://h.org/a","html":"<title>A</title><p>Tea <a href=b>and <b>cup</b></a><img src=x.jpg>"})",
        "broken",
        R"({"url":"http://h.org/a","html":"<title>A</title><p>Tea","fetched":"2020-01-02T03:04:05Z","status":200})",
        " ",
        R"({"url":"http://h.org/t","text":"a < b \u00e9 \u001b[31m"})",
        R"({"url":"::","html":""})",
        R"({"url":"http://h.org/e","html":"<title>404 Not Found</title><p>404 Not Found"})"};
    const auto joined = [&](std::size_t from, std::size_t to) {
        return std::accumulate(lines.begin() + static_cast<std::ptrdiff_t>(from),
                               lines.begin() + static_cast<std::ptrdiff_t>(to), std::string(),
                               [](std::string all, const std::string& line) { return all + line + "\n"; });
    };
    const auto gathered = [&](const std::string& input) {
        const Outcome outcome = run("gather - --lines -j2", input);
        EXPECT_EQ(outcome.err, "");
        EXPECT_EQ(outcome.code, 0);
        return outcome.out;
    };
    const std::string whole = gathered(joined(0, lines.size()));
    const std::vector<Json> objects = run("gather - --lines", joined(0, lines.size())).lines();
    ASSERT_EQ(objects.size(), 6U) << "blank lines are none";
    EXPECT_EQ(objects[0]["links"], Json::parse(R"([{"url":"http://h.org/b","text":"and cup","thumbnail":null}])"));
    EXPECT_EQ(objects[1], Json::parse(R"({"url":null,"error":"not JSON at byte 1"})"));
    EXPECT_EQ(objects[2]["fetched"], "2020-01-02T03:04:05Z");
    EXPECT_EQ(objects[3]["kind"], "text");
    EXPECT_EQ(objects[4], Json::parse(R"({"url":"::","error":"not a URL"})"));
    EXPECT_FALSE(objects[5]["kept"]);
    for (std::size_t split = 1; split < lines.size(); ++split)
        EXPECT_EQ(gathered(joined(0, split)) + gathered(joined(split, lines.size())), whole) << split;
    EXPECT_EQ(gathered(""), "");
    EXPECT_EQ(run("gather --lines /nowhere").code, 2);
}

TEST_F(GatherTool, GoesOnWhereItWasEnded) {
    std::string lines;
    for (int i = 0; i < 3000; ++i)
        lines +=
            R"({"url":"http://h.org/)" + std::to_string(i) + R"(","html":"<p>)" + std::to_string(i) + " words\"}\n";
    write("lines", lines);
    // What comes never ends by itself; it is ended by hand when some pages are there.
    const Outcome ended = shell(
        "mkfifo in; : > out; (cat lines; exec sleep 60) > in & Q=$!; $V gather --store s - < in > out & P=$!; "
        "until [ $(wc -l < out) -gt 100 ]; do sleep 0.05; done; kill -INT $P; wait $P; echo $?; kill $Q; tail -n1 out");
    EXPECT_EQ(ended.out.substr(0, 2), "2\n");
    EXPECT_NE(ended.out.find(" in the store"), std::string::npos);
    EXPECT_NE(ended.err.find("velmo: gather: interrupted; what was gathered is stored\n"), std::string::npos)
        << ended.err;
    const Json summary = shell("$V gather --json --store s - < lines").lines().back()["summary"];
    EXPECT_EQ(summary["stored"], 3000);
    EXPECT_GE(summary["unchanged"], 100);
    EXPECT_EQ(summary["added"].get<int>() + summary["unchanged"].get<int>(), 3000);
}

}  // namespace
}  // namespace velmo
