// What tells advertisements. The rows are looked for all at once, by one automaton, so that their
// number and order do not matter; they stand grouped by what they are.
#include "url/ClassificationTables.h"

namespace velmo::detail {
namespace {

// clang-format off: one row a line

/// 13 image servers of ad networks: hosts with a path, and paths that any host may have.
constexpr std::string_view ImageAds[] = {
    // Google, DoubleClick
    "ad.doubleclick.net/ad/",
    "ad.doubleclick.net/viewad/",
    "s0.2mdn.net/viewad/",
    "s0.2mdn.net/simgad/",
    "pagead2.googlesyndication.com/pagead/imgad",
    "tpc.googlesyndication.com/simgad/",
    // Xandr
    "cdn.adnxs.com/p/",
    // Criteo
    "static.criteo.net/images/",
    // Outbrain
    "images.outbrainimg.com/transform/",
    // Taboola
    "images.taboola.com/taboola/",
    // any host
    ".com/ads/per_site/",
    "/realmedia/ads/creatives/oasdefault/",
    "/realmedia/ads/creatives/qc/",
};
static_assert(std::size(ImageAds) == 13);

/// 36 services of text ads and ad frames.
constexpr std::string_view AdSense[] = {
    // Google
    "googleads.g.doubleclick.net/pagead/",
    "pagead.googlesyndication.com/pagead/",
    "pagead2.googlesyndication.com/",
    "tpc.googlesyndication.com/",
    "www.googleadservices.com/pagead/",
    "partner.googleadservices.com/gampad/",
    "www.google.com/pagead/",
    "www.google.com/aclk?",
    "adservice.google.com/ddm/",
    // DoubleClick
    "ad.doubleclick.net/adi/",
    "ad.doubleclick.net/adj/",
    "ad.doubleclick.net/jump/",
    "ad.doubleclick.net/ddm/",
    "adclick.g.doubleclick.net/",
    "securepubads.g.doubleclick.net/",
    // Overture
    "cmhtml.overture.com/",
    // Amazon
    "rcm.amazon.com/e/cm?",
    "rcm-na.amazon-adsystem.com/e/cm?",
    "rcm-eu.amazon-adsystem.com/e/cm?",
    "ws-na.amazon-adsystem.com/widgets/",
    "ws-eu.amazon-adsystem.com/widgets/",
    "aax-us-east.amazon-adsystem.com/",
    "www.assoc-amazon.com/e/",
    // Adbrite
    "ads.adbrite.com/",
    // others
    "contextual.media.net/",
    "trc.taboola.com/",
    "paid.outbrain.com/network/",
    "widgets.outbrain.com/",
    "an.yandex.ru/",
    "ib.adnxs.com/",
    "cas.criteo.com/delivery/",
    // any host
    ".com/google/box?",
    "external/overture/iframe/",
    "/overturead.",
    "/partner/overture/",
    "/AdSearchService/adSearch?",
};
static_assert(std::size(AdSense) == 36);

/// 11 hosts of advertisers that are met everywhere, and of survey services.
constexpr std::string_view AdvertiserHosts[] = {
    // advertisers
    "classmates.com",
    "friendfinder.com",
    "ashleymadison.com",
    "bet365.com",
    "1xbet.com",
    // surveys
    "foresee.com",
    "opinionlab.com",
    "qualtrics.com",
    "questionpro.com",
    "surveymonkey.com",
    "survey-xact.dk",
};
static_assert(std::size(AdvertiserHosts) == 11);

/// 74 hosts of ad networks and affiliate programmes, and fragments that any host may have.
constexpr std::string_view AdFragments[] = {
    // Google, DoubleClick
    ".2mdn.net",
    ".doubleclick.net",
    ".googleadservices.com",
    ".googlesyndication.com",
    // Microsoft, Xandr
    ".adnxs.com",
    // Yahoo and those it took over
    ".advertising.com",
    ".adtechus.com",
    // Amazon
    ".amazon-adsystem.com",
    // Commission Junction
    ".anrdoezrs.net",
    ".dpbolvw.net",
    ".emjcd.com",
    ".jdoqocy.com",
    ".kqzyfj.com",
    ".tkqlhce.com",
    // other affiliate programmes
    ".awin1.com",
    ".linksynergy.com",
    "//prf.hn/",
    ".redirectingat.com",
    "shareasale.com/r.cfm?",
    ".tradedoubler.com",
    ".viglink.com",
    ".webgains.com",
    // other networks
    ".3lift.com",
    ".adform.net",
    ".adition.com",
    ".adsrvr.org",
    ".bidswitch.net",
    ".casalemedia.com",
    ".criteo.com",
    ".criteo.net",
    ".exoclick.com",
    ".mgid.com",
    ".openx.net",
    ".outbrain.com",
    ".popads.net",
    ".pubmatic.com",
    ".revcontent.com",
    ".rubiconproject.com",
    ".serving-sys.com",
    ".smartadserver.com",
    ".taboola.com",
    ".teads.tv",
    // any host
    "-ads.",
    "/ads.",
    "&adid=",
    "adframe.",
    "adframe2.",
    "adframe3.",
    "_ads/iframe",
    "/iframepops",
    "iframepop.php",
    "adfetch?adid",
    "adsserver",
    "adclass=",
    "/images/circulation/",
    "popupwrapper",
    "slideshow.cgi",
    "maintiles.php",
    "/annonser",
    "/reklama",
    "/sponsor/frame",
    "textad.php",
    "textad2.php",
    "160x90.php",
    "_footerads_",
    "/adlog.php?",
    "iframead.cgi?ad=",
    "/sponsor_banners/",
    "displayadleader.asp?showbanner=",
    "displayadbanner_tile.asp?showbanner=",
    "smartserve/ad?placement=",
    "/st?ad_type=",
    "/www/delivery/afr.php?",
    "/AdSearchService/adSearch?s",
};
static_assert(std::size(AdFragments) == 74);

/// 13 fragments of paths.
constexpr std::string_view AdPaths[] = {
    "/ad/",
    "/ad_",
    "/ads",
    "/adv/",
    "/adv.php",
    "/adverts/",
    "/adclick.",
    "/adview.",
    "/ad_detail.",
    "/adref/",
    "/ad_refresh.",
    "_adbox.html",
    "/iframead/display.aspx",
};
static_assert(std::size(AdPaths) == 13);

constexpr LinkTableRows Tables[] = {
    {LinkTable::ImageAds, ImageAds},
    {LinkTable::AdSense, AdSense},
    {LinkTable::AdvertiserHosts, AdvertiserHosts},
    {LinkTable::AdFragments, AdFragments},
    {LinkTable::AdPaths, AdPaths},
};

// clang-format on

}  // namespace

std::span<const LinkTableRows> advertisementTables() noexcept { return Tables; }

}  // namespace velmo::detail
