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
    "m1.2mdn.net/viewad/",
    "pagead2.googlesyndication.com/pagead/imgad",
    // AOL
    "ar.atwola.com/content/",
    // Microsoft
    "rmads.msn.com/images/",
    "spe.atdmt.com/images/",
    // Yahoo
    "us.a1.yimg.com/us.yimg.com/a/",
    // others
    "cdn.fastclick.net/fastclick.net/",
    "img.mediaplex.com/ads/",
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
    "pagead2.googlesyndication.com/pagead/",
    "tpc.googlesyndication.com/",
    "partner.googleadservices.com/gampad/",
    "www.googleadservices.com/pagead/",
    // DoubleClick
    "ad.doubleclick.net/adi/",
    "ad.doubleclick.net/adj/",
    "ad.doubleclick.net/jump/",
    "ad.uk.doubleclick.net/adi/",
    "ad.de.doubleclick.net/adi/",
    "securepubads.g.doubleclick.net/gampad/",
    // Overture
    "cmhtml.overture.com/",
    "cm.de.overture.com/",
    "cm.uk.overture.com/",
    "ypn-js.overture.com/partner/",
    // Amazon
    "rcm.amazon.com/e/cm?",
    "rcm-images.amazon.com/",
    "rcm-de.amazon.de/e/cm?",
    "rcm-fr.amazon.fr/e/cm?",
    "rcm-uk.amazon.co.uk/e/cm?",
    "ws-na.amazon-adsystem.com/widgets/",
    "www.assoc-amazon.com/e/",
    // Adbrite
    "ads.adbrite.com/",
    "4.adbrite.com/mb/",
    "click.adbrite.com/mb/",
    // others
    "ad.yieldmanager.com/st?",
    "js.adsonar.com/js/",
    "kona.kontera.com/",
    "media.fastclick.net/w/",
    "servedby.advertising.com/site=",
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
    "lowermybills.com",
    "partypoker.com",
    "singlesnet.com",
    // surveys
    "foreseeresults.com",
    "insightexpressai.com",
    "opinionlab.com",
    "questionpro.com",
    "surveymonkey.com",
    "zoomerang.com",
};
static_assert(std::size(AdvertiserHosts) == 11);

/// 74 hosts of ad networks and affiliate programmes, and fragments that any host may have.
constexpr std::string_view AdFragments[] = {
    // Google, DoubleClick
    "2mdn.net",
    "doubleclick.com",
    "doubleclick.net",
    "googleadservices.com",
    "googlesyndication.com",
    // Microsoft, Atlas
    "atdmt.com",
    "adbureau.net",
    // AOL, Advertising.com
    "advertising.com",
    "adtech.de",
    "adtechus.com",
    "atwola.com",
    "tacoda.net",
    // Yahoo, Right Media
    "adrevolver.com",
    "bluelithium.com",
    "rightmedia.net",
    "yieldmanager.com",
    "yieldmanager.net",
    // Amazon
    "amazon-adsystem.com",
    // ValueClick and Commission Junction
    "anrdoezrs.net",
    "dpbolvw.net",
    "fastclick.net",
    "jdoqocy.com",
    "kqzyfj.com",
    "mediaplex.com",
    "qksrv.net",
    "tkqlhce.com",
    // other affiliate programmes
    "affili.net",
    "linksynergy.com",
    "shareasale.com/r.cfm?",
    "tradedoubler.com",
    "zanox-affiliate.de",
    // other networks
    "adnxs.com",
    "burstnet.com",
    "casalemedia.com",
    "criteo.com",
    "falkag.net",
    "pointroll.com",
    "pubmatic.com",
    "rubiconproject.com",
    "serving-sys.com",
    "tribalfusion.com",
    "zedo.com",
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
