// robots.txt: the examples of its standard, what servers write in fact, and a slow matcher as a second
// opinion.
#include <velmocore/gather/RobotsRules.h>

#include "TestSupport.h"

namespace velmo {
namespace {

URL at(std::string_view path) { return URL::URLWithString(u"http://h.org" + String::fromUTF8(path)); }
bool allows(const std::string& file, const char* path, const char* agent = "velmo/1.0 (+http://h)") {
    return RobotsRules(file, agent).isAllowed(at(path));
}

TEST(RobotsRules, DecideByTheLongestRule) {
    const std::string all = "User-agent: *\n";
    const struct {
        std::string rules;
        const char* path;
        bool allowed;
    } cases[] = {
        // The examples of the standard.
        {"Allow: /example/page/\nDisallow: /example/page/disallowed.gif", "/example/page/disallowed.gif", false},
        {"Allow: /example/page/\nDisallow: /example/page/disallowed.gif", "/example/page/a.gif", true},
        {"Disallow: *.gif$\nDisallow: /example/\nAllow: /publications/", "/a/b.gif", false},
        {"Disallow: *.gif$\nDisallow: /example/\nAllow: /publications/", "/a/b.gif?x", true},
        {"Disallow: *.gif$\nDisallow: /example/\nAllow: /publications/", "/publications/b.gif", true},
        {"Disallow: /foo/bar?baz=quz", "/foo/bar?baz=quz", false},
        {"Disallow: /foo/bar?baz=https://foo.bar", "/foo/bar?baz=https%3A%2F%2Ffoo.bar", false},
        {"Disallow: /foo/bar?baz=https%3A%2F%2Ffoo.bar", "/foo/bar?baz=https://foo.bar", false},
        {"Disallow: /foo/bar/\xE3\x83\x84", "/foo/bar/%E3%83%84", false},
        {"Disallow: /foo/bar/%E3%83%84", "/foo/bar/%e3%83%84/x", false},
        {"Disallow: /foo/bar/%62%61%7A", "/foo/bar/baz", false},
        {"Disallow: /foo/bar/baz", "/foo/bar/%62%61%7A", false},
        {"Disallow: /path/file-with-a-%2A.html", "/path/file-with-a-*.html", false},
        {"Disallow: /path/file-with-a-%2A.html", "/path/file-with-a-b.html", true},
        {"Disallow: /path/foo-%24", "/path/foo-$", false},
        {"Disallow: /path/foo-%24", "/path/foo-", true},
        // A / of the path is not one that was escaped.
        {"Disallow: /a/b", "/a%2Fb", true},
        {"Disallow: /a%2fb", "/a%2Fb", false},
        // Ties allow; the order of the lines does not count.
        {"Disallow: /page\nAllow: /page", "/page", true},
        {"Allow: /p\nDisallow: /", "/page", true},
        {"Allow: /page\nDisallow: /*.htm", "/page.htm", false},
        {"Allow: /$\nDisallow: /", "/", true},
        {"Allow: /$\nDisallow: /", "/a", false},
        // Stars and ends.
        {"Disallow: /fish*", "/fishheads/yummy.html", false},
        {"Disallow: /fish*", "/Fish.asp", true},
        {"Disallow: /*.php", "/folder/filename.php?parameters", false},
        {"Disallow: /*.php$", "/filename.php?parameters", true},
        {"Disallow: /fish*.php", "/fishheads/catfish.php?parameters", false},
        {"Disallow: /a*b*c$", "/a-b-c-b-c", false},
        {"Disallow: /a*b*c$", "/a-b-c-b", true},
        {"Disallow: /a**$", "/abc", false},
        {"Disallow: /a$b", "/a$b", false},
        {"Disallow: /ab*b$", "/ab", true},
        {"Disallow: /ab*b$", "/abb", false},
        {"Disallow: *", "/a", false},
        {"Disallow: $", "/a", true},
        {"Disallow: a", "/a", true},
        {"Disallow:", "/a", true},
        {"Disallow: /a b", "/a%20b", false},
        {"Disallow: /100%", "/100%25", false},
        // The file itself, and a site without a path.
        {"Disallow: /", "/robots.txt", true},
        {"Disallow: /", "", false},
        {"Disallow: /a#b", "/a", false},
        {"Disallow: /a?$", "/a", true},
        {"Disallow: /a?$", "/a?", false},
        {"Disallow: /a;b", "/a;b=1", false},
    };
    EXPECT_EQ(std::size(cases), 46u);
    for (const auto& [rules, path, allowed] : cases)
        EXPECT_EQ(allows(all + rules, path), allowed) << rules << " " << path;
}

TEST(RobotsRules, AreThoseOfTheGroupsOfAName) {
    const std::string groups =
        "user-agent: ExampleBot\ndisallow: /foo\ndisallow: /bar\n\nuser-agent: velmo\ndisallow: /v\n"
        "# Comment\nUser-Agent: other\nSitemap: http://h.org/map.xml\nCrawl-delay: 2\n\nUSER-AGENT : Velmo/2.0 # c\n"
        "allow: /v/open\nDisallow: /w\nuser-agent: *\nCrawl-delay: 7.5\nNonsense\nno: thing\ndisallow: /all\n";
    const struct {
        std::string file;
        const char *agent, *path;
        bool allowed;
    } cases[] = {
        {groups, "ExampleBot", "/foo", false},
        {groups, "examplebot/2.1 (+http://e)", "/bar", false},
        {groups, "ExampleBot", "/all", true},
        {groups, "ExampleBots", "/foo", true},
        {groups, "velmo", "/v", false},
        {groups, "velmo", "/v/open", true},
        {groups, "velmo", "/w", false},
        {groups, "velmo", "/all", true},
        {groups, "other", "/w", false},
        {groups, "other", "/v", true},
        {groups, "nobody", "/all", false},
        {groups, "", "/all", false},
        {"disallow: /a\nuser-agent: *\ndisallow: /b", "velmo", "/a", true},
        {"user-agent: x\ndisallow: /", "velmo", "/a", true},
        {"user-agent: *\ndisallow: /\nuser-agent: velmo\n", "velmo", "/a", true},
        {"\xEF\xBB\xBFUser-agent: *\rDisallow: /a\r\rDisallow: /b", "velmo", "/b", false},
        {"\xEF\xBB\xBFUser-agent: *\r\nDisallow: /a\r\n", "velmo", "/a", false},
        {"User-agent: * for all\nDisallow : \t/a \t", "velmo", "/a", false},
        {"User-agent: *bot\nDisallow: /", "velmo", "/a", true},
        {"User-agent *\nDisallow /", "velmo", "/a", true},
    };
    for (const auto& [file, agent, path, allowed] : cases)
        EXPECT_EQ(allows(file, path, agent), allowed) << file << agent << path;
    const RobotsRules own(groups, "velmo"), all(groups, "nobody");
    EXPECT_EQ(own.crawlDelay(), std::nullopt);
    EXPECT_EQ(RobotsRules(groups, "other").crawlDelay(), 2);
    EXPECT_EQ(all.crawlDelay(), 7.5);
    EXPECT_EQ(own.sitemaps(), Strings{u"http://h.org/map.xml"});
    for (const char* delay : {"x", "-1", "inf", "nan", ""})
        EXPECT_EQ(RobotsRules("User-agent: *\nCrawl-delay: " + std::string(delay), "a").crawlDelay(), std::nullopt);
}

TEST(RobotsRules, FollowFromTheAnswer) {
    const std::string file = "User-agent: *\nDisallow: /a";
    const struct {
        std::int64_t status;
        bool a, b;
    } cases[] = {{200, false, true}, {204, false, true},  {301, true, true},   {401, true, true}, {404, true, true},
                 {499, true, true},  {500, false, false}, {503, false, false}, {0, false, false}, {600, false, false}};
    for (const auto& [status, a, b] : cases) {
        const RobotsRules rules = RobotsRules::rulesOfAnswer(status, file, "velmo");
        EXPECT_EQ(std::pair(rules.isAllowed(at("/a")), rules.isAllowed(at("/b"))), std::pair(a, b)) << status;
    }
    EXPECT_FALSE(RobotsRules().isAllowed(URL()));
    EXPECT_EQ(RobotsRules::addressForPage(URL::URLWithString(u"https://me:pw@h.org:81/a/b?c#d")),
              u"https://me:pw@h.org:81/robots.txt");
    EXPECT_TRUE(RobotsRules::addressForPage(URL::URLWithString(u"ftp://h.org/")).isAbsent());
    // What is cut at the limit would say something else.
    std::string large = "User-agent: *\nDisallow: /a\n";
    large += "#" + std::string(RobotsRules::LargestFile - large.size() - 13, 'x') + "\nDisallow: /b\nDisallow: /c\n";
    const RobotsRules cut(large, "velmo");
    EXPECT_FALSE(cut.isAllowed(at("/a")));
    EXPECT_TRUE(cut.isAllowed(at("/b")) && cut.isAllowed(at("/c")));
}

/// Whether a pattern of plain letters, stars and an end matches, by trying everything.
bool matchesSlowly(std::string_view pattern, std::string_view path) {
    if (pattern.empty()) return true;
    if (pattern == "$") return path.empty();
    if (pattern[0] != '*')
        return !path.empty() && path[0] == pattern[0] && matchesSlowly(pattern.substr(1), path.substr(1));
    for (std::size_t i = 0; i <= path.size(); ++i)
        if (matchesSlowly(pattern.substr(1), path.substr(i))) return true;
    return false;
}

TEST(RobotsRules, MatchAsASlowMatcherDoes) {
    std::mt19937 random(1);
    const auto text = [&](std::string_view alphabet, std::size_t length) {
        std::string units = "/";
        while (units.size() < length) units += alphabet[random() % alphabet.size()];
        return units;
    };
    std::size_t forbidden = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::string pattern = text("ab/***", 1 + random() % 8);
        if (random() % 2) pattern += '$';
        const std::string path = text("ab/", 1 + random() % 10);
        const bool isForbidden = !allows("User-agent: *\nDisallow: " + pattern, path.c_str());
        EXPECT_EQ(isForbidden, matchesSlowly(pattern, path)) << pattern << " " << path;
        forbidden += isForbidden;
    }
    EXPECT_GT(forbidden, 4000u);
    EXPECT_LT(forbidden, 16'000u);
}

}  // namespace
}  // namespace velmo
