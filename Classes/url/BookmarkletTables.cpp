#include "url/ClassificationTables.h"

namespace velmo::detail {
namespace {

// clang-format off: one row a line

/// 60 forms that submit a page to a bookmarking or social site, all with a query.
constexpr std::string_view QueriedBookmarklets[] = {
    // Bluesky, Threads, Mastodon
    "bsky.app/intent/compose?",
    "threads.net/intent/post?",
    "mastodonshare.com/?",
    // Buffer
    "buffer.com/add?",
    "bufferapp.com/add?",
    "publish.buffer.com/compose?",
    // Delicious, Digg, Diigo
    "delicious.com/post?",
    "delicious.com/save?",
    "digg.com/submit?",
    "diigo.com/post?",
    // Evernote, Flipboard, Instapaper
    "evernote.com/clip.action?",
    "share.flipboard.com/bookmarklet/popout?",
    "instapaper.com/hello2?",
    // Facebook
    "facebook.com/dialog/share?",
    "facebook.com/dialog/feed?",
    "facebook.com/share.php?",
    // Google
    "classroom.google.com/share?",
    "google.com/bookmarks/mark?",
    "plus.google.com/share?",
    // LinkedIn
    "linkedin.com/cws/share?",
    "linkedin.com/sharearticle?",
    "linkedin.com/sharing/share-offsite/?",
    "linkedin.com/feed/?shareactive=true",
    // messengers
    "api.whatsapp.com/send?",
    "web.whatsapp.com/send?",
    "//wa.me/?",
    "//t.me/share/url?",
    "telegram.me/share/url?",
    "web.skype.com/share?",
    "line.me/r/msg/text/?",
    "social-plugins.line.me/lineit/share?",
    // Pocket, Pinboard
    "getpocket.com/edit?",
    "getpocket.com/save?",
    "pinboard.in/add?",
    // Reddit, StumbleUpon, Mix, Hacker News
    "reddit.com/submit?",
    "stumbleupon.com/submit?",
    "mix.com/add?",
    "news.ycombinator.com/submitlink?",
    // Tumblr, Blogger, Wordpress
    "tumblr.com/share?",
    "tumblr.com/share/link?",
    "tumblr.com/widgets/share/tool?",
    "blogger.com/blog-this.g?",
    "/press-this.php?",
    // Twitter
    "twitter.com/home?",
    "twitter.com/intent/post?",
    "twitter.com/intent/tweet?",
    "twitter.com/share?",
    "//x.com/intent/post?",
    "//x.com/intent/tweet?",
    // Xing
    "xing.com/spi/shares/new?",
    "xing.com/social/share/spi?",
    // Russia
    "connect.mail.ru/share?",
    "connect.ok.ru/offer?",
    "vk.com/share.php?",
    // China, Japan
    "service.weibo.com/share/share.php?",
    "connect.qq.com/widget/shareqq/index.html?",
    "b.hatena.ne.jp/add?",
    // other countries
    "meneame.net/submit.php?",
    // any host
    "/ngs/subscriber/subext.aspx?",
    "action/submitbookmark?url=",
};
static_assert(std::size(QueriedBookmarklets) == 60);

/// 5 share pages that count with or without a query.
constexpr std::string_view Bookmarklets[] = {
    "facebook.com/sharer",  "bloglines.com/sub/",        "addthis.com/bookmark.php",
    "addthis.com/feed.php", "pinterest.com/pin/create/",
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
