// The knowledge of what is no thumbnail. How to add a row: see markup/ThumbnailTables.h.
#include "markup/ThumbnailTables.h"

#include <iterator>

namespace velmo::detail {
namespace {

using Row = std::string_view;

// One row a line.
// clang-format off

/// 83 endings of GIFs, in URLs without their digits: spacers, buttons, labels and the previews
/// and trailers of video sites.
constexpr Row Gifs[] = {
    "download.gif",
    "prev.gif",
    "next.gif",
    "previous.gif",
    "spacer.gif",
    "space.gif",
    "blank.gif",
    "filler.gif",
    "arrow.gif",
    "_logo.gif",
    "/rep.gif",
    "/freevid_.gif",
    "click.gif",
    "triangle.gif",
    "video_blank.gif",
    "dload.gif",
    "/dl.gif",
    "/down.gif",
    "/d.gif",
    "/image.gif",
    "addtomyyahoo.gif",
    "play.gif",
    "watch.gif",
    "but.gif",
    "qtime.gif",
    "listen_off.gif",
    "vcast_full.gif",
    "video.gif",
    "header_.gif",
    "_button.gif",
    "_butt.gif",
    "icon_MOV_small.gif",
    "wallpaper.gif",
    "bfreecam.gif",
    "freepreview.gif",
    "videopreview.gif",
    "freevid.gif",
    "/preview.gif",
    "typebig-.gif",
    "typesm-.gif",
    "body_iioii_.gif",
    "ipod_n.gif",
    "hdv_n.gif",
    "wmv_n.gif",
    "mov_n.gif",
    "wmv.gif",
    "avi.gif",
    "sampledivx.gif",
    "samplempeg.gif",
    "clickhere.gif",
    "/ani.gif",
    "/movie.gif",
    "/movie_.gif",
    "_movie.gif",
    "/mov_.gif",
    "-sample.gif",
    "_sample.gif",
    "/sample.gif",
    "_videotour.gif",
    "trailer.gif",
    "trailerb.gif",
    "trailers.gif",
    "trailersmall.gif",
    "trailerlink.gif",
    "watchtrail.gif",
    "_r_c.gif",
    "_but_viewt.gif",
    "index_.gif",
    "template_.gif",
    "/free.gif",
    "/mp.gif",
    "box.gif",
    "/part.gif",
    "/view.gif",
    "/email.gif",
    "/check.gif",
    "/scene.gif",
    "/divx.gif",
    "/wmv.gif",
    "/qt.gif",
    "/ipod.gif",
    "_close.gif",
    "/bar.gif",
};
static_assert(std::size(Gifs) == 83);

/// 25 endings of JPEGs, likewise.
constexpr Row Jpegs1[] = {
    "button.jpg",
    "button_.jpg",
    "IKONA.jpg",
    "clickmovie.jpg",
    "_download.jpg",
    "vidbar.jpg",
    "/sitessm_.jpg",
    "/play-sample.jpg",
    "playtrailer.jpg",
    "-trailer.jpg",
    "_trailer.jpg",
    "/trailer.jpg",
    "trailer_.jpg",
    "MGP_.jpg",
    "../preview.jpg",
    "player_.jpg",
    "/watch.jpg",
    "free_clip.jpg",
    "tour_updates_.jpg",
    "/pl_t.jpg",
    "/box.jpg",
    "/newwindow.jpg",
    "/gl.jpg",
    "_common/typec-.jpg",
    "/trailer_icon.jpg",
};
static_assert(std::size(Jpegs1) == 25);

/// 6 endings of JPEGs that are labels unless they are as large and as square as a picture;
/// without digits too.
constexpr Row Jpegs2[] = {
    "/mpeg.jpg",
    "/wmv.jpg",
    "/mov.jpg",
    "/videos_.jpg",
    "_r_c.jpg",
    "player.jpg",
};
static_assert(std::size(Jpegs2) == 6);

/// 4 endings of PNGs, digits and all.
constexpr Row Pngs[] = {
    "_button.png",
    "thumbnail_movie.png",
    "footer_download.png",
    "flow/pink.png",
};
static_assert(std::size(Pngs) == 4);

/// 1 path of a host.
constexpr Row Trackers[] = {
    // YouTube
    "YTIMG.COM/YT/IMG/PIXEL-",
};
static_assert(std::size(Trackers) == 1);

/// 3 markers of hosts.
constexpr Row SearchPageHosts[] = {
    "SEARCH.YAHOO.COM",
    "GOOGLE.",
    "LEXISWEB.COM",
};
static_assert(std::size(SearchPageHosts) == 3);

/// 2 beginnings.
constexpr Row ScriptLinks[] = {
    "JAVASCRIPT:IMAGEVIEWALL('",
    "JAVASCRIPT:OPEN('",
};
static_assert(std::size(ScriptLinks) == 2);

/// 3 beginnings.
constexpr std::u16string_view TitlePrefixes[] = {
    u"Click to show ",
    u"Title:",
    u"Permalink to ",
};
static_assert(std::size(TitlePrefixes) == 3);

// clang-format on

}  // namespace

std::span<const Row> thumbnailGifs() noexcept { return Gifs; }
std::span<const Row> thumbnailJpegs1() noexcept { return Jpegs1; }
std::span<const Row> thumbnailJpegs2() noexcept { return Jpegs2; }
std::span<const Row> thumbnailPngs() noexcept { return Pngs; }
std::span<const Row> trackerGifs() noexcept { return Trackers; }
std::span<const Row> searchPageHosts() noexcept { return SearchPageHosts; }
std::span<const Row> scriptLinks() noexcept { return ScriptLinks; }
std::span<const std::u16string_view> titlePrefixes() noexcept { return TitlePrefixes; }

}  // namespace velmo::detail
