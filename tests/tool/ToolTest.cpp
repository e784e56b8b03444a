// The tool as a user runs it: output, exit codes and complaints.

#include "ToolFixture.h"

namespace velmo {
namespace {

std::size_t numberOfPages() {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(VELMO_PAGES)) count += entry.is_regular_file();
    return count;
}

TEST_F(Tool, AnswersOnEveryPage) {
    for (const char* command :
         {"charset", "text", "text --only-body --reformat --remove-junk --google-tags --no-image-alts", "links",
          "links --base https://example.org/ --nofollow", "links --frames", "links --images", "links --scripts",
          "links --media", "thumbs", "thumbs --absolute --google-tags", "words --list", "match the"}) {
        const Outcome outcome = run(std::string(command) + " --json " + pages());
        EXPECT_EQ(outcome.code, 0) << command << outcome.err;
        EXPECT_EQ(outcome.lines().size(), numberOfPages()) << command;
    }
    EXPECT_GE(numberOfPages(), 37u);
}

TEST_F(Tool, PrintsThumbnailsOfLinks) {
    const std::string page =
        "<td><a href=1 title=A>x<p>y</a><img src=a.jpg></td><!--googleoff: all--><a href=2>z</a><!--googleon: all-->";
    const std::string file = write("page.html", page), based = write("based.html", "<base href=http://i/>" + page);
    const auto object = [&](const std::string& arguments) { return run("thumbs --json " + arguments).lines().at(0); };
    Json expected = {{"file", file}, {"titles", {{"1", "A"}}}, {"texts", {{"1", "x\n\ny"}, {"2", "z"}}}};
    expected["thumbnails"] = {{"1", "file://" + (folder_ / "a.jpg").string()}};
    EXPECT_EQ(object(file), expected);
    EXPECT_EQ(object(based)["thumbnails"], Json({{"1", "http://i/a.jpg"}}));
    EXPECT_EQ(object("--base http://h/ " + based)["thumbnails"], Json({{"1", "http://h/a.jpg"}}));
    EXPECT_EQ(object("--base http://h/ --absolute --google-tags " + file)["texts"], Json({{"http://h/1", "x\n\ny"}}));
    EXPECT_EQ(run("thumbs --base http://h/ -", page).out, "1\thttp://h/a.jpg\tA\tx y\n2\t\t\tz\n");
    EXPECT_EQ(object(write("empty.html", ""))["texts"], Json::object());
    EXPECT_EQ(run("thumbs --base nonsense " + file).code, 2);
}

TEST_F(Tool, NamesCharsets) {
    EXPECT_EQ(run("charset --json " VELMO_PAGES "/httpd-ja-euc-jp.html").lines().at(0)["charset"], "euc-jp");
    EXPECT_EQ(run("charset --json -", "<p>x").lines().at(0)["declared"], nullptr);
    EXPECT_EQ(run("charset --json --http-charset KOI8-R -", "<p>x").lines().at(0)["charset"], "koi8-r");
}

TEST_F(Tool, TellsHitsByItsExitCode) {
    const std::string notes = write("notes.txt", "The cat sat on the mat. \xC3\x84rger");
    const std::string page = write("page.html", "<title>x</title><p>The <b>dog</b> barks");
    const std::pair<const char*, int> cases[] = {
        {"match 'cat NEAR/3 mat' ", 1},
        {"match 'cat NEAR/4 mat' ", 0},
        {"match DOG ", 0},
        {"match --case-sensitive DOG ", 1},
        {"match -- '-cat -dog' ", 1},
        {"match --contains 'cat unicorn' ", 0},
        {"match '\xC3\xA4rger' ", 0},
        {"match b ", 1},
        {"match '' ", 1},
    };
    for (const auto& [arguments, code] : cases) EXPECT_EQ(run(arguments + notes + " " + page).code, code) << arguments;
    const Outcome outcome = run("match --json cat " + notes + " " + page);
    ASSERT_EQ(outcome.lines().size(), 2u);
    EXPECT_EQ(outcome.lines()[0]["matches"], true);
    EXPECT_EQ(outcome.lines()[1]["matches"], false);
}

TEST_F(Tool, ComplainsAndGoesOn) {
    const std::string good = write("good.txt", "one two");
    const std::string missing = (folder_ / "missing.txt").string();
    const Outcome outcome = run("words --json " + missing + " " + folder_.string() + " " + good);
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.err,
              "velmo: " + missing + ": No such file or directory\nvelmo: " + folder_.string() + ": Is a directory\n");
    ASSERT_EQ(outcome.lines().size(), 1u);
    EXPECT_EQ(outcome.lines()[0]["words"], 2);
    for (const char* wrong : {"", "nonsense", "words --nonsense x", "match", "links --images --media x"})
        EXPECT_EQ(run(wrong).code, 2) << wrong;
    EXPECT_EQ(run("--version").code, 0);
    const Outcome help = run("--help");
    EXPECT_EQ(help.code, 0);
    EXPECT_TRUE(help.out.starts_with("Examples:"));
}

