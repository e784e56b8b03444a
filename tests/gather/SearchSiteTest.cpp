#include <velmocore/gather/SearchSite.h>

#include <nlohmann/json.hpp>
#include <random>

#include "FolderFixture.h"

namespace velmo {
namespace {

constexpr View Evil = u"<script>alert('x')</script> \"quoted\" & \u202Eneve\u2066";

class SearchSiteTest : public test::FolderTest {
protected:
    /// A store of three pages, one of which wants to be more than text.
    SearchSite site(SearchSiteOptions options = {}) const {
        std::filesystem::remove(at("pages.store"));
        PageStore store = PageStore::openForUpdating(at("pages.store"));
        const auto put = [&](View key, View title, View text, View language, int year) {
            PageRecord page = {.url = URL::URLWithString(key), .key = key, .title = title};
            page.text = std::u16string(title).append(u"\n\n").append(text);
            page.language = language;
            page.date = std::chrono::sys_days(std::chrono::year(year) / 3 / 4);
            page.links = {{.url = URL::URLWithString(u"javascript:alert(1)"), .text = Evil, .thumbnail = {}}};
            EXPECT_EQ(store.put(page), PutResult::Added);
        };
        put(u"http://a.org/tea", u"Tea", u"A cup of tea.\n\nMore tea.", u"EN", 2009);
        put(u"http://b.org/evil", Evil, Evil, u"<b>", 2011);
        put(u"http://a.org/both", u"Both", u"Tea and coffee. \u4E2D\u6587\u6587\u6863\u3002", u"EN", 2011);
        store = {};
        std::vector<PageStore> stores;
        stores.push_back(PageStore::openForReading(at("pages.store")));
        return SearchSite(std::move(stores), std::move(options));
    }

