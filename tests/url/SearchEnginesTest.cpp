#include <velmocore/url/SearchEngines.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>

#include "TestSupport.h"
#include "url/SearchEngineTables.h"

namespace velmo {
namespace {

TEST(SearchEngines, HostsAreWellFormed) {
    const auto hosts = detail::searchEngineHosts();
    EXPECT_EQ(hosts.size(), 71u);
    EXPECT_EQ(std::set(hosts.begin(), hosts.end()).size(), hosts.size());
    for (std::string_view host : hosts) {
        EXPECT_TRUE(std::all_of(host.begin(), host.end(), [](unsigned char c) {
            return std::islower(c) || std::isdigit(c) || c == '.' || c == '-';
        })) << host;
        EXPECT_NE(host.find('.'), host.npos) << host;
        const std::string url = "http://x" + std::string(host) + (host.back() == '.' ? "org/" : "/");
        EXPECT_TRUE(isSearchEngine(URL::URLWithString(String::fromUTF8(url)))) << url;
    }
    for (const auto& pages : {detail::googlePages(), detail::yahooPages()})
        for (const detail::HostPage& page : pages) {
            const String host = String::fromUTF8("http://" + std::string(page.host) + "/");
            const String url = String::fromUTF8("http://" + std::string(page.host) + "/?" + std::string(page.fragment));
            EXPECT_EQ(isSearchEngine(URL::URLWithString(host)), !page.fragment.empty()) << host;
            EXPECT_FALSE(isSearchEngine(URL::URLWithString(url))) << url;
        }
}

TEST(SearchEngines, TellsThemByHostAndPage) {
    const struct {
        const char16_t* url;
        bool isSearch;
    } cases[] = {
        {u"http://ask.com/", true},
        {u"http://xask.com/", false},
        {u"http://INFO.com", true},
        {u"http://www.lycos.de/x", true},
        {u"http://h.org/lycos.de", false},
        {u"http://lycos.weblogsinc.com/", false},
        {u"http://weblogsinc.com/lycos.", false},
        {u"http://code.google.com/p/x", false},
        {u"http://Code.Google.com/p/x", false},
        {u"http://code.google.de/p/x", true},
        {u"http://any.google.co.uk/", true},
        {u"http://groups.google.com/x", true},
        {u"http://groups.google.com/Group/x", false},
        {u"http://picasaweb.google.com/x", false},
        {u"http://picasaweb.google.com/LH/view?x", true},
        {u"http://www.webstandards.org/", false},
        {u"http://www.webstandards.org/index.php?s=x", true},
        {u"http://www.amazon.de/s/ref=x", true},
        {u"http://www.amazon.de/dp/s/", false},
        {u"http://amazon.de/s/x", false},
        {u"http://de.yahoo.com/x", true},
        {u"http://de.news.yahoo.de/s/", true},
        {u"http://yahoo.reuters.com/x", false},
        {u"http://news.yahoo.com/news?tmpl=index", true},
        {u"http://news.yahoo.com/news?tmpl=Story&x", false},
        {u"http://uk.news.yahoo.com/", false},
        {u"http://example.org/", false},
        {u"mailto:x@google.com", false},
        {u"google.com", false},
    };
    for (const auto& c : cases) EXPECT_EQ(isSearchEngine(URL::URLWithString(c.url)), c.isSearch) << String(c.url);
    EXPECT_FALSE(isSearchEngine(URL()));
}

}  // namespace
}  // namespace velmo
