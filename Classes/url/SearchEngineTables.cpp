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
    "search.live.",
    "search.msn.",
    // Ask
    ".ask.com",
    "teoma.",
    // AOL
    "aolsearch.",
    "search.aol.",
    // Lycos
    "fireball.de",
    "hotbot.",
    "lycos.",
    // Overture
    "alltheweb.",
    "altavista.",
    // InfoSpace
    ".info.com",
    "dogpile.",
    "infospace.",
    "metacrawler.",
    "webcrawler.",
    // private ones
    "duckduckgo.com",
    "ixquick.",
    "metager.",
    "mojeek.",
    "qwant.",
    "scroogle.org",
    "search.brave.com",
    "startpage.com",
    "swisscows.",
    // clustering ones
    "clusty.",
    "exalead.",
    "kartoo.",
    "vivisimo.",
    "yippy.com",
    // others of the whole web
    ".a9.com",
    ".mamma.com",
    ".search.com",
    "blekko.com",
    "ecosia.org",
    "entireweb.",
    "excite.",
    "gigablast.",
    "hakia.com",
    "infoseek.",
    "northernlight.",
    "wisenut.",
    "wolframalpha.com",
    // of weblogs and feeds
    "blogdigger.com",
    "daypop.com",
    "feedster.com",
    "icerocket.com",
    "technorati.com",
    // directories
    ".botw.org",
    ".business.com",
    "dmoz.org",
    "looksmart.",
    // China, Japan, Korea
    "baidu.com",
    "naver.com",
    "search.daum.net",
    "search.goo.ne.jp",
    "search.nifty.com",
    "sogou.com",
    // Russia and the Czech Republic, Poland
    "go.mail.ru",
    "nova.rambler.ru",
    "search.seznam.cz",
    "szukaj.onet.pl",
    "yandex.",
    // France, Italy, Switzerland
    ".search.ch",
    "arianna.libero.it",
    "ricerca.virgilio.it",
    "search.ke.voila.fr",
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
