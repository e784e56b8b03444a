// What pages say of themselves, and what is taken out of them.
#include "ToolFixture.h"

namespace velmo {
namespace {

TEST_F(Tool, TellsWhatPagesSayOfThemselves) {
    const std::string page =
        write("page.html",
              "<html><head><title> A &amp; B</title><META NAME=Keywords CONTENT='a, b'><meta name=dc.title content=C>"
              "<meta name=date content='2001-02-03T10:11:12+01:00'><meta name=author content='D &lt;i>'>"
              "<link rel=canonical href=c.html><base href='http://h.org/'></head><body>404 not found");
    const Json found = run("meta --json " + page).lines().at(0);
    const Json expected = {
        {"file", page},
        {"title", " A &amp; B"},
        {"normalizedTitle", "A & B"},
        {"metaTitle", "C"},
        {"indexTitle", nullptr},
        {"keywords", "a, b"},
        {"description", nullptr},
        {"date", "2001-02-03T10:11:12+01:00"},
        {"parsedDate", "2001-02-03T09:11:12Z"},
        {"author", "D &lt;i"},
        {"copyright", nullptr},
        {"refresh", nullptr},
        {"canonical", "c.html"},
        {"base", "http://h.org/"},
        {"editableNote", false},
        {"attributes",
         {{"keywords", "a, b"}, {"dc.title", "C"}, {"date", "2001-02-03T10:11:12+01:00"}, {"author", "D &lt;i"}}},
        {"converted",
         {{"keywords", "a, b"}, {"dc.title", "C"}, {"date", "2001-02-03T10:11:12+01:00"}, {"author", "D <i"}}},
        {"summary",
         {{"keywords", "a, b"},
          {"description", nullptr},
          {"title", "C"},
          {"indexTitle", nullptr},
          {"date", "2001-02-03T10:11:12+01:00"}}},
        {"errorPage", false}};
    EXPECT_EQ(found, expected) << Json::diff(found, expected);
    const Outcome lines = run("meta " + page);
    EXPECT_NE(lines.out.find("parsedDate: 2001-02-03T09:11:12Z\n"), std::string::npos) << lines.out;
    EXPECT_EQ(lines.out.find("copyright"), std::string::npos);
    const std::string error = write("error.html", "<title>404 Not Found</title><body>404 Not Found");
    EXPECT_TRUE(run("meta --json " + error).lines().at(0)["errorPage"]);
    const std::string missing = write("missing.html", "<html><p>Page not found");
    EXPECT_TRUE(run("meta --json --base http://h.org/404.html " + missing).lines().at(0)["errorPage"]);
    EXPECT_FALSE(run("meta --json " + missing).lines().at(0)["errorPage"]);
    EXPECT_EQ(run("meta --json --base '::' " + missing).code, 2);
}

// Pages with the values that other readers of metadata are tested with.
TEST_F(Tool, AgreesWithOtherReadersOfMetadata) {
    const auto converted = [&](const std::string& name) {
        return run("meta --json " VELMO_PAGES "/" + name + ".html").lines().at(0)["converted"];
    };
    const auto expected = [](const std::string& name) {
        return Json::parse(test::readData("metadata/" + name + ".expected.json"));
    };
    std::size_t count = 0;
    const auto compare = [&](const Json& found, std::string name, std::string value) {
        for (char& unit : name) unit = static_cast<char>(std::tolower(unit));
        for (char& unit : value) unit = unit == '\n' ? ' ' : unit;
        // What looks like markup once its entities are decoded is taken for it.
        if (const std::size_t tag = value.find("<meta> "); tag != value.npos) value.erase(tag, 7);
        EXPECT_EQ(found.value(name, ""), value) << name;
        ++count;
    };
    const Json graph = converted("extruct-opengraph_test"), core = converted("extruct-dublincore_test");
    const Json properties = expected("extruct-opengraph_test")[0]["properties"],
               lists = expected("extruct-dublincore_test")[0];
    for (const Json& property : properties) compare(graph, property[0], property[1]);
    for (const char* list : {"elements", "terms"})
        for (const Json& element : lists[list])
            if (element.contains("content")) compare(core, element["name"], element["content"]);
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"readability-003-metadata-preferred", "title", "dc:title"},
        {"readability-003-metadata-preferred", "byline", "dc:creator"},
        {"readability-003-metadata-preferred", "excerpt", "dc:description"},
        {"readability-metadata-content-missing", "byline", "dc:creator twitter:site_name"},
        {"readability-metadata-content-missing", "excerpt", "dc:description og:description"},
        {"readability-v8-blog", "excerpt", "description"}};
    for (const auto& [page, value, attribute] : rows) compare(converted(page), attribute, expected(page)[value]);
    EXPECT_EQ(count, 25u);
}

TEST_F(Tool, StripsInTheOrderOfTheFlags) {
    const std::tuple<const char*, const char*, Json> cases[] = {
        {"", "<p>a</p>", "<p>a</p>"},
        {"--tags", "<p>a</p>b", " a b"},
        {"--tag p", "<p>a</P><b>", "a<b>"},
        {"--attributes A", "<a href=b class=c>", "<A HREF=\"b\">"},
        {"--bodies '<p,<div'", "<div>a</div>b<P c>d</p>", "b"},
        {"--bodies-except '<p,<div'", "<div>a</div>b<p>c</p>", "<div>a</div>\n<p>c</p>\n"},
        {"--bodies '<p'", "<p>a</p>", nullptr},
        {"--bodies '<p' --tags", "<p>a</p>", nullptr},
        {"--inner b", "a<b>c</b>", "c"},
        {"--outer b", "a<b>c</b>", "<b>c</b>"},
        {"--inner b", "a", nullptr},
        {"--objects", "a<script>b</script><img alt=c>", "a<img alt=c>"},
        {"--objects-and-images", "a<img alt=c>", "a c\n"},
        {"--links", "a<a href=b>c</a>d", "ad"},
        {"--file-links", "a<a href=b>c</a><a href=http://h>d</a>", "a<a href=http://h>d</a>"},
        {"--resolve http://h.org/a/", "<a href=b>", "<a href=http://h.org/a/b>"},
        {"--flatten x- --base http://h.org/a/", "<a href=b/c>", "<a href=x-c>"},
        {"--set-base 'http://h/' --set-base ''", "<head><base href=x>", "<head>\n"},
        {"--add-base http://h/", "<head>", "<head><BASE href=\"http://h/\"/>\n"},
        {"--remove-meta x", "a<meta name=X>b", "ab"},
        {"--note", "<p>a\n\n <button>b</button>", "<p>a\n"},
        {"--tags --tag p", "<p>a</p>", " a"},
        {"--outer p --tag p", "x<p>a</p>", "a"},
        {"--tag p --outer p", "x<p>a</p>", nullptr}};
    for (const auto& [flags, page, expected] : cases)
        EXPECT_EQ(run(std::string("strip --json --page ") + flags + " -", page).lines().at(0)["text"], expected)
            << flags;
    EXPECT_EQ(run("strip --inner b -", "<p>").out, "");
    for (const char* wrong : {"strip --flatten x -", "strip --resolve '::' -", "strip --base '' -"})
        EXPECT_EQ(run(wrong, "<p>").code, 2) << wrong;
}

}  // namespace
}  // namespace velmo
