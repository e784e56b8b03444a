// velmo feed, on real feeds.
#include "ToolFixture.h"

namespace velmo {
namespace {

class FeedTool : public Tool {
protected:
    static std::string sample(const std::string& name) { return test::dataPath("feeds/" + name); }
};

TEST_F(FeedTool, PrintsItems) {
    write("feed.xml",
          "<rss version='2.0'><channel><title>News</title><item><title>A &amp; B</title><link>/a</link>"
          "<guid isPermaLink='false'><![CDATA[7]]></guid><pubDate>2001-02-03T10:11:12+01:00</pubDate>"
          "<category>c</category><enclosure url='e.mp3' length='12'/><enclosure url='f'/><description>x</description>"
          "</item><item><title>B</title><pubDate>soon</pubDate></item>");
    const Json feed = run("feed --json --base http://h.org/d/feed.xml feed.xml").lines().at(0);
    const Json expected = Json::parse(R"({"file":"feed.xml","feed":true,"dialect":"rss","complete":false,"title":"News",
        "items":[{"title":"A & B","description":"x","content":"","author":"","guid":"","link":"http://h.org/a",
        "date":"2001-02-03T10:11:12+01:00","parsedDate":"2001-02-03T09:11:12Z","tags":["c"],
        "enclosures":[{"url":"e.mp3","length":"12"},{"url":"f","length":null}],"empty":false},
        {"title":"B","description":"","content":"","author":"","guid":"","link":"","date":"soon","parsedDate":null,
        "empty":true}]})");
    EXPECT_EQ(feed, expected);
    // A section stands for the next part where that is asked.
    EXPECT_EQ(run("feed --json --described feed.xml").lines().at(0)["items"][0]["date"], "7");
    EXPECT_EQ(run("feed feed.xml").out, "News (rss, 2, incomplete)\n2001-02-03T10:11:12+01:00\t/a\tA & B\nsoon\t\tB\n");
}

TEST_F(FeedTool, TellsWhatIsNoFeed) {
    write("page.html", "<html><rss><item></item></rss>");
    EXPECT_EQ(
        run("feed --json page.html").lines().at(0),
        Json::parse(R"({"file":"page.html","feed":false,"dialect":null,"complete":false,"title":null,"items":null})"));
    EXPECT_EQ(run("feed page.html").out, "not a feed\n");
    EXPECT_EQ(run("feed --html page.html").out, "<html><rss><item></item></rss>\n");
    const Outcome outcome = run("feed missing.xml page.html");
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.err.substr(0, 19), "velmo: missing.xml:");
    EXPECT_EQ(run("feed --html --stylesheet missing.css page.html").code, 2);
    EXPECT_EQ(run("feed --html --searchable page.html").code, 2);
    EXPECT_EQ(run("feed --base '::' page.html").code, 2);
}

TEST_F(FeedTool, ReadsFeedsWhateverTheirBytes) {
    const std::string text = "<rss><item><title>T</title></item></rss>";
    std::string utf16 = "\xFF\xFE", utf32;
    for (const char c : text) (utf16 += c) += '\0', utf32 += std::string(3, '\0') + c;
    for (const std::string& bytes : {text, utf16, utf16.substr(2), utf32, "\xEF\xBB\xBF<!-- c -->" + text}) {
        write("feed", bytes);
        const Json feed = run("feed --json feed").lines().at(0);
        EXPECT_EQ(feed["dialect"], "rss");
        EXPECT_EQ(feed["items"][0]["title"], "T");
    }
    // In a folder a feed is a page by its first tag, though it breaks off before its last.
    write("broken", "<feed><title>\xD0\xB4</title><entry></entry>");
    EXPECT_EQ(run("feed -r --include broken --json .").lines().at(0)["title"], "\u0434");
    EXPECT_EQ(run("feed --json " + sample("feedparser-utf16be-bom.xml")).lines().at(0)["complete"], true);
}

TEST_F(FeedTool, MakesPages) {
    const std::string feed = sample("trafilatura-feed2.rss");
    const std::string linked = run("feed --html " + feed).out;
    EXPECT_NE(linked.find("href=\"file://localhost/"), linked.npos);
    EXPECT_NE(linked.find(".feeds.stylesheet.css\"/>"), linked.npos);
    EXPECT_NE(linked.find("<title>RSS Title</title>"), linked.npos);
    EXPECT_NE(linked.find("<a class=\"feed_link\" href=\"http://www.example.com/blog/post/1\">Example entry</a>"),
              linked.npos);
    write("own.css", "p { color: red }");
    const std::string own = run("feed --html --inline --stylesheet own.css " + feed).out;
    EXPECT_NE(own.find("<style type=\"text/css\"><!--p { color: red }--></style>"), own.npos);
    EXPECT_NE(run("feed --html --stylesheet own.css " + feed).out.find("/own.css\"/>"), own.npos);
    const Json page = run("feed --searchable --json " + feed).lines().at(0);
    EXPECT_EQ(page.size(), 2u);
    EXPECT_NE(page["html"].get<std::string>().find("Example entry"), own.npos);
    EXPECT_EQ(page["html"].get<std::string>().find("2009"), own.npos);
}

}  // namespace
}  // namespace velmo