    static std::string bodyOf(const SiteResponse& response) {
        return response.body + (response.rest ? response.rest() : "");
    }
    static std::string get(const SearchSite& site, const std::string& target) {
        return bodyOf(site.respond({.target = target}));
    }
};

bool contains(const std::string& text, std::string_view part) { return text.find(part) != text.npos; }

TEST_F(SearchSiteTest, AnswersOnlyWhatMayBeAsked) {
    const SearchSite site = this->site({.hosts = {"127.0.0.1:80", "h.org:80"}});
    const struct {
        SiteRequest request;
        int status;
    } cases[] = {
        {{.target = "/", .host = "127.0.0.1:80"}, 200},
        {{.target = "/", .host = "H.ORG:80"}, 200},
        {{.target = "/", .host = "evil.example:80"}, 421},
        {{.target = "/", .host = ""}, 421},
        {{.method = "HEAD", .target = "/?q=tea", .host = "h.org:80"}, 200},
        {{.method = "POST", .target = "/?q=tea", .host = "h.org:80"}, 405},
        {{.method = "DELETE", .target = "/", .host = "h.org:80"}, 405},
        {{.target = "http://evil.example/", .host = "h.org:80"}, 414},
        {{.target = "", .host = "h.org:80"}, 414},
        {{.target = "/?q=" + std::string(20000, 'a'), .host = "h.org:80"}, 414},
        {{.target = "/?q=" + std::string(1001, 'a'), .host = "h.org:80"}, 400},
        {{.target = "/?q=" + String(test::repeated(u"a+", 65)).utf8(), .host = "h.org:80"}, 400},
        {{.target = "/?q=" + std::string(900, '('), .host = "h.org:80"}, 200},
        {{.target = "/../../etc/passwd", .host = "h.org:80"}, 404},
        {{.target = "/page?key=none", .host = "h.org:80"}, 404},
        {{.target = "/page?key=http://a.org/tea&store=7", .host = "h.org:80"}, 404},
        {{.target = "/page?key=http://a.org/tea", .host = "h.org:80"}, 200},
    };
    for (const auto& [request, status] : cases) {
        const SiteResponse response = site.respond(request);
        EXPECT_EQ(response.status, status) << request.method << " " << request.target.substr(0, 60);
        EXPECT_TRUE(std::ranges::any_of(response.headers, [](const auto& header) {
            return header.first == "Content-Security-Policy" && header.second.starts_with("default-src 'none'");
        }));
    }
}

TEST_F(SearchSiteTest, ShowsResultsThatNarrowDown) {
    const SearchSite site = this->site();
    const std::string all = get(site, "/?q=tea");
    EXPECT_TRUE(contains(all, "2 of 3 pages")) << all;
    EXPECT_TRUE(contains(all, "A cup of <mark>tea</mark>.")) << all;
    EXPECT_TRUE(contains(all, "href=\"/?q=tea&amp;language=EN\""));
    EXPECT_TRUE(contains(all, "href=\"/?q=tea&amp;host=a.org\""));
    EXPECT_TRUE(contains(all, "href=\"/?q=tea&amp;year=2011\""));
    EXPECT_TRUE(contains(get(site, "/?q=tea&year=2011"), "1 of 3 pages"));
    EXPECT_TRUE(contains(get(site, "/?q=tea&host=org&language=en"), "2 of 3 pages"));
    EXPECT_TRUE(contains(get(site, "/?q=tea&host=b.org"), "0 of 3 pages"));
    EXPECT_TRUE(contains(get(site, "/?q=t%65a+%2Dcoffee"), "1 of 3 pages"));
    EXPECT_TRUE(contains(get(site, "/?q=%E6%96%87%E6%A1%A3"), "1 of 3 pages"));
    EXPECT_TRUE(contains(get(site, "/?q=tea+NEAR/x+%22cup"), "class=\"note\""));
    EXPECT_TRUE(contains(get(this->site({.seconds = 0}), "/?q=tea"), "the search was cut off"));
}

TEST_F(SearchSiteTest, StepsFromHitToHit) {
    const std::string page = get(site(), "/page?key=http://a.org/tea&q=tea");
    EXPECT_TRUE(contains(page, "id=\"hit-1\" href=\"#hit-2\" title=\"To the next hit\"><mark>Tea</mark>")) << page;
    EXPECT_TRUE(contains(page, "id=\"hit-3\" href=\"#hit-1\"")) << page;
    EXPECT_TRUE(contains(page, "href=\"/?q=tea\">"));
}

TEST_F(SearchSiteTest, KeepsForeignTextText) {
    const SearchSite site = this->site({.images = true});
    for (const char* target : {"/?q=quoted", "/page?key=http://b.org/evil&q=script", "/feed?q=quoted",
                               "/?q=%3Cscript%3E%22'%26&host=%3Cb%3E&language=%22%3E", "/nothing?q=%3Cscript%3E",
                               "/page?key=%3Cscript%3E"}) {
        const std::string body = get(site, target);
        EXPECT_FALSE(contains(body, "<script")) << target;
        EXPECT_FALSE(contains(body, "href=\"javascript:")) << target;
        EXPECT_FALSE(contains(body, "lang=\"<") || contains(body, "\xE2\x80\xAE") || contains(body, "\xE2\x81\xA6"));
    }
    EXPECT_TRUE(contains(get(site, "/?q=quoted"), "&lt;script&gt;alert(&#39;x&#39;)&lt;/script&gt; &quot;"));
}

TEST_F(SearchSiteTest, TellsProgramsTheSame) {
    const SearchSite site = this->site();
    const auto object = nlohmann::json::parse(get(site, "/search.json?q=tea&sort=url"));
    EXPECT_EQ(object["matching"], 2);
    EXPECT_EQ(object["results"][0]["url"], "http://a.org/both");
    EXPECT_EQ(object["results"][1]["date"], "2009-03-04T00:00:00Z");
    EXPECT_EQ(object["results"][1]["hits"].size(), 3u);
    const std::string feed = bodyOf(site.respond({.target = "/feed?q=tea", .host = "h.org"}));
    EXPECT_TRUE(contains(feed, "<id>http://a.org/both</id>")) << feed;
    EXPECT_TRUE(contains(feed, "rel=\"self\" href=\"http://h.org/feed?q=tea\""));
}

// Whatever is asked, the answer is whole: an opening tag for each closing one, no raw bytes of the
// request, and a head of its own.
TEST_F(SearchSiteTest, AnswersAnyTarget) {
    const SearchSite site = this->site();
    std::mt19937 random(7);
    const std::string_view parts[] = {"/",    "?",    "q=",   "tea", "%",     "%3C",  "<x>",    "&",      "host=",
                                      "page", "key=", "%00",  "+",   "year=", "9999", "-1",     "#",      "sort=",
                                      "feed", "\"",   "\xFF", "*",   "(",     "NEAR", "first=", "store=", "%E4%B8%AD"};
    for (int i = 0; i < 2000; ++i) {
        std::string target = "/";
        for (std::size_t n = random() % 12; n > 0; --n) target += parts[random() % std::size(parts)];
        const SiteResponse response = site.respond({.target = target});
        const std::string body = bodyOf(response);
        EXPECT_FALSE(contains(body, "<x>")) << target;
        const bool isWhole = body.starts_with("<!DOCTYPE html>") && body.ends_with("</html>\n");
        EXPECT_TRUE(isWhole || !response.contentType.starts_with("text/html")) << target;
        EXPECT_EQ(String::fromUTF8(body).utf8(), body);
    }
}

}  // namespace
}  // namespace velmo
