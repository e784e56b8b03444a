// Crawls of sites in the test itself, by a clock that goes as fast as somebody waits for it.
#include <velmocore/gather/Gathering.h>
#include <velmocore/gather/SiteSource.h>
#include <velmocore/net/Networks.h>
#include <velmocore/net/URLSession.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <set>

#include "net/RawServer.h"

namespace velmo {
namespace {

using test::answerOf;
using test::RawServer;

/// Pages by their paths, and who asked for what.
class Site {
public:
    using Pages = std::map<std::string, std::string>;  ///< whole answers

    explicit Site(Pages pages = {}) : pages_(std::move(pages)) {}

    std::string at(const std::string& path) const { return server_.at(path); }
    URL url(const std::string& path) const { return server_.url(path); }
    /// The same server by its other name.
    std::string elsewhere(const std::string& path) const {
        const std::string root = server_.at("");
        return "http://localhost" + root.substr(root.rfind(':')) + path;
    }
    void set(const std::string& path, const std::string& answer) {
        const std::scoped_lock lock(mutex_);
        pages_[path] = answer;
    }
    /// What is asked for a path, one time after the other; the last answer stays.
    void setSeveral(const std::string& path, std::vector<std::string> answers) {
        const std::scoped_lock lock(mutex_);
        several_[path] = std::move(answers);
    }
    /// Paths in the order of the requests, but for robots.txt.
    std::vector<std::string> asked() const {
        const std::scoped_lock lock(mutex_);
        return asked_;
    }
    std::string headOf(const std::string& path) const {
        const std::scoped_lock lock(mutex_);
        const auto head = heads_.find(path);
        return head == heads_.end() ? "" : head->second;
    }
    void forget() {
        const std::scoped_lock lock(mutex_);
        asked_.clear();
    }

private:
    void answer(RawServer::Client& client) {
        const std::string path = client.head.substr(4, client.head.find(' ', 4) - 4);
        client.send(answerFor(path, client.head));
    }
    std::string answerFor(const std::string& path, const std::string& head) {
        const std::scoped_lock lock(mutex_);
        if (path != "/robots.txt") asked_.push_back(path);
        heads_[path] = head;
        if (const auto found = several_.find(path); found != several_.end() && !found->second.empty()) {
            const std::string first = found->second.front();
            if (found->second.size() > 1) found->second.erase(found->second.begin());
            return first;
        }
        if (const auto found = pages_.find(path); found != pages_.end()) {
            const bool isKnown = head.find("If-None-Match: \"v\"") != head.npos;
            return isKnown ? answerOf("", "", "304 Not Modified") : found->second;
        }
        // A calendar without end.
        if (path.starts_with("/day/"))
            return page("<a href=/day/" + std::to_string(std::stoi(path.substr(5)) + 1) + ">next</a>");
        return answerOf("none", "", "404 Not Found");
    }

public:
    static std::string page(const std::string& body, const std::string& fields = "Content-Type: text/html\r\n") {
        return answerOf("<title>T</title>" + body, fields);
    }

private:
    mutable std::mutex mutex_;
    Pages pages_;
    std::map<std::string, std::vector<std::string>> several_;
    std::map<std::string, std::string> heads_;
    std::vector<std::string> asked_;
    RawServer server_{[this](RawServer::Client& client) { answer(client); }};
};

/// Seconds that pass only when somebody waits.
struct FakeTime {
    double now = 1000;
    SiteClock clock() {
        return {[this] { return now; }, [this](double seconds) { now += seconds; }};
    }
};

struct Crawled {
    std::vector<std::string> pages, errors;  ///< paths, and NAME: REASON
    SiteCounts counts;
};

std::string pathOf(const URL& url) {
    return url.part(URLPart::ResourceSpecifier).empty() ? "" : [&] {
        const std::string whole = url.absoluteString().utf8();
        return whole.substr(std::min(whole.find('/', 8), whole.size()));
    }();
}

Crawled crawl(const std::vector<URL>& starts, SiteOptions options, GatherOptions gather = {}) {
    Crawled crawled;
    SiteSource source(starts, options);
    gatherPages(source, gather, [&](GatheredPage& page) {
        if (page.error)
            crawled.errors.push_back(page.name.utf8() + ": " + page.error->text.utf8());
        else if (page.isKept)
            crawled.pages.push_back(pathOf(page.record.url));
        return true;
    });
    crawled.counts = source.counts();
    return crawled;
}

using Paths = std::vector<std::string>;

TEST(SiteSource, GivesEachPageOfASiteOnce) {
    Site site({
        {"/robots.txt", answerOf("User-agent: velmo\nDisallow: /private\nUser-agent: *\nDisallow: /")},
        {"/", Site::page("<a href=/a.html>a</a><a href='/b?utm_source=x&c=1'>b</a><a href=/b?c=1#x>b again</a>"
                         "<a href=/private/x>p</a><a rel='me nofollow' href=/nofollow>n</a><a href=/old>old</a>"
                         "<a href=/self>s</a><a href=/none>none</a><a href=/photo.jpg>photo</a>"
                         "<a href=/download>zip</a><a href='mailto:a@b.c'>m</a><a href='file:///etc/passwd'>f</a>"
                         "<a href=/evil>e</a><a href=http://10.0.0.1/>i</a>"
                         "<link rel=alternate type=application/rss+xml href=/feed><iframe src=/frame></iframe>")},
        {"/a.html", Site::page("<a href=/>home</a><a href=/quiet>q</a><a href=/secret>s</a><a href=/error>e</a>")},
        {"/b?utm_source=x&c=1", Site::page("b")},
        {"/old", answerOf("", "Location: /new\r\n", "301 Moved")},
        {"/new", Site::page("<a href=/old>old</a>")},
        {"/self", answerOf("", "Location: /self\r\n", "302 Found")},
        {"/evil", answerOf("", "Location: file:///etc/passwd\r\n", "302 Found")},
        {"/download", answerOf("PK\3\4", "Content-Type: application/zip\r\n")},
        {"/feed", answerOf("<rss><item><title>I</title><link>/item</link></item></rss>",
                           "Content-Type: application/rss+xml\r\n")},
        {"/frame", answerOf("plain", "Content-Type: text/plain\r\n")},
        {"/item", Site::page("item")},
        {"/quiet", Site::page("<meta name=robots content='nofollow'><a href=/behind>x</a>")},
        {"/secret",
         Site::page("<a href=/from-secret>x</a>", "X-Robots-Tag: other: nofollow\r\nX-Robots-Tag: noindex\r\n")},
        {"/from-secret", Site::page("<meta name=velmo content=none><a href=/behind>x</a>")},
        {"/error", answerOf("<title>404 Not Found</title><body>404 Not Found</body>", "Content-Type: text/html\r\n")},
    });
    for (const std::size_t threads : {1, 4}) {
        site.forget();
        FakeTime time;
        const Crawled found =
            crawl({site.url("/")}, {.contact = u"http://h.org/(me)", .clock = time.clock()}, {.threads = threads});
        EXPECT_EQ(found.pages,
                  (Paths{"/", "/frame", "/a.html", "/b?utm_source=x&c=1", "/new", "/feed", "/quiet", "/item"}));
        EXPECT_EQ(found.errors, Paths());
        EXPECT_EQ(found.counts.failed, 3u);     // /self, /none, /evil
        EXPECT_EQ(found.counts.forbidden, 3u);  // /private/x, and two that are not to be kept
        EXPECT_EQ(found.counts.others, 1u);
        EXPECT_EQ(found.counts.waiting + found.counts.dropped, 0u);
        std::vector<std::string> asked = site.asked();
        EXPECT_EQ(std::set(asked.begin(), asked.end()).size(), asked.size());
        EXPECT_EQ(found.counts.requests, asked.size());
        // One pause behind each request, those for robots.txt too.
        EXPECT_GE(time.now - 1000, static_cast<double>(asked.size()));
        const std::string head = site.headOf("/item");
        EXPECT_NE(head.find("User-Agent: velmo/"), head.npos);
        EXPECT_NE(head.find(" (+http://h.org/me)\r\n"), head.npos);
        EXPECT_EQ(head.find("Referer"), head.npos);
    }
}

TEST(SiteSource, GoesAsFarAsItIsTold) {
    Site site({{"/docs/", Site::page("")}});
    site.set("/docs/",
             Site::page("<a href=/docs/sub/a>a</a><a href=/day/1>d</a><a href='" + site.elsewhere("/x") + "'>x</a>"));
    site.set("/docs/sub/a", Site::page("<a href=b>b</a>"));
    site.set("/docs/sub/b", Site::page(""));
    site.set("/x", Site::page(""));
    const struct {
        std::int64_t follow;
        std::size_t depth;
        std::set<std::string> pages;
    } cases[] = {
        {FollowNothing, 5, {"/docs/"}},
        {FollowSameHost, 0, {"/docs/"}},
        {FollowSameHost, 2, {"/docs/", "/docs/sub/a", "/docs/sub/b", "/day/1", "/day/2"}},
        {FollowSameFolders, 5, {"/docs/", "/docs/sub/a", "/docs/sub/b"}},
        {FollowEverything, 1, {"/docs/", "/docs/sub/a", "/day/1", "/x"}},
        {FollowLevels, 5, {"/docs/", "/docs/sub/a", "/day/1", "/x"}},
    };
    for (const auto& [follow, depth, pages] : cases) {
        FakeTime time;
        const Crawled found = crawl({site.url("/docs/")}, {.follow = follow, .depth = depth, .clock = time.clock()});
        EXPECT_EQ(std::set(found.pages.begin(), found.pages.end()), pages) << follow << " " << depth;
    }
}

TEST(SiteSource, LeavesHostsAloneThatWishIt) {
    const std::string busy = answerOf("busy", "Retry-After: 7\r\n", "429 Too Many Requests");
    const std::string notice = Site::page("<body>Woah, slow down! You have exceeded the allowed page load frequency.");
    const std::string good = Site::page("good"), none = answerOf("", "", "404 Not Found");
    const struct {
        const char* name;
        std::vector<std::string> robots, answers;
        double least, most;  // seconds
        std::size_t requests;
        bool isThere;
    } cases[] = {
        {"nothing special", {none}, {good}, 1, 3, 1, true},
        {"a wish", {none}, {busy, busy, good}, 14, 18, 3, true},
        {"for too long", {none}, {answerOf("", "Retry-After: 86400\r\n", "503 Busy"), good}, 30, 33, 2, true},
        {"until a date",
         {none},
         {answerOf("", "Retry-After: Fri, 01 Jan 2100 00:00:00 GMT\r\n", "503 Busy"), good},
         300,
         303,
         2,
         true},
        {"no wish: longer each time",
         {none},
         {answerOf("", "", "503 Busy"), answerOf("", "", "503 Busy"), good},
         6,
         10,
         3,
         true},
        {"a notice", {none}, {notice, good}, 3, 6, 2, true},
        {"never again", {none}, {busy}, 20, 30, 4, false},
        {"a crawl delay", {answerOf("User-agent: *\nCrawl-delay: 20")}, {good}, 20, 22, 1, true},
        {"a long one", {answerOf("User-agent: *\nCrawl-delay: 100000")}, {good}, 30, 32, 1, true},
        {"busy rules", {busy, answerOf("User-agent: *")}, {good}, 7, 10, 1, true},
        {"no rules to be had", {answerOf("", "", "503 Busy")}, {good}, 13, 30, 0, false},
        {"rules that are forbidden", {answerOf("", "", "403 No")}, {good}, 1, 3, 1, true},
        {"rules elsewhere", {answerOf("", "Location: /robots2.txt\r\n", "301 Moved")}, {good}, 1, 3, 0, false},
    };
    for (const auto& [name, robots, answers, least, most, requests, isThere] : cases) {
        Site site({{"/robots2.txt", answerOf("User-agent: *\nDisallow: /")}});
        site.setSeveral("/robots.txt", robots);
        site.setSeveral("/", answers);
        FakeTime time;
        const Crawled found = crawl({site.url("/")}, {.longestPause = 30, .clock = time.clock()});
        EXPECT_EQ(found.pages.size(), isThere) << name;
        EXPECT_EQ(found.errors.size(), !isThere) << name;
        EXPECT_EQ(found.counts.requests, requests) << name;
        EXPECT_GE(time.now - 1000, least) << name;
        EXPECT_LE(time.now - 1000, most) << name;
    }
}

/// A store in a file that goes with the test.
class SiteStore : public testing::Test {
protected:
    ~SiteStore() override { std::filesystem::remove_all(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    /// The paths of its pages; the notes in it.
    static std::set<std::string> pagesOf(const std::string& path) {
        std::set<std::string> pages;
        PageStore::openForReading(path).forEachPage([&](const StoredPage& page) {
            pages.insert(pathOf(URL::URLWithString(String::fromUTF8(page.address()))));
            return true;
        });
        return pages;
    }
    static std::size_t notesOf(const std::string& path) {
        std::size_t notes = 0;
        PageStore::openForReading(path).forEachNote([&](std::uint64_t, Bytes) { return ++notes > 0; });
        return notes;
    }
    /// Sixteen pages, each of which leads to two others; one cannot be had.
    static void grow(Site& site, const std::string& fields) {
        for (int i = 1; i <= 16; ++i) {
            const auto link = [](int to) {
                return "<a href=/p/" + std::to_string(to) + ">" + std::to_string(to) + "</a>";
            };
            site.set("/p/" + std::to_string(i),
                     Site::page("Page " + std::to_string(i) + link(2 * i) + link(2 * i + 1), fields));
        }
    }
    Crawled crawlInto(const std::string& store, const Site& site, std::size_t limit = 0,
                      const std::function<void()>& atEach = nullptr) {
        PageStore pages = PageStore::openForUpdating(store);
        FakeTime time;
        SiteOptions options = {.depth = 3, .delay = 0, .store = &pages, .clock = time.clock()};
        SiteSource source({site.url("/p/1")}, options);
        Crawled crawled;
        gatherPages(source, {.threads = 1, .store = &pages, .limit = limit}, [&](GatheredPage& page) {
            crawled.pages.push_back(pathOf(page.record.url));
            if (atEach) atEach();
            return true;
        });
        crawled.counts = source.counts();
        return crawled;
    }

    const std::filesystem::path folder_ = [] {
        const auto folder = std::filesystem::temp_directory_path() / ("velmo-site-" + std::to_string(getpid()));
        std::filesystem::create_directories(folder);
        return folder;
    }();
};

TEST_F(SiteStore, GoesOnWhereItWasEndedOrKilled) {
    Site site;
    grow(site, "Content-Type: text/html\r\n");
    std::set<std::string> all;
    for (int i = 1; i <= 15; ++i) all.insert("/p/" + std::to_string(i));
    // What stands in the file when a page has been put is what a program leaves that is killed then.
    std::size_t killed = 0;
    crawlInto(path("whole"), site, 0,
              [&] { std::filesystem::copy_file(path("whole"), path("killed" + std::to_string(killed++))); });
    EXPECT_EQ(pagesOf(path("whole")), all);
    EXPECT_EQ(notesOf(path("whole")), 0u);
    EXPECT_EQ(killed, all.size());
    for (std::size_t i = 0; i < killed; ++i) {
        const std::string store = path("killed" + std::to_string(i));
        const std::set<std::string> before = pagesOf(store);
        EXPECT_GE(before.size() + 1, i);
        site.forget();
        crawlInto(store, site);
        std::set<std::string> together = before;
        for (const std::string& asked : site.asked()) {
            EXPECT_FALSE(before.contains(asked)) << i << ": " << asked;
            const bool isPage = all.contains(asked);
            EXPECT_TRUE(!isPage || together.insert(asked).second) << i << ": " << asked;
        }
        EXPECT_EQ(together, all) << i;
        EXPECT_EQ(pagesOf(store), all) << i;
        EXPECT_EQ(notesOf(store), 0u) << i;
    }
    // In pieces, which end as they should.
    site.forget();
    for (std::size_t kept = 0; kept < all.size(); kept += 4) {
        crawlInto(path("pieces"), site, 4);
        EXPECT_EQ(pagesOf(path("pieces")).size(), std::min(kept + 4, all.size()));
    }
    const std::vector<std::string> asked = site.asked();
    EXPECT_EQ(std::set(asked.begin(), asked.end()).size(), asked.size());
}

TEST_F(SiteStore, AsksForWhatHasChanged) {
    Site site;
    grow(site, "Content-Type: text/html\r\nETag: \"v\"\r\n");
    // Links that may not be followed are known only to who reads the page.
    site.set("/p/7", Site::page("<a rel=nofollow href=/p/14>14</a><a href=/p/15>15</a>", "ETag: \"v\"\r\n"));
    EXPECT_EQ(crawlInto(path("store"), site).pages.size(), 14u);
    const std::set<std::string> pages = pagesOf(path("store"));
    site.forget();
    const Crawled again = crawlInto(path("store"), site);
    EXPECT_EQ(again.counts.unchanged, 13u);
    EXPECT_EQ(again.pages, Paths{"/p/7"});
    EXPECT_EQ(pagesOf(path("store")), pages);
    const std::vector<std::string> asked = site.asked();
    EXPECT_EQ(std::set(asked.begin(), asked.end()), pages);
}

TEST(SiteSource, GoesToNoOtherNetworkThanItsStart) {
    const struct {
        std::vector<std::uint8_t> address;
        NetworkKinds kind;
    } addresses[] = {
        {{8, 8, 8, 8}, PublicNetwork},
        {{10, 1, 2, 3}, PrivateNetwork},
        {{172, 15, 255, 255}, PublicNetwork},
        {{172, 31, 255, 255}, PrivateNetwork},
        {{192, 168, 0, 1}, PrivateNetwork},
        {{100, 64, 0, 1}, PrivateNetwork},
        {{100, 128, 0, 1}, PublicNetwork},
        {{169, 254, 169, 254}, LinkLocalNetwork},
        {{127, 9, 9, 9}, LoopbackNetwork},
        {{0, 0, 0, 0}, OtherNetworks},
        {{224, 0, 0, 1}, OtherNetworks},
        {{255, 255, 255, 255}, OtherNetworks},
        {{1, 2, 3}, OtherNetworks},
        {{0x26, 0x06, 0x47, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, PublicNetwork},
        {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, LoopbackNetwork},
        {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, OtherNetworks},
        {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 127, 0, 0, 1}, LoopbackNetwork},
        {{0, 0x64, 0xFF, 0x9B, 0, 0, 0, 0, 0, 0, 0, 0, 10, 0, 0, 1}, PrivateNetwork},
        {{0, 0x64, 0xFF, 0x9B, 0, 1, 0, 0, 0, 0, 0, 0, 8, 8, 8, 8}, OtherNetworks},
        {{0x20, 0x02, 192, 168, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, PrivateNetwork},
        {{0x20, 0x01, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, OtherNetworks},
        {{0xFD, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, PrivateNetwork},
        {{0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, LinkLocalNetwork},
        {{0xFF, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, OtherNetworks},
    };
    for (const auto& [address, kind] : addresses) EXPECT_EQ(networkOfAddress(address), kind) << int(address[0]);
    for (const char16_t* name : {u"http://127.1/", u"http://0x7f.1/", u"http://2130706433/", u"http://localhost./",
                                 u"http://a.localhost/", u"http://[::1]/", u"http://[::ffff:127.0.0.1]/"})
        EXPECT_EQ(networksOfHostName(URL::URLWithString(name)), LoopbackNetwork) << printed(String(name));
    // What the loader makes of it: names that lead here too, connections that stand already, redirects.
    RawServer server([](RawServer::Client& client) {
        const bool isRedirect = client.head.starts_with("GET /redirect ");
        client.send(isRedirect ? answerOf("", "Location: /\r\n", "302 Found")
                               : "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n\r\npage");
        client.keepsOpen = !isRedirect;
    });
    URLRequest request = {.url = server.url("/")};
    EXPECT_TRUE(sendSynchronousRequest(request).data);
    const std::size_t connections = server.connections();
    for (const NetworkKinds networks : {PublicNetwork, PublicNetwork | PrivateNetwork | LinkLocalNetwork}) {
        request.limits.networks = networks;
        const DownloadedResponse answer = sendSynchronousRequest(request);
        EXPECT_FALSE(answer.data);
        EXPECT_EQ(printed(answer.error->text), "in a network that may not be reached");
    }
    EXPECT_EQ(server.connections(), connections);
    request.limits.networks = LoopbackNetwork;
    EXPECT_TRUE(sendSynchronousRequest(request).data);
}

}  // namespace
}  // namespace velmo
