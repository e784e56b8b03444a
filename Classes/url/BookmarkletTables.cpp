#include "url/ClassificationTables.h"

namespace velmo::detail {
namespace {

// clang-format off: one row a line

/// 60 forms that submit a page to a bookmarking or social site, all with a query.
constexpr std::string_view QueriedBookmarklets[] = {
    // Delicious
    "del.icio.us/post?",
    "delicious.com/post?",
    "delicious.com/save?",
    // Digg
    "digg.com/remote-submit?",
    "digg.com/submit?",
    // Google
    "google.com/bookmarks/mark?",
    "plus.google.com/share?",
    // Microsoft
    "favorites.live.com/quickadd.aspx?",
    // Reddit, StumbleUpon
    "reddit.com/submit?",
    "stumbleupon.com/refer.php?",
    "stumbleupon.com/submit?",
    // Slashdot
    "slashdot.org/bookmark.pl?",
    "slashdot.org/slashdot-it.pl?",
    // Technorati
    "technorati.com/faves?",
    "technorati.com/faves/?",
    // Twitter
    "twitter.com/home?",
    "twitter.com/intent/tweet?",
    "twitter.com/share?",
    "twitthis.com/twit?",
    // Yahoo
    "bookmarks.yahoo.com/toolbar/savebm?",
    "buzz.yahoo.com/buzz?",
    "myweb.yahoo.com/myresults/bookmarklet?",
    "myweb2.search.yahoo.com/myresults/bookmarklet?",
    // other social sites
    "friendfeed.com/share?",
    "linkedin.com/sharearticle?",
    "myspace.com/modules/postto/pages/?",
    "tumblr.com/share?",
    "vk.com/share.php?",
    // other sites in English
    "blinklist.com/index.php?",
    "blogmarks.net/my/new.php?",
    "bluedot.us/authoring.aspx?",
    "care2.com/news/compose?",
    "citeulike.org/posturl?",
    "connotea.org/addpopup?",
    "diigo.com/post?",
    "dzone.com/links/add.html?",
    "fark.com/cgi/fark/submit.pl?",
    "faves.com/authoring.aspx?",
    "feedmelinks.com/categorize?",
    "furl.net/storeit.jsp?",
    "linkagogo.com/go/addnopopup?",
    "ma.gnolia.com/bookmarklet/add?",
    "newsvine.com/_tools/seed?",
    "newsvine.com/_wine/save?",
    "propeller.com/submit/?",
    "rawsugar.com/tagger/?",
    "simpy.com/simpy/linkadd.do?",
    "spurl.net/spurl.php?",
    "tailrank.com/share/?",
    // sites in other languages
    "icio.de/add.php?",
    "linkarena.com/bookmarks/addlink/?",
    "meneame.net/submit.php?",
    "mister-wong.com/index.php?",
    "mister-wong.de/index.php?",
    "oneview.de/quickadd/neu/addbookmark.jsf?",
    "segnalo.com/post.html.php?",
    "webnews.de/einstellen?",
    "yigg.de/neu?",
    // any host
    "/ngs/subscriber/subext.aspx?",
    "action/submitbookmark?url=",
};
static_assert(std::size(QueriedBookmarklets) == 60);

/// 5 share pages that count with or without a query.
constexpr std::string_view Bookmarklets[] = {
    "facebook.com/sharer.php", "bloglines.com/sub/",        "addthis.com/bookmark.php",
    "addthis.com/feed.php",    "pinterest.com/pin/create/",
};
static_assert(std::size(Bookmarklets) == 5);

constexpr LinkTableRows Tables[] = {
    {LinkTable::QueriedBookmarklets, QueriedBookmarklets},
    {LinkTable::Bookmarklets, Bookmarklets},
};

// clang-format on

}  // namespace

std::span<const LinkTableRows> bookmarkletTables() noexcept { return Tables; }

}  // namespace velmo::detail
