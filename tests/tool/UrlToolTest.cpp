// velmo url resolve, simplify, parse, path and params, and the links of velmo gather.
#include "ToolFixture.h"

namespace velmo {
namespace {

TEST_F(Tool, UrlResolvesAndSimplifies) {
    const std::string base = "url resolve http://h.org/a/b.html ";
    EXPECT_EQ(run(base + "--json '../c d#x' javascript:x").out,
              "{\"link\":\"../c d#x\",\"url\":\"http://h.org/c%20d\"}\n{\"link\":\"javascript:x\",\"url\":null}\n");
    EXPECT_EQ(run(base + "--keep-anchor --no-standardize", " c#x \n\nhhttp://i//d\n").out,
              "http://h.org/a/c#x\nhttp://i//d\n");
    EXPECT_EQ(run(base + "javascript:x").code, 1);
    EXPECT_EQ(run("url resolve nonsense a").err, "velmo: nonsense: not a URL\n");
    const std::string url = "'https://www.h.org//a/index.php?sid=b&utm_term=c&d=#e'";
    EXPECT_EQ(run("url simplify --json " + url).lines().at(0)["simplified"], "http://h.org/a");
    const std::pair<const char*, const char*> cases[] = {
        {"session-ids", "https://www.h.org//a/index.php?utm_term=c&d=#e\n"},
        {"analytics", "https://www.h.org//a/index.php?sid=b&d=#e\n"},
        {"index-pages", "https://www.h.org//a/index.php?sid=b&utm_term=c&d=#e\n"},
        {"empty-params", "https://www.h.org//a/index.php?sid=b&utm_term=c&d=#e\n"},
        {"anchors", "https://www.h.org//a/index.php?sid=b&utm_term=c&d=\n"},
        {"standardize", "https://www.h.org/a/index.php?sid=b&utm_term=c&d=#e\n"}};
    for (const auto& [only, expected] : cases)
        EXPECT_EQ(run(std::string("url simplify --only=") + only + " " + url).out, expected);
    EXPECT_EQ(run("url simplify --only=nothing " + url).code, 2);
}

TEST_F(Tool, UrlTellsPartsPathsAndParams) {
    const Json parts = run("url parse --json 'http://me:pw@H.org:8/a%20b/c.d;v?q=1#x'").lines().at(0);
    const Json some = Json::parse(R"({"scheme": "http", "user": "me", "host": "H.org", "port": 8, "path": "/a b/c.d",
        "parameterString": "v", "query": "q=1", "fragment": "x", "pathExtension": "d", "baseDirectory": "/a%20b",
        "invertedHostComponents": ["org", "h"]})");
    for (const auto& [name, value] : some.items()) EXPECT_EQ(parts[name], value) << name;
    EXPECT_TRUE(run("url parse --json a").lines().at(0)["host"].is_null());
    EXPECT_EQ(run("url parse 'a b'").code, 2);
    const std::pair<const char*, const char*> cases[] = {
        {"--directory=m 'http://www.h.org/A/?sid=x'", "m/org/h/www/a/index.html\n"},
        {"--keep-sessions --case-sensitive 'http://h.org/A?sid=x'", "org/h/A?sid=x\n"},
        {"--max-host=1 --max-path=2 --extension=txt http://www.h.org/a/b.c", "org.h.www/a-b.c.txt\n"},
        {"--direct --directory=m http://h.org/a/", "m/h.org/a/index.html\n"},
        {"--direct --no-default --directory=m http://h.org/a/", "m/h.org/a\n"},
        {"--simplified --directory=m http://h.org/a/b?c", "m/h.org/a-b-c\n"}};
    for (const auto& [options, path] : cases) EXPECT_EQ(run(std::string("url path ") + options).out, path);
    EXPECT_EQ(run("url path --json http://h/").out, "{\"url\":\"http://h/\",\"path\":\"h/index.html\"}\n");
    EXPECT_EQ(run("url params --json 'http://h/?b=1&a=&c=%41'").out,
              "{\"url\":\"http://h/?b=1&a=&c=%41\",\"params\":{\"b\":\"1\",\"c\":\"%41\"},\"count\":3}\n");
    EXPECT_EQ(run("url params", "http://h/?b=1").out, "http://h/?b=1\n  b=1\n");
}

TEST_F(Tool, UrlReadsAsBrowsersDo) {
    const std::pair<const char*, const char*> cases[] = {
        {"resolve --web http://H.org:80/a '\\\\i.org\\b|c' '#x' mailto:a",
         "http://i.org/b|c\nhttp://h.org/a#x\nmailto:a\n"},
        {"resolve --web --json '' HTTP:h x",
         "{\"link\":\"HTTP:h\",\"url\":\"http://h/\"}\n{\"link\":\"x\",\"url\":null}\n"},
        {"simplify --web 'http:\\\\www.h\\a\\'", "http://h/a\n"},
        {"repair --web '<HTTP:h>'", "http://h/ (no internet location)\n"},
        {"key 'http:\\\\h.org\\a' http://h.org/a%7C 'http://h.org/a|' http:h.org",
         "http://h.org/a\nhttp://h.org/a%7C\nhttp://h.org/a%7C\nhttp:h.org\n"},
        {"key --web http:h.org www.h.org.uk", "http://h.org/\nhttp://h.org.uk/\n"},
        {"host B\u00FCcher.de 0x7f.1 ::1 xn--80ak6aa92e.com",
         "xn--bcher-kva.de (b\u00FCcher.de)\n127.0.0.1\n[::1]\nxn--80ak6aa92e.com\n"}};
    for (const auto& [command, out] : cases) EXPECT_EQ(run(std::string("url ") + command).out, out) << command;
    EXPECT_EQ(run("url parse --web --json 'HTTP:h:80/a|b'").lines().at(0)["rawPath"], "/a|b");
    EXPECT_EQ(run("url host 'a b'").code, 2);
    const Json deceptive = run("url host --json xn--80ak6aa92e.com a/b").lines();
    EXPECT_NE(deceptive[0]["unicode"], deceptive[0]["display"]);
    EXPECT_TRUE(deceptive[1]["ascii"].is_null() && deceptive[1]["display"].is_null());
    const std::string page = write("page.html", "<a href='\\\\i.org\\x'>1</a><a href='http:y'>2</a>");
    EXPECT_EQ(run("links --web --base http://h.org/ " + page).out, "http://i.org/x\nhttp://h.org/y\n");
}

TEST_F(Tool, UrlReducersAnswerOnTheLinksOfPages) {
    const std::string links = run("links --base http://www.example.org/a/b.html " + pages()).out;
    for (const char* command : {"resolve http://h.org/", "simplify", "path", "params"}) {
        const Outcome outcome = run(std::string("url ") + command + " --json", links);
        EXPECT_NE(outcome.code, 1) << command << outcome.err;
        EXPECT_GT(outcome.lines().size(), 500u) << command;
    }
}

TEST_F(Tool, GathersTheLinksToFollow) {
    const std::string page =
        write("page.html",
              "<a href=a.html#x>1</a><a href=A.html>2</a><a href=../b/c.html>3</a><a href=http://i.org/>4</a>"
              "<a href=mailto:a@b.org>5</a><a href=http://h.org/ads/x.gif>6</a><a href='#y'>7</a>");
    const auto gathered = [&](const std::string& options) {
        return run("gather --json --base http://h.org/d/ " + options + " " + page).lines().at(0);
    };
    const Json few = gathered("");
    EXPECT_EQ(few["links"], 7);
    EXPECT_EQ(few["distinct"], 3);
    EXPECT_FALSE(few.contains("follow"));
    EXPECT_EQ(gathered("--all")["distinct"], 6);
    const std::string a = "http://h.org/d/a.html", c = "http://h.org/b/c.html", i = "http://i.org/";
    const std::pair<const char*, Json> cases[] = {{"none", Json::array()},      {"host", {c, a}},
                                                  {"folder", Json::array({a})}, {"folders", Json::array({a})},
                                                  {"ALL", {c, a, i}},           {"5", {c, a, i}}};
    for (const auto& [mode, urls] : cases) EXPECT_EQ(gathered(std::string("--follow ") + mode)["follow"], urls) << mode;
    EXPECT_NE(run("gather --base http://h.org/d/ --follow host " + page).out.find("\n  -> " + a + "\n"),
              std::string::npos);
}

}  // namespace
}  // namespace velmo