TEST_F(Tool, LosesNothingInJson) {
    const Outcome outcome = run("text --json -", "a &#xD800; b &#xDE00;&#x1F600; &#xFDD0; \"\\\xE2\x80\xA8");
    EXPECT_EQ(outcome.out, "{\"file\":\"-\",\"text\":\"a \\ud800 b \\ude00\xF0\x9F\x98\x80 \xEF\xB7\x90 \\\"\\\\\"}\n");
}

TEST_F(Tool, ResolvesLinks) {
    const std::string page =
        "<base href='http://h.org/a/'><a href='b c'>first</a><a href='//x/'>second</a><area "
        "href='#n'>"
        "<a rel=nofollow href=n>third</a><img src=i.png>";
    const auto links = [&](const std::string& options) {
        return run("links --json " + options + " -", page).lines().at(0);
    };
    const Json all = links("--base http://other.org/");
    EXPECT_EQ(all["base"], "http://h.org/a/");
    EXPECT_EQ(all["links"], Json({"b c", "//x/", "#n", "n"}));
    EXPECT_EQ(all["resolved"], Json({"http://h.org/a/b%20c", "http://x/", "http://h.org/a/#n", "http://h.org/a/n"}));
    EXPECT_EQ(links("--nofollow")["links"], Json({"b c", "//x/", "#n"}));
    EXPECT_FALSE(links("--nofollow").contains("resolved"));
    EXPECT_EQ(links("--containing sec")["links"], Json({"//x/"}));
    EXPECT_EQ(links("--images")["links"], Json({"i.png"}));
    EXPECT_EQ(links("--frames")["links"], Json({"#n", "//x/", "b c", "n"}));
    EXPECT_EQ(
        run("links --json --base http://o.org/x/ -", "<a href=../y><a href='http://:x'>").lines().at(0)["resolved"],
        Json({"http://o.org/y", nullptr}));
}

TEST_F(Tool, GathersFeedsAndKnowsErrorPages) {
    write("a.xml",
          "<rss><channel><title>News</title><item><title>One cat</title><link>/c</link></item>"
          "<item><link>http://o.org/d</link></item></channel></rss>");
    write("b.html", "<title>404 Not Found</title><h1>404 Not Found</h1>");
    write("c.html",
          "<title>C</title><meta name=author content='A. B.'><meta name=date content=2001-02-03T04:05:06Z>"
          "<link rel=canonical href=/C><td><a href=x><img src=/fox.jpg></a>");
    const std::vector<Json> lines = run("gather --json --query cat --base http://h.org/ .").lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0]["feed"], true);
    EXPECT_EQ(lines[0]["title"], "News");
    EXPECT_EQ(lines[0]["links"], 2);
    EXPECT_EQ(lines[0]["matches"], true);
    EXPECT_EQ(lines[1]["errorPage"], true);
    const Json expected = {{"author", "A. B."},
                           {"canonical", "http://h.org/C"},
                           {"date", "2001-02-03T04:05:06Z"},
                           {"parsedDate", "2001-02-03T04:05:06Z"},
                           {"errorPage", false},
                           {"feed", false},
                           {"thumbnails", 1}};
    for (const auto& [name, value] : expected.items()) EXPECT_EQ(lines[2][name], value) << name;
}

TEST_F(Tool, GathersAndSumsUp) {
    const Outcome outcome = run("gather --json --base https://www.example.org/docs/ --query licensed " VELMO_PAGES);
    EXPECT_EQ(outcome.code, 0);
    std::vector<Json> lines = outcome.lines();
    ASSERT_EQ(lines.size(), numberOfPages() + 1);
    const Json summary = lines.back()["summary"];
    lines.pop_back();
    std::uint64_t words = 0, links = 0, matching = 0;
    for (const Json& page : lines) {
        words += page["words"].get<std::uint64_t>();
        links += page["links"].get<std::uint64_t>();
        matching += page["matches"].get<bool>();
        EXPECT_LE(page["distinct"], page["links"]) << page;
        const Json& excerpt = page["excerpt"];
        EXPECT_EQ(page["matches"].get<bool>(), excerpt.is_string()) << page;
        EXPECT_TRUE(excerpt.is_null() || excerpt.get<std::string>().find("icensed") != std::string::npos);
    }
    EXPECT_EQ(summary["pages"], lines.size());
    EXPECT_EQ(summary["words"], words);
    EXPECT_EQ(summary["links"], links);
    EXPECT_EQ(summary["matching"], matching);
    EXPECT_GT(matching, 0u);
    EXPECT_GT(words, 10000u);
    EXPECT_TRUE(
        std::is_sorted(lines.begin(), lines.end(), [](const Json& a, const Json& b) { return a["file"] < b["file"]; }));
    EXPECT_EQ(run("gather --query zyzzyva " VELMO_PAGES).code, 1);
    EXPECT_TRUE(run("gather --json " VELMO_PAGES).lines().at(0)["matches"].is_null());
    EXPECT_EQ(run("gather /nowhere").code, 2);
}

}  // namespace
}  // namespace velmo
