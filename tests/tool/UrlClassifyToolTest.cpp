// velmo url accept, unwrap, classify and repair, and velmo mime.
#include "ToolFixture.h"

namespace velmo {
namespace {

TEST_F(Tool, UrlClassifiesByTheirLooks) {
    const Outcome outcome = run("url classify --json http://www.google.com/search?q=1 '/ads/x.GIF?a'");
    ASSERT_EQ(outcome.lines().size(), 2u) << outcome.err;
    const Json expected = Json::parse(R"({"url": "http://www.google.com/search?q=1", "advertisement": false,
        "imageAd": false, "adSense": false, "bookmarklet": false, "recaptcha": false, "translation": false,
        "topic": false, "forum": false, "cached": false, "searchEngine": true, "scheme": "http", "extension": null})");
    EXPECT_EQ(outcome.lines()[0], expected);
    EXPECT_EQ(outcome.lines()[1]["advertisement"], true);
    EXPECT_EQ(outcome.lines()[1]["extension"], "GIF");
    EXPECT_EQ(outcome.lines()[1]["scheme"], nullptr);
    EXPECT_EQ(run("url classify", " http://h.org/forum/viewtopic.php \r\n\n http://surveymonkey.com").out,
              "http://h.org/forum/viewtopic.php: topic, forum\nhttp://surveymonkey.com: advertisement\n");
    EXPECT_EQ(run("url classify --no-common-hosts http://surveymonkey.com").out,
              "http://surveymonkey.com: nothing known\n");
}

TEST_F(Tool, UrlAcceptsAndUnwrapsLinks) {
    const std::string base = " --base http://duckduckgo.com/html ", wrapped = "'/l/?uddg=http%3A%2F%2Fx.org%2F' /about";
    const Outcome accepted = run("url accept --json" + base + wrapped);
    EXPECT_EQ(accepted.out,
              "{\"link\":\"/l/?uddg=http%3A%2F%2Fx.org%2F\",\"url\":\"http://x.org/\"}\n{\"link\":\"/"
              "about\",\"url\":null}\n");
    EXPECT_EQ(accepted.code, 0);
    EXPECT_EQ(run("url unwrap" + base + wrapped).out, "http://x.org/\nhttp://duckduckgo.com/about\n");
    EXPECT_EQ(run("url accept" + base + "/about").code, 1);
    EXPECT_EQ(run("url accept http://x.org/").out, "http://x.org/\n");
    EXPECT_EQ(run("url unwrap http://x.org/").code, 2);
    const Outcome wrong = run("url accept --base nonsense http://x.org/");
    EXPECT_EQ(wrong.code, 2);
    EXPECT_EQ(wrong.err, "velmo: nonsense: not a URL\n");
}

TEST_F(Tool, UrlRepairsWhatWasPasted) {
    EXPECT_EQ(run("url repair --json 'Ann <a@b.org>'").out,
              "{\"text\":\"Ann <a@b.org>\",\"location\":null,\"formatted\":\"a@b.org\"}\n");
    EXPECT_EQ(run("url repair www.h.org").out, "www.h.org (internet location)\n");
    EXPECT_EQ(run("url repair '<x>'").code, 1);
    EXPECT_EQ(run("url").code, 2);
}

TEST_F(Tool, UrlCommandsAnswerOnTheLinksOfPages) {
    const std::string links = run("links " + pages()).out;
    ASSERT_GT(links.size(), 1000u);
    for (const char* command :
         {"classify", "accept --base http://www.google.com/", "unwrap --base http://h.org/", "repair"}) {
        const Outcome outcome = run(std::string("url ") + command + " --json", links);
        EXPECT_EQ(outcome.code, 0) << command << outcome.err;
        EXPECT_GT(outcome.lines().size(), 500u) << command;
    }
}

TEST_F(Tool, MimeTellsTypesAndKinds) {
    EXPECT_EQ(run("mime --json .JPG image/jpeg nosuch").out,
              "{\"asked\":\".JPG\",\"type\":\"image/jpeg\",\"extension\":\"JPG\",\"kinds\":[\"image\",\"binary\"]}\n"
              "{\"asked\":\"image/jpeg\",\"type\":\"image/jpeg\",\"extension\":\"jpg\",\"kinds\":[\"image\"]}\n"
              "{\"asked\":\"nosuch\",\"type\":null,\"extension\":\"nosuch\",\"kinds\":[]}\n");
    EXPECT_EQ(run("mime", "text/html\n").out, "html  text/html  markup  html  text\n");
    EXPECT_EQ(run("mime nosuch").code, 1);
}

}  // namespace
}  // namespace velmo
