#include <velmocore/url/SearchEngines.h>

#include <cctype>
#include <set>

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
    for (const auto& url :
         test::wordsOf(u"http://ask.com/ http://INFO.com http://www.lycos.de/x http://code.google.de/p/x "
                       u"http://any.google.co.uk/ http://groups.google.com/x http://picasaweb.google.com/LH/view?x "
                       u"http://www.webstandards.org/index.php?s=x http://www.amazon.de/s/ref=x http://de.yahoo.com/x "
                       u"http://de.news.yahoo.de/s/ http://news.yahoo.com/news?tmpl=index"))
        EXPECT_TRUE(isSearchEngine(URL::URLWithString(url))) << String(url);
    for (const auto& url : test::wordsOf(
             u"http://xask.com/ http://h.org/lycos.de http://lycos.weblogsinc.com/ http://weblogsinc.com/lycos. "
             u"http://code.google.com/p/x http://Code.Google.com/p/x http://groups.google.com/Group/x "
             u"http://picasaweb.google.com/x http://www.webstandards.org/ http://www.amazon.de/dp/s/ "
             u"http://amazon.de/s/x http://yahoo.reuters.com/x http://news.yahoo.com/news?tmpl=Story&x "
             u"http://uk.news.yahoo.com/ http://example.org/ mailto:x@google.com google.com"))
        EXPECT_FALSE(isSearchEngine(URL::URLWithString(url))) << String(url);
    EXPECT_FALSE(isSearchEngine(URL()));
}

}  // namespace
}  // namespace velmo
