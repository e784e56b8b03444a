// Whether a URL is a search engine's, by its host. Most engines are told by the list alone; those
// that have other services on the same hosts are looked at closer.
#include <velmocore/url/SearchEngines.h>

#include <algorithm>

#include "text/Keyword.h"
#include "url/KeywordAutomaton.h"
#include "url/SearchEngineTables.h"

namespace velmo {
namespace {

using namespace detail;
using Units = std::u16string_view;

/// What a host may hold.
enum HostMark : KeywordMarks { Listed = 1, Google = 2, Yahoo = 4, Amazon = 8, WebStandards = 16 };

constexpr std::string_view GoogleStem[] = {"google."}, YahooStem[] = {"yahoo."},
                           AmazonStem[] = {".amazon."}, WebStandardsDomain[] = {"webstandards.org"};

/// Made at first use, and never changed: all threads share it.
const KeywordAutomaton& automaton() {
    static const KeywordAutomaton made(
        std::initializer_list<KeywordList>{{Listed, searchEngineHosts()},
                                           {Google, GoogleStem},
                                           {Yahoo, YahooStem},
                                           {Amazon, AmazonStem},
                                           {WebStandards, WebStandardsDomain}});
    return made;
}

bool endsWith(Units host, std::string_view capitals) {
    return host.size() >= capitals.size() &&
           keyword::equals(host.substr(host.size() - capitals.size()), capitals);
}

/// Whether a URL is one of the other pages that hosts of a search engine have.
bool isOneOf(std::span<const HostPage> pages, Units host, const URL& url) {
    return std::any_of(pages.begin(), pages.end(), [&](const HostPage& page) {
        return keyword::equals(host, page.host) &&
               (page.fragment.empty() || keyword::contains(url.absoluteString(), page.fragment));
    });
}

bool isGoogleSearch(Units host, const URL& url) {
    if (keyword::equals(host, "PICASAWEB.GOOGLE.COM"))
        return keyword::contains(url.absoluteString(), "/LH/VIEW?");
    return !isOneOf(googlePages(), host, url);
}

bool isYahooSearch(Units host, const URL& url) {
    if (keyword::beginsWith(host, "YAHOO.REUTERS.")) return false;
    // The domains of other countries serve little but searches.
    return !endsWith(host, "YAHOO.COM") || !isOneOf(yahooPages(), host, url);
}

}  // namespace

bool isSearchEngine(const URL& url) {
    constexpr std::string_view WeblogsInc = ".WEBLOGSINC.COM";
    const Units host = url.part(URLPart::Host);
    if (host.size() > WeblogsInc.size() && endsWith(host, WeblogsInc)) return false;
    if (keyword::equals(host, "ASK.COM") || keyword::equals(host, "INFO.COM")) return true;
    // One walk over the host finds all that the tables know; most hosts are no engine's.
    const KeywordMarks marks = automaton().marksIn(host);
    if (host.size() > 5 && (marks & Listed)) return true;
    if (marks & Yahoo) return isYahooSearch(host, url);
    if (marks & Google) return isGoogleSearch(host, url);
    if (marks & WebStandards)
        return keyword::contains(url.absoluteString(), "WEBSTANDARDS.ORG/INDEX.PHP?");
    return (marks & Amazon) && keyword::beginsWith(url.path(), "/S/");
}

}  // namespace velmo
