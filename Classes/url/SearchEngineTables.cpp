#include "url/SearchEngineTables.h"

namespace velmo::detail {
namespace {

// clang-format off: one row a line

/// 71 hosts, in three forms: a name with a full stop behind it stands for all countries, a
/// domain with one in front for its subdomains only, a plain domain for both. A short name
/// needs the full stop in front, or it meets the end of a longer one. Bing's bare domain
/// is one of those; Ask's and Info's are told by their length.
constexpr std::string_view Hosts[] = {
    // Microsoft
    ".bing.com",
    "search.msn.",
    // Ask
    ".ask.com",
    // AOL
    "search.aol.",
    // Lycos
    "fireball.de",
    "hotbot.",
    "lycos.",
    // InfoSpace
    ".info.com",
    "dogpile.",
    "infospace.",
    "metacrawler.",
    "webcrawler.",
    // private ones
    "duckduckgo.com",
    "ixquick.",
    "kagi.com",
    "metager.",
    "mojeek.",
    "oscobo.com",
    "peekier.com",
    "presearch.com",
    "qwant.",
    "search.brave.com",
    "searx.",
    "searxng.",
    "startpage.com",
    "swisscows.",
    // small and open ones
    "marginalia-search.com",
    "search.marginalia.nu",
    "stract.com",
    "wiby.me",
    // answering ones
    ".you.com",
    "perplexity.ai",
    "wolframalpha.com",
    // green ones
    "ecosia.org",
    "ekoru.org",
    "lilo.org",
    // others of the whole web
    ".mamma.com",
    ".search.com",
    "entireweb.",
    "excite.",
    "exalead.",
    "carrot2.org",
    // of papers
    "base-search.net",
    // directories
    ".botw.org",
    ".business.com",
    "curlie.org",
    // China
    "m.baidu.com",
    "www.baidu.com",
    "image.baidu.com",
    ".sm.cn",
    ".so.com",
    "so.toutiao.com",
    "sogou.com",
    // Japan, Korea, Vietnam
    "search.goo.ne.jp",
    "search.nifty.com",
    "websearch.rakuten.co.jp",
    "search.daum.net",
    "search.naver.com",
    "search.zum.com",
    "coccoc.com",
    // Russia and the Czech Republic, Poland
    "go.mail.ru",
    "nova.rambler.ru",
    "search.seznam.cz",
    "szukaj.onet.pl",
    "yandex.",
    // France, Italy, Switzerland
    ".search.ch",
    "lemoteur.orange.fr",
    "ricerca.virgilio.it",
    // Germany
    "suche.gmx.net",
    "suche.t-online.de",
    "suche.web.de",
};
static_assert(std::size(Hosts) == 71);

/// Hosts of Google, in capitals. Those with a page serve other things as well, and that is
/// how a page of them that is no search looks like.
constexpr HostPage GooglePages[] = {
    {"CODE.GOOGLE.COM", ""},
    {"SKETCHUP.GOOGLE.COM", ""},
    {"EARTH.GOOGLE.COM", ""},
    {"DESKTOP.GOOGLE.COM", ""},
    {"GROUPS.GOOGLE.COM", "GROUPS.GOOGLE.COM/GROUP/"},
    {"VIDEO.GOOGLE.COM", "VIDEO.GOOGLE.COM/VIDEOPLAY?"},
};

/// The same of Yahoo.
constexpr HostPage YahooPages[] = {
    {"UK.NEWS.YAHOO.COM", ""},
    {"FINANCE.YAHOO.COM", ""},
    {"PODCASTS.YAHOO.COM", ""},
    {"WIDGETS.YAHOO.COM", ""},
    {"SIMS.YAHOO.COM", ""},
    {"YODEL.YAHOO.COM", ""},
    {"BLOG.MASH.YAHOO.COM", ""},
    {"NEWS.YAHOO.COM", "NEWS?TMPL=STORY"},
    {"NEWS.YAHOO.COM", "NEWS.YAHOO.COM/S/"},
    {"DOCS.YAHOO.COM", "DOCS.YAHOO.COM/DOCS/"},
    {"TECH.YAHOO.COM", "TECH.YAHOO.COM/HW/"},
    {"BIZ.YAHOO.COM", "BIZ.YAHOO.COM/BW/"},
    {"BIZ.YAHOO.COM", "BIZ.YAHOO.COM/IW/"},
    {"BIZ.YAHOO.COM", "BIZ.YAHOO.COM/FOOL/"},
    {"BIZ.YAHOO.COM", "BIZ.YAHOO.COM/PRNEWS/"},
    {"BIZ.YAHOO.COM", "BIZ.YAHOO.COM/AP/"},
    {"BIZ.YAHOO.COM", "BIZ.YAHOO.COM/RB/"},
    {"BIZ.YAHOO.COM", "BIZ.YAHOO.COM/FASTCO/"},
    {"US.RD.YAHOO.COM", "US.RD.YAHOO.COM/FINANCE/EXTERNAL/"},
    {"US.RD.YAHOO.COM", "US.RD.YAHOO.COM/FINANCE/NEWS/RSS/STORY/"},
};

// clang-format on

}  // namespace

std::span<const std::string_view> searchEngineHosts() noexcept { return Hosts; }
std::span<const HostPage> googlePages() noexcept { return GooglePages; }
std::span<const HostPage> yahooPages() noexcept { return YahooPages; }

}  // namespace velmo::detail
